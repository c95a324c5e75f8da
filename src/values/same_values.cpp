// SPDX-License-Identifier: BSL-1.0

// The exact comparison of values.

#include "values/same_values.hpp"

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>

#include <cstddef>
#include <utility>
#include <vector>

#include "values/cell.hpp"
#include "values/kinds.hpp"

namespace ruvo::detail {

namespace {

/// Pairs of values that are still to be compared lie on a stack of its own.
class comparison {
 public:
  bool run() {
    while (!pairs_.empty()) {
      const auto [a, b] = pairs_.back();
      pairs_.pop_back();
      if (!meet(*a, *b)) return false;
    }
    return true;
  }
  void add(const xvar& a, const xvar& b) { pairs_.emplace_back(&a, &b); }
  /// False when the names differ.
  bool add_qualities(const xvar& a, const xvar& b) {
    const auto &left = a.get_qualities(), &right = b.get_qualities();
    if (left.size() != right.size()) return false;
    for (auto x = left.begin(), y = right.begin(); x != left.end(); ++x, ++y) {
      if (x->first != y->first) return false;
      pairs_.emplace_back(&x->second, &y->second);
    }
    return true;
  }

 private:
  bool meet(const var& a, const var& b) {
    if (cell::is_text(a) && cell::is_text(b)) return cell::text(a) == cell::text(b);
    if (family_of(a) == family::integer && family_of(b) == family::integer)
      return cell::integer(a) == cell::integer(b) && is_negative(a) == is_negative(b);
    if (cell::kind_of(a) != cell::kind_of(b)) return false;
    switch (cell::kind_of(a)) {
      case kind::null:
        return true;
      case kind::binary:
        return *cell::pointer<binary>(a) == *cell::pointer<binary>(b);
      case kind::memo:
      case kind::object:
        return a == b;
      case kind::decimal:  // also how many decimals are written
        return *cell::pointer<decimal>(a) == *cell::pointer<decimal>(b) &&
               cell::pointer<decimal>(a)->get_scale() == cell::pointer<decimal>(b)->get_scale();
      case kind::list:
        return meet_lists(cell::as_list(a), cell::as_list(b));
      case kind::bundle:
        return meet_bundles(cell::as_bundle(a), cell::as_bundle(b));
      case kind::date:
      case kind::time:
      case kind::datetime:
        return cell::integer(a) == cell::integer(b) && cell::mode(a) == cell::mode(b);
      default:
        return cell::integer(a) == cell::integer(b);  // of a float or double, its bits
    }
  }
  static bool is_negative(const var& v) noexcept {
    return cell::kind_of(v) != kind::uxlong && cell::integer(v) < 0;
  }
  bool meet_all(const xvar& a, const xvar& b) {
    add(a, b);
    return add_qualities(a, b);
  }
  bool meet_lists(const list& a, const list& b) {
    if (a.size() != b.size()) return false;
    for (std::size_t n = 0; n < a.size(); ++n)
      if (!meet_all(a[n], b[n])) return false;
    return true;
  }
  bool meet_bundles(const bundle& a, const bundle& b) {
    if (a.size() != b.size()) return false;
    for (auto x = a.begin(), y = b.begin(); x != a.end(); ++x, ++y)
      if (x->first != y->first || !meet_all(x->second, y->second)) return false;
    return true;
  }

  std::vector<std::pair<const var*, const var*>> pairs_;
};

}  // namespace

bool are_same(const xvar& a, const xvar& b) {
  comparison work;
  work.add(a, b);
  return work.add_qualities(a, b) && work.run();
}

bool have_same_qualities(const xvar& a, const xvar& b) {
  comparison work;
  return work.add_qualities(a, b) && work.run();
}

}  // namespace ruvo::detail
