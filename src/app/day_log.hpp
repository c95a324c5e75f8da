// SPDX-License-Identifier: BSL-1.0
#pragma once

// Log files, one for each day.

#include <ruvo/file.hpp>

#include <mutex>
#include <string_view>

#include "app/log_line.hpp"
#include "system/appended_file.hpp"

namespace ruvo::reg {

/// The log files of a folder, one for each day. Safe to use from any thread.
///
/// Lines come many at once, and opening takes longer than writing; so a file that was opened takes the lines
/// of one second. It is let go of by the first line after that, or by flush() and let_go(), and so stays open
/// when no more lines come. Who erases it meanwhile loses no more than the lines of that second.
class day_log {
 public:
  void set_folder(const file& folder);
  file folder() const;
  file path_of(long day) const;

  /// Appends "[stamp] " and the text, which is clean, as a line; false when it was not written.
  bool write(const moment& when, std::wstring_view text);
  /// Brings everything to the disk and closes the file.
  void flush();
  /// Closes the file.
  void let_go();

 private:
  bool reach(long day);

  mutable std::mutex guard_;
  file folder_;
  platform::appended_file open_;
  long open_day_ = 0;
  unsigned long long opened_at_ = 0;
};

}  // namespace ruvo::reg
