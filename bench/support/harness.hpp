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
  /// Makes ready for so many runs; its own time does not count.
  std::function<void(int)> prepare = nullptr;
};

/// How many times as fast as the peer kesta has to be. Of a cost: the multiple of the peer's that is allowed.
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

/// One figure of kesta's beside the same one of a peer.
struct comparison {
  enum kind { speed, cost };

  std::string row, of, unit, peer;
  double own, its;
  double ratio;  // of a speed: own to the peer's; of a cost, too
  kind what = speed;
};

/// Prints a line for each comparison, its fields separated by bars: subject, row, what it was measured on,
/// kesta's figure, the peer, its figure, the ratio ("x": times as fast, "of": of the peer's cost), and
/// whether that is as it has to be. tools/bench makes a page of such lines.
class table {
 public:
  explicit table(std::string subject);
  /// How many targets were missed.
  ~table();
  table(const table&) = delete;
  table& operator=(const table&) = delete;

  /// Measures and prints; about 0.3 seconds for each competitor.
  void row(const std::string& row, const std::string& of, amount of_one_run,
           const std::vector<competitor>& all, const std::vector<target>& targets);
  /// Prints what was measured elsewhere.
  void line(const comparison& all, const std::vector<target>& targets);

 private:
  std::string subject_;
  int checked_ = 0, missed_ = 0;
};

double median(std::vector<double> values);

}  // namespace bench
