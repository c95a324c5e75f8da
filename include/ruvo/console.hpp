// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::console, lines for who runs the program.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <memory>
#include <string>

namespace ruvo {

/// The standard output of the process: a file or a pipe is given UTF-8. A program that has none attaches to
/// the console that started it, or makes one, with the first text. May be used from any thread; the texts
/// written through one object do not mix.
class KESTA_API console {
 public:
  /// Does nothing yet.
  console();

  console(const console&) = delete;
  console& operator=(const console&) = delete;
  /// Lets go of a console that it made.
  ~console();

  /// Makes sure that there is an output. False on failure: SystemException, code 11.
  bool open(exception& err);
  /// Writes the text. Throws what open() reports, and exc::systemErrorCode when not all could be written.
  void write(const std::wstring& text);
  /// The text and CRLF, in one piece.
  void write_line(const std::wstring& text);
  /// Whether the output is a console now, rather than a file, a pipe or nothing.
  bool is_terminal() const noexcept;
  /// Lets go of a console that the library made; the next text makes one anew.
  void close() noexcept;

 private:
  struct state;
  std::unique_ptr<state> state_;
};

}  // namespace ruvo
