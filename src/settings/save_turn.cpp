// SPDX-License-Identifier: BSL-1.0

// Who may save a file: one at a time.

#include "settings/save_turn.hpp"

#include <chrono>
#include <ctime>
#include <thread>

#include "files/names.hpp"
#include "system/entry.hpp"

namespace ruvo::settings {

namespace {

/// Whether the system that held it is gone: a turn takes a moment. What is held cannot be removed anyway
/// where the system knows who holds a file.
bool is_left_over(const platform::entry_facts& found) {
  constexpr long long oldest = 60;  // seconds
  return static_cast<long long>(std::time(nullptr)) - found.modified > oldest;
}

}  // namespace

save_turn::save_turn(const file& of) : path_(files::sibling(of, L"~" + of.get_name() + L".lock")) {
  using clock = std::chrono::steady_clock;
  const auto start = clock::now();
  while (!take()) {
    platform::entry_facts found;
    const bool is_there = platform::read_facts(path_, platform::links::keep, found);
    // Where nothing can be made, there is nothing to wait for but another's end.
    const auto patience = std::chrono::milliseconds(is_there ? 2000 : 300);
    if (clock::now() - start > patience) return;
    if (is_there && is_left_over(found)) platform::remove_file(path_);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

bool save_turn::take() {
  held_.emplace(path_, platform::open_file::to_hold);
  if (*held_) return true;
  held_.reset();
  return false;
}

save_turn::~save_turn() {
  if (held_) held_->close();
}

}  // namespace ruvo::settings
