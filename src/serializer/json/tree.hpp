// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the reader of JSON makes of values: members of objects, elements of lists.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>

#include <cstddef>
#include <vector>

#include "values/bundle_store.hpp"
#include "values/cell.hpp"
#include "values/folded_key.hpp"

namespace ruvo::serializer {

/// The containers that are open. They are the caller's; outside of all of them values are members of his
/// bundle.
class json_tree {
 public:
  void clear() noexcept { open_.clear(); }

  std::size_t depth() const noexcept { return open_.size(); }
  bool in_list() const noexcept { return innermost_is(detail::kind::list); }
  bool in_object() const noexcept { return innermost_is(detail::kind::bundle); }
  /// The innermost container, which has to be a list.
  list& innermost_list() const noexcept { return detail::cell::as_list(*open_.back()); }
  /// The innermost container if it is an object, else `outermost`.
  bundle* innermost_object(bundle* outermost) const noexcept {
    return in_object() ? &detail::cell::as_bundle(*open_.back()) : outermost;
  }

  /// The member with the key, made when missing; what it holds is to be replaced.
  static xvar& member(bundle& in, const detail::key_view& key) {
    return detail::bundle_access::made_store(in).put(key)->second;
  }

  /// Replaces a value of the innermost container by an empty container, which is then the innermost one.
  void open(xvar& value, bool as_list) {
    static_cast<var&>(value).clear();
    if (as_list) {
      detail::cell::on_list(value);
    } else {
      detail::cell::on_bundle(value);
    }
    open_.push_back(&value);
  }

  /// The innermost container, if any, is complete. Its entries stay where they are: between two characters
  /// the caller may hold references to them.
  void close() noexcept {
    if (!open_.empty()) open_.pop_back();
  }

 private:
  bool innermost_is(detail::kind kind) const noexcept {
    return !open_.empty() && detail::cell::kind_of(*open_.back()) == kind;
  }

  std::vector<xvar*> open_;  // the outermost first
};

}  // namespace ruvo::serializer
