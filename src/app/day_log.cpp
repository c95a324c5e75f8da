// SPDX-License-Identifier: BSL-1.0

// The file of the day that lines are appended to, kept open for a second.

#include "app/day_log.hpp"

#include "base/utf.hpp"
#include "system/clock.hpp"

namespace ruvo::reg {

namespace {

constexpr unsigned long long longest_open = 1000;  // milliseconds

}  // namespace

void day_log::set_folder(const file& folder) {
  const std::lock_guard lock(guard_);
  open_ = {};
  folder_ = folder;
}

file day_log::folder() const {
  const std::lock_guard lock(guard_);
  return folder_;
}

file day_log::path_of(long day) const { return {folder(), name_of_day(day)}; }

// Opens the day's file unless it is open already. Called under the lock.
bool day_log::reach(long day) {
  const unsigned long long now = platform::steady_milliseconds();
  if (open_ && open_day_ == day && now - opened_at_ < longest_open) return true;
  open_ = {};
  if (folder_.empty()) return false;
  open_ = platform::appended_file(file(folder_, name_of_day(day)));
  open_day_ = day;
  opened_at_ = now;
  return static_cast<bool>(open_);
}

bool day_log::write(const moment& when, std::wstring_view text) {
  std::wstring line;
  append_stamp(line, when);
  line += L' ';
  line += text;
  line += L"\r\n";
  const std::string bytes = texto::to_utf_8(line);
  const std::lock_guard lock(guard_);
  return reach(when.number()) && open_.append(bytes);
}

void day_log::flush() {
  const std::lock_guard lock(guard_);
  if (open_) open_.flush();
  open_ = {};
}

void day_log::let_go() {
  const std::lock_guard lock(guard_);
  open_ = {};
}

}  // namespace ruvo::reg
