// SPDX-License-Identifier: BSL-1.0

// The count of lost log entries, for the whole process.

#include "app/lost_entries.hpp"

#include <atomic>
#include <string>

#include "base/numbers.hpp"
#include "base/quietly.hpp"
#include "system/errors.hpp"

namespace ruvo::reg {

namespace {

constinit std::atomic<unsigned long long> lost{0}, shown{0};

}  // namespace

void lose_entry() noexcept { lost.fetch_add(1, std::memory_order_relaxed); }
unsigned long long lost_entries() noexcept { return lost.load(std::memory_order_relaxed); }

void show_lost_entries() noexcept {
  const unsigned long long count = lost_entries();
  if (shown.exchange(count) == count) return;
  quietly([count] {
    std::wstring line = L"kesta: ";
    texto::append_unsigned(line, count);
    line += L" log entries found nobody to take them. See application::log_to_files, log::set_callback.\n";
    platform::debug_line(line);
  });
}

}  // namespace ruvo::reg
