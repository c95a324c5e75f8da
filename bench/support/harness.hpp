// SPDX-License-Identifier: BSL-1.0
#pragma once

// Measuring competitors side by side in one process. They take turns, so that a drift of the machine hits all
// alike, and what is compared are medians.

#include <atomic>
#include <functional>
#include <string>
#include <vector>

namespace bench {

inline const volatile void* volatile observed;

/// Makes the optimiser believe that `value` is read here, and that memory it can reach may have changed.
template <class T>
void use(const T& value) {
  observed = &value;
  std::atomic_signal_fence(std::memory_order_seq_cst);
}

/// The first competitor is kesta, the others are its peers.
struct competitor {
  std::string name;
  std::function<void()> run;
};

/// How many times as fast as the peer kesta has to be.
struct target {
  std::string peer;
  double ratio;
};

/// What one run works through. Results are shown as millions of characters a second, or as nanoseconds for
/// each operation.
struct amount {
  enum unit { characters, operations };

  double count;
  unit what;
};

/// Prints a line for each subject: kesta's own result, then its speed as a multiple of each peer's.
class table {
 public:
  explicit table(std::vector<std::string> peers);
  /// How many targets were missed.
  ~table();
  table(const table&) = delete;
  table& operator=(const table&) = delete;

  /// Measures and prints; about 0.3 seconds for each competitor.
  void row(const std::string& subject, const std::string& corpus, amount of_one_run,
           const std::vector<competitor>& all, const std::vector<target>& targets);

 private:
  int checked_ = 0, missed_ = 0;
};

}  // namespace bench
