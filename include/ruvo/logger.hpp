// SPDX-License-Identifier: BSL-1.0
#pragma once

// Logging: ruvo::logger, the levels in ruvo::reg, and ruvo::log, which reaches the application's logger.

#include <ruvo/date.hpp>
#include <ruvo/file.hpp>

#include <cstddef>
#include <exception>
#include <memory>
#include <string>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

/// What belongs to logs: levels, the form of their lines, targets of loggers.
namespace reg {

/// How much an entry matters: the lower, the more.
enum LVL : long {
  ASSERTION = 1,  ///< 1, what must not happen
  FAILURE,        ///< 2, an operation failed
  WARNING,        ///< 3, it worked, but
  INFO,           ///< 4, the course of things; the default level
  DEBUG,          ///< 5, for who develops the program
  SQL,            ///< 6, the statements sent to a database
  VERBOSE         ///< 7, everything else
};

/// "ASSERTION" to "VERBOSE"; empty for any other number.
KESTA_API std::wstring level_name(long level);

/// The name of a day's log file: "kesta_20240229.log".
KESTA_API std::wstring format_name(const date& day);
/// The present local time: "[2024-02-29 13:05:09.042]".
KESTA_API std::wstring time_stamp();

}  // namespace reg

/// Receives the entries of loggers, on the threads that make them, several at once. What it throws is
/// swallowed. It may log itself: its own entries do not come back to it through the same logger.
class KESTA_API IOnLog {
 public:
  /// An entry: its level and its two texts.
  /// @quirk The second text comes first.
  virtual void on_log(long level, const std::wstring& second, const std::wstring& first) = 0;
  /// Asks to bring what was taken to its target. Without an override it does nothing.
  virtual void flush();
  virtual ~IOnLog();

 protected:
  IOnLog() = default;

  IOnLog(const IOnLog&) = default;
  IOnLog& operator=(const IOnLog&) = default;
};

/// Forwards entries to a callback, and keeps a file for each day in a folder: two ways that do not meet
/// unless it is asked for. Entries with a level go to the callback, with set_entries_to_file() to the file as
/// well; lines without one go to the file only.
///
/// May be used from any thread. Nothing that an entry meets on its way reaches the caller: without a
/// callback, a folder, room on the disk or memory it is lost, and the next one tries anew. log::get_lost()
/// counts them.
class KESTA_API logger {
 public:
  static const long default_level = reg::INFO;  ///< That of a new logger.

  /// Without a folder and without a callback.
  explicit logger(const std::wstring& name = std::wstring(), long level = default_level);

  logger(const logger&) = delete;
  logger& operator=(const logger&) = delete;
  ~logger();

  /// A name for the program's own use: it is written nowhere.
  logger& set_name(const std::wstring& name);
  /// The folder of the log files; it is not made. Empty for no files.
  logger& set_path(const ruvo::file& folder);
  /// Entries of a level above this one are dropped.
  logger& setLevel(long level) noexcept;
  /// The callback, which is not owned: it must live until it is replaced and the entries on their way are
  /// through. Null for none.
  logger& set_callback(IOnLog* callback) noexcept;

  /// Whether entries, those up to the level, go to the file of the day too, as lines "LEVEL: first: second".
  /// A new logger does not do that.
  logger& set_entries_to_file(bool wanted) noexcept;

  /// What was set.
  std::wstring get_name() const;
  ruvo::file get_path() const;
  long get_level() const noexcept;

  /// An entry of the level that the name says. An exception stands for its message: that of a
  /// ruvo::exception, the what() of another std::exception, with its detail in brackets where the message
  /// does not say it.
  void assertion(const std::wstring& first, const std::wstring& second) noexcept;
  void assertion(const std::wstring& first, const std::exception& error) noexcept;
  void assertion(const std::wstring& first, const std::exception_ptr& error) noexcept;
  void failure(const std::wstring& first, const std::wstring& second) noexcept;
  void failure(const std::wstring& first, const std::exception& error) noexcept;
  void warning(const std::wstring& first, const std::wstring& second) noexcept;
  void warning(const std::wstring& first, const std::exception& error) noexcept;
  void info(const std::wstring& first, const std::wstring& second) noexcept;
  void debug(const std::wstring& first, const std::wstring& second) noexcept;
  void sql(const std::wstring& first, const std::wstring& second) noexcept;
  void verbose(const std::wstring& first, const std::wstring& second) noexcept;
  /// An entry of any level, also one without a name.
  void log(long level, const std::wstring& first, const std::wstring& second) noexcept;
  /// An INFO entry with what the stopwatch shows, "12.345 ms", as its second text; gives the milliseconds.
  double time(const std::wstring& text) noexcept;
  /// Starts the stopwatch again.
  void reset_time() noexcept;

  /// Appends a line, time stamp and text, to today's file when the folder exists, whatever the level. Days
  /// are those of local time, as in date(times::LOCAL). The files are UTF-8, each line ended by CRLF; each
  /// line is written whole, whichever threads and processes write to the file. Control characters and
  /// separators of lines in the text become spaces.
  void log(const std::wstring& text) noexcept;
  /// Brings everything to the disk and to the callback's target, and lets go of the file.
  void flush() noexcept;
  /// The path of a day's file, whether there is one or not.
  ruvo::file file(const date& day) const;
  /// The log of a day; empty when there is none.
  std::wstring read(const date& day) const noexcept;
  /// False when there is no such log or it cannot be erased.
  bool erase(const date& day) noexcept;
  /// Erases the logs of days before the last seven, today included, and nothing else; how many went.
  std::size_t clean_week() noexcept;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

/// The logger of the calling thread's application. Threads without one share a logger, which loses every
/// entry until it is given a callback.
class KESTA_API log {
 public:
  log() = delete;  ///< Only static functions.

  /// What logger has under the same name.
  static void assertion(const std::wstring& first, const std::wstring& second) noexcept;
  static void assertion(const std::wstring& first, const std::exception& error) noexcept;
  static void assertion(const std::wstring& first, const std::exception_ptr& error) noexcept;
  static void failure(const std::wstring& first, const std::wstring& second) noexcept;
  static void failure(const std::wstring& first, const std::exception& error) noexcept;
  static void warning(const std::wstring& first, const std::wstring& second) noexcept;
  static void warning(const std::wstring& first, const std::exception& error) noexcept;
  static void info(const std::wstring& first, const std::wstring& second) noexcept;
  static void debug(const std::wstring& first, const std::wstring& second) noexcept;
  static void sql(const std::wstring& first, const std::wstring& second) noexcept;
  static void verbose(const std::wstring& first, const std::wstring& second) noexcept;
  static void set_level(long level) noexcept;
  static long get_level() noexcept;
  static void set_callback(IOnLog* callback) noexcept;
  static void flush() noexcept;
  static double time(const std::wstring& text) noexcept;

  /// How many entries and lines of all loggers of the process were lost so far: entries that their level
  /// lets pass, without a callback or a file, or with a callback that threw or a file that could not be
  /// written. The library's targets count for themselves what they could not write, also where another one
  /// took it. What goes to a day's file in the second after somebody erased it is not noticed. A debugger is
  /// shown the number when an application ends.
  static unsigned long long get_lost() noexcept;
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
