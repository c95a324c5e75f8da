// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the reader of JSON makes of values: members of objects, elements of lists.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>

#include <algorithm>
#include <string_view>
#include <vector>

#include "serializer/usual_sizes.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

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

  /// The member with the key in the innermost object; what it holds is to be replaced.
  xvar& member(bundle& in, std::wstring_view key) const {
    const detail::folded_key folded(key);
    const std::size_t room = std::max<std::size_t>(sizes_.at(depth(), 0), 4);
    return detail::bundle_access::made_store(in, room).put(detail::key_view(folded))->second;
  }

  /// Replaces a value of the innermost container by an empty container, which is then the innermost one.
  void open(xvar& value, bool as_list) {
    static_cast<var&>(value).clear();
    if (as_list) {
      list& made = detail::cell::on_list(value);
      if (const std::size_t room = sizes_.at(depth() + 1, 0)) made.reserve(static_cast<unsigned long>(room));
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
  /// The same where nobody can hold any yet: it also gives back the room that it does not need, and its size
  /// is remembered.
  void close_fitted() {
    if (in_list()) sizes_.note(depth(), innermost_list().size());
    if (in_object()) sizes_.fit(depth(), detail::cell::as_bundle(*open_.back()));
    close();
  }

 private:
  bool innermost_is(detail::kind kind) const noexcept {
    return !open_.empty() && detail::cell::kind_of(*open_.back()) == kind;
  }

  std::vector<xvar*> open_;  // the outermost first
  usual_sizes sizes_;
};

}  // namespace ruvo::serializer
