// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

/// One test of this program, a disabled one too, in a process of its own that prints nothing. It is ended
/// from outside, in whatever it does: a process whose own thread ends it waits now and then for ever under
/// Wine, for a lock of the others.
class other_process {
 public:
  explicit other_process(const std::string& test);  ///< `test` as "suite.name".
  other_process(const other_process&) = delete;
  other_process& operator=(const other_process&) = delete;
  ~other_process();

  bool runs() const;  ///< Whether it has started and not ended yet.
  void end();         ///< Ends it and waits until it is gone.

 private:
  struct state;
  std::unique_ptr<state> state_;
};
