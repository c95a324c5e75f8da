#pragma once

#include <ruvo/file.hpp>

#include <memory>
#include <mutex>
#include <string_view>

#include "app/log_line.hpp"
#include "app/platform.hpp"

namespace ruvo::reg {

/// The log files of a folder, one for each day. Safe to use from any thread.
///
/// Today's file stays open for at most a second: lines come many at once, and opening takes longer than
/// writing. Who erases the file meanwhile loses no more than the lines of that second.
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
  struct closer {
    void operator()(void* open) const noexcept { platform::close(open); }
  };

  bool reach(long day);

  mutable std::mutex guard_;
  file folder_;
  std::unique_ptr<void, closer> open_;
  long open_day_ = 0;
  unsigned long long opened_at_ = 0;
};

}  // namespace ruvo::reg
