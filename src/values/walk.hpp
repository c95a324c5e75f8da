// SPDX-License-Identifier: BSL-1.0
#pragma once

// The walk over nested values. It keeps its place in every open container on a stack of its own, so that
// depth costs memory and none of the thread's stack.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xvar.hpp>

#include <cstddef>
#include <string>
#include <type_traits>
#include <utility>

#include "memory/near_stack.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::detail {

/// The order in which a walk meets the members of a bundle.
enum class order : unsigned char { by_key, by_position };

/// What holds the values that a walk meets.
enum class holder : unsigned char { list, bundle, qualities };

/// The calls that a walk makes, for a visitor to derive from and to replace those that it needs. The frame is
/// the holder's, and may be used until the visitor opens another; enter, between and leave open none.
struct visitor {
  template <class Frame>
  static void enter(const Frame& /*frame*/) noexcept {}  ///< Before the first value, or the end.
  template <class Frame>
  static void between(const Frame& /*frame*/) noexcept {}  ///< Before every other value.
  template <class Frame>
  static void leave(const Frame& /*frame*/) noexcept {}  ///< Behind the last value.

  // Each visitor has its own element(frame, value), of a list, and member(frame, key, value), of a bundle.

  template <class Frame>
  static void quality(const Frame& /*frame*/, const std::wstring& /*key*/, const var& /*value*/) noexcept {}
};

struct no_notes {};

/// `Value` is xvar for a visitor that changes values. `Notes` are what the visitor keeps with a frame.
template <class Value = const xvar, class Notes = no_notes>
class walk {
  template <class T>
  using like_value = std::conditional_t<std::is_const_v<Value>, const T, T>;
  static constexpr std::size_t usual_depth = 4;

 public:
  /// An open holder of values.
  struct frame : Notes {
    holder what = holder::list;
    bool entered = false;
    std::size_t taken = 0, size = 0;
    Value* elements = nullptr;            // of a list
    const bundle_store* store = nullptr;  // of a bundle that has any members
    bundle::entry* entry = nullptr;       // in key order: the next one, and its rank
    std::size_t rank = 0;
    xvar::qualities_map::const_iterator quality{};  // the next one
  };

  explicit walk(order members = order::by_position) noexcept : order_(members) {}

  // What is opened is visited when the visitor has returned to the walk, the last opened first; the holder
  // around it goes on behind.

  frame& open(like_value<list>& in) {
    frame& f = push(holder::list, in.size());
    f.elements = in.data();
    return f;
  }
  frame& open(like_value<bundle>& in) { return open(bundle_access::store(in)); }
  frame& open(const bundle_store* store) {
    frame& f = push(holder::bundle, store ? store->size() : 0);
    f.store = store;
    if (store && order_ == order::by_key) f.entry = store->first();
    return f;
  }
  frame& open(const xvar::qualities_map& in) {
    frame& f = push(holder::qualities, in.size());
    f.quality = in.begin();
    return f;
  }
  /// The container in a cell that holds one.
  frame& open_held(const var& v) {
    return cell::kind_of(v) == kind::list ? open(cell::as_list(v)) : open(cell::as_bundle(v));
  }

  /// Visits what is open, and whatever the visitor opens.
  template <class Visitor>
  void run(Visitor& visitor) {
    while (!open_.empty()) {
      turned_ = false;
      frame& f = open_.top();  // until the visitor opens another
      if (!std::exchange(f.entered, true)) visitor.enter(f);
      take_values(f, visitor);
      if (turned_) continue;
      visitor.leave(f);
      open_.pop();
    }
  }
  /// The open holders, the outermost first: of each but the innermost, what it is at holds the next one.
  const near_stack<frame, usual_depth>& open_frames() const noexcept { return open_; }
  /// The member that an open bundle is at.
  const bundle::entry& member_of(const frame& f) const noexcept {
    if (order_ == order::by_position) return *f.store->nth(f.taken - 1);
    std::size_t rank = f.rank;
    return *f.store->step(f.entry, rank, false);
  }
  /// Ends the walk, for a visitor that has seen enough.
  void stop() noexcept {
    open_.clear();
    turned_ = true;
  }

 private:
  frame& push(holder what, std::size_t size) {
    turned_ = true;
    frame& f = open_.push();
    f.what = what;
    f.size = size;
    return f;
  }

  template <class Visitor>
  void take_values(frame& f, Visitor& visitor) {
    switch (f.what) {
      case holder::list:
        return each(f, visitor, [&](std::size_t at) { visitor.element(f, f.elements[at]); });
      case holder::bundle:
        if (!f.entry) return each(f, visitor, [&](std::size_t at) { member(f, visitor, *f.store->nth(at)); });
        return each(f, visitor, [&](std::size_t) {
          bundle::entry* const e = std::exchange(f.entry, f.store->next(f.entry, f.rank));
          member(f, visitor, *e);
        });
      default:
        return each(f, visitor, [&](std::size_t) {
          const auto& [key, value] = *f.quality++;
          visitor.quality(f, key, value);
        });
    }
  }
  /// Until the visitor turns away.
  template <class Visitor, class Take>
  void each(frame& f, Visitor& visitor, Take take) {
    while (!turned_ && f.taken != f.size) {
      if (f.taken != 0) visitor.between(f);
      take(f.taken++);
    }
  }
  template <class Visitor>
  static void member(frame& f, Visitor& visitor, bundle::entry& e) {
    visitor.member(f, e.first, static_cast<Value&>(e.second));
  }

  order order_;
  bool turned_ = false;  // away from the frame that is being visited
  near_stack<frame, usual_depth> open_;
};

}  // namespace ruvo::detail
