// SPDX-License-Identifier: BSL-1.0

// The callbacks that the library brings: files, the debugger, the console, a ring, a tee.

#include <ruvo/context.hpp>
#include <ruvo/log_targets.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "app/day_log.hpp"
#include "app/lost_entries.hpp"
#include "base/quietly.hpp"
#include "base/services.hpp"
#include "base/utf.hpp"
#include "system/console.hpp"
#include "system/errors.hpp"

namespace ruvo::reg {

struct day_file::state {
  day_log days;
};

day_file::day_file(const file& folder) : state_(std::make_unique<state>()) {
  state_->days.set_folder(folder);
}
day_file::~day_file() = default;

void day_file::on_log(long level, const std::wstring& second, const std::wstring& first) {
  std::wstring text;
  append_entry(text, level, first, second);
  if (!state_->days.write(present_moment(), text)) lose_entry();
}

void day_file::flush() { state_->days.flush(); }

namespace {

std::wstring stamped(long level, const std::wstring& first, const std::wstring& second) {
  std::wstring line;
  append_stamp(line, present_moment());
  line += L' ';
  append_entry(line, level, first, second);
  return line;
}

}  // namespace

debugger_output::debugger_output() = default;
debugger_output::~debugger_output() = default;

void debugger_output::on_log(long level, const std::wstring& second, const std::wstring& first) {
  platform::debug_line(stamped(level, first, second) + L'\n');
}

console_output::console_output() = default;
console_output::~console_output() = default;

void console_output::on_log(long level, const std::wstring& second, const std::wstring& first) {
  const std::wstring line = stamped(level, first, second) + L"\r\n";
  const std::lock_guard lock(guard_);
  if (!(level <= WARNING ? platform::write_error(line) : platform::write_console(line))) lose_entry();
}

namespace {

/// An entry with room of its own for the text.
struct ring_entry {
  long long ticks = 0;
  long level = 0;
  std::size_t length = 0;
  wchar_t text[ring_buffer::longest_text];

  void append(std::wstring_view more) noexcept {
    const std::size_t room = ring_buffer::longest_text - length;
    length += more.copy(text + length, room);
    const bool cut = more.size() > room;
    if (cut && length && texto::is_high_surrogate(text[length - 1])) --length;
  }
};

/// A lock that asks nothing of the system, and gives up where its holder does not come back.
class patient_lock {
 public:
  explicit patient_lock(std::atomic_flag& flag) : flag_(flag) {
    constexpr int short_waits = 1000, long_waits = 1000;
    for (int n = 0; n < short_waits + long_waits && !owns_; ++n) {
      owns_ = !flag.test_and_set(std::memory_order_acquire);
      if (owns_) return;
      if (n < short_waits)
        std::this_thread::yield();
      else
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  patient_lock(const patient_lock&) = delete;
  patient_lock& operator=(const patient_lock&) = delete;
  ~patient_lock() {
    if (owns_) flag_.clear(std::memory_order_release);
  }
  explicit operator bool() const noexcept { return owns_; }

 private:
  std::atomic_flag& flag_;
  bool owns_ = false;
};

}  // namespace

struct ring_buffer::state {
  std::vector<ring_entry> entries;
  std::size_t next = 0, used = 0;
  mutable std::atomic_flag busy;
};

const std::size_t ring_buffer::longest_text;

ring_buffer::ring_buffer(std::size_t entries) : state_(std::make_unique<state>()) {
  state_->entries.resize(std::max<std::size_t>(entries, 1));
}
ring_buffer::~ring_buffer() = default;

void ring_buffer::on_log(long level, const std::wstring& second, const std::wstring& first) {
  const long long ticks = current_context().get_system_ticks();
  const patient_lock lock(state_->busy);
  if (!lock) return lose_entry();
  ring_entry& entry = state_->entries[state_->next];
  entry.ticks = ticks;
  entry.level = level;
  entry.length = 0;
  entry.append(first);
  if (!first.empty() && !second.empty()) entry.append(L": ");
  entry.append(second);
  state_->next = (state_->next + 1) % state_->entries.size();
  state_->used = std::min(state_->used + 1, state_->entries.size());
}

std::vector<std::wstring> ring_buffer::snapshot() const {
  std::vector<ring_entry> copy(capacity());
  std::size_t first = 0, used = 0;
  {
    const patient_lock lock(state_->busy);
    if (!lock) return {};
    copy = state_->entries;
    used = state_->used;
    first = (state_->next + capacity() - used) % capacity();
  }
  std::vector<std::wstring> lines(used);
  for (std::size_t n = 0; n < used; ++n) {
    const ring_entry& entry = copy[(first + n) % copy.size()];
    append_stamp(lines[n], moment_of(entry.ticks));
    lines[n] += L' ';
    append_entry(lines[n], entry.level, {entry.text, entry.length}, {});
  }
  return lines;
}

std::size_t ring_buffer::capacity() const noexcept { return state_->entries.size(); }

tee::tee(std::initializer_list<IOnLog*> targets) : targets_(targets) { std::erase(targets_, nullptr); }
tee::~tee() = default;

void tee::on_log(long level, const std::wstring& second, const std::wstring& first) {
  for (IOnLog* const target : targets_) quietly([&] { target->on_log(level, second, first); });
}

void tee::flush() {
  for (IOnLog* const target : targets_) quietly([&] { target->flush(); });
}

}  // namespace ruvo::reg
