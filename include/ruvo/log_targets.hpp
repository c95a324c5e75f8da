// SPDX-License-Identifier: BSL-1.0
#pragma once

// Ready-made callbacks for loggers. All may be shared by loggers and threads.

#include <ruvo/logger.hpp>

#include <initializer_list>
#include <mutex>
#include <vector>

namespace ruvo::reg {

/// A line for each entry, "[time stamp] LEVEL: first: second", in the file of the day, as logger::log(text)
/// writes them; it may be the same file.
class KESTA_API day_file : public IOnLog {
 public:
  /// The folder is not made; entries that come while it is missing are lost.
  explicit day_file(const file& folder);

  day_file(const day_file&) = delete;
  day_file& operator=(const day_file&) = delete;
  ~day_file() override;

  void on_log(long level, const std::wstring& second, const std::wstring& first) override;
  void flush() override;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

/// The same lines, shown to a debugger.
class KESTA_API debugger_output : public IOnLog {
 public:
  debugger_output();

  ~debugger_output() override;

  void on_log(long level, const std::wstring& second, const std::wstring& first) override;
};

/// The same lines for who runs the program: ASSERTION, FAILURE and WARNING on the standard error, the others
/// on the standard output. A console shows all characters, a file or a pipe is given UTF-8, and nothing is
/// buffered. In a process without these outputs the entries are lost.
class KESTA_API console_output : public IOnLog {
 public:
  /// Looks for the outputs with each entry.
  console_output();

  console_output(const console_output&) = delete;
  console_output& operator=(const console_output&) = delete;
  ~console_output() override;

  void on_log(long level, const std::wstring& second, const std::wstring& first) override;

 private:
  std::mutex guard_;
};

/// The last entries, for a report when something went wrong. Taking an entry needs no memory and no system
/// call, so it may go on while the process dies; texts beyond `longest_text` units are cut.
class KESTA_API ring_buffer : public IOnLog {
 public:
  /// Units of both texts and of the ": " between them.
  static const std::size_t longest_text = 240;

  /// Keeps the last `entries` entries, at least one.
  explicit ring_buffer(std::size_t entries);

  ring_buffer(const ring_buffer&) = delete;
  ring_buffer& operator=(const ring_buffer&) = delete;
  ~ring_buffer() override;

  void on_log(long level, const std::wstring& second, const std::wstring& first) override;
  /// The lines, oldest first. Where a thread died in the middle of an entry it gives none rather than wait
  /// for ever.
  std::vector<std::wstring> snapshot() const;
  /// How many entries it keeps at most.
  std::size_t capacity() const noexcept;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

/// Hands each entry on to several callbacks, which it does not own, in their order. One that throws does not
/// keep it from the others.
class KESTA_API tee : public IOnLog {
 public:
  tee(std::initializer_list<IOnLog*> targets);  ///< Null ones are left out.
  tee(const tee&) = delete;
  tee& operator=(const tee&) = delete;
  ~tee() override;

  void on_log(long level, const std::wstring& second, const std::wstring& first) override;
  void flush() override;

 private:
  std::vector<IOnLog*> targets_;
};

}  // namespace ruvo::reg
