// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the readers of JSON make of values. Those of all open containers lie on one stack; a container is made
// when it is complete, of as many as it has, in one piece.

#include <ruvo/bundle.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/list.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/xvar.hpp>

#include <cstddef>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "memory/block_cache.hpp"
#include "memory/name_tree.hpp"
#include "memory/near_stack.hpp"
#include "memory/thread_cache.hpp"
#include "serializer/json/standard_strings.hpp"
#include "serializer/json/tree.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// What ends a reading from inside, at the position where the reader is.
struct limit_reached {
  const wchar_t* what;
};
struct name_twice {
  std::wstring name;
};

/// The names that the calling thread met, in texts that write them alike; its own where it can keep none.
class known_names {
 public:
  explicit known_names(detail::name_tree detail::thread_cache::*kept);
  known_names(const known_names&) = delete;
  known_names& operator=(const known_names&) = delete;

  detail::name_tree& tree() noexcept { return *tree_; }

 private:
  std::optional<detail::name_tree> own_;
  detail::name_tree* tree_;
};

/// Values on their way into containers.
class value_stack {
 public:
  value_stack() noexcept : first_(inside()), end_(first_), limit_(first_ + near) {}
  value_stack(const value_stack&) = delete;
  value_stack& operator=(const value_stack&) = delete;
  ~value_stack() {
    drop_to(0);
    give_room();
  }

  std::size_t size() const noexcept { return static_cast<std::size_t>(end_ - first_); }
  std::size_t capacity() const noexcept { return static_cast<std::size_t>(limit_ - first_); }
  bool is_full() const noexcept { return end_ == limit_; }
  xvar* at(std::size_t n) noexcept { return first_ + n; }
  /// There has to be room.
  template <class... Args>
  xvar& push(Args&&... args) noexcept {
    return *new (end_++) xvar(static_cast<Args&&>(args)...);
  }
  void drop_to(std::size_t size) noexcept {
    while (end_ != first_ + size) (--end_)->xvar::~xvar();  // by name: without a virtual call
  }
  /// The same where they were moved from, and so own nothing.
  void forget_to(std::size_t size) noexcept { end_ = first_ + size; }
  void grow();

 private:
  static constexpr std::size_t near = 64;

  xvar* inside() noexcept { return reinterpret_cast<xvar*>(near_); }
  void give_room() noexcept {
    if (first_ != inside()) detail::give_block(first_, capacity() * sizeof(xvar));
  }

  xvar *first_, *end_, *limit_;
  alignas(xvar) std::byte near_[near * sizeof(xvar)];
};

/// An open container.
struct open_container {
  std::size_t first_value = 0;
  bool is_object = false;
  detail::name_node* holder = nullptr;    // the member, if any, that holds it, or a list around it
  detail::name_node* at = nullptr;        // the last name that the tree knows
  detail::name_branch* next = nullptr;    // next_, while a container inside it is open
  detail::bundle_store* store = nullptr;  // of an object with names that the tree doesn't take; owned
  std::size_t first_place = 0;            // in places_, of the values of such an object
};

/// Takes what a reader meets, in the order of the text, and makes a value of it. Throws limit_reached,
/// name_twice and std::bad_alloc; it may only be settled or cleared then.
class json_builder {
 public:
  /// The tree has to stay until the builder is cleared or destroyed, and nobody else may change it meanwhile.
  json_builder(detail::name_tree& names, const json_read_options& options) noexcept
      : names_(names), options_(options) {}
  json_builder(const json_builder&) = delete;
  json_builder& operator=(const json_builder&) = delete;
  ~json_builder() { clear(); }

  void clear() noexcept;
  bool is_empty() const noexcept { return values_.size() == 0; }
  std::size_t depth() const noexcept { return depth_; }
  /// Of the innermost container; there has to be one.
  bool in_object() noexcept { return frames_.top().is_object; }
  /// The whole, which is complete; the builder is empty then.
  xvar take() noexcept {
    xvar out = std::move(*values_.at(0));
    clear();
    return out;
  }

  void null() { push(); }
  void boolean(bool value) { detail::cell::set_integer(push(), detail::kind::boolean, value); }
  void integer(long long value) { detail::cell::set_integer(push(), detail::kind::xlong, value); }
  /// Given as 64 bits.
  void natural(long long bits) { detail::cell::set_integer(push(), detail::kind::uxlong, bits); }
  void real(double value) { detail::cell::set_real(push(), value); }
  void exact(const decimal& value) {
    xvar& to = push();
    account(sizeof value);
    static_cast<var&>(to) = var(value);
  }
  void text(std::wstring_view text) {
    xvar& to = push();
    account_text(text.size());
    detail::cell::set_text(to, text);
  }
  /// Of ASCII, behind which `readable` bytes in all can be read.
  void text(std::string_view text, std::size_t readable) {
    xvar& to = push();
    if (text.size() > detail::cell::small_length) return long_text(to, text);
    wchar_t room[8] = {};
#ifdef KESTA_X64
    if (readable >= 8) {
      widen_8(room, text.data());
      return detail::cell::set_small_text(to, room, text.size());
    }
#endif
    widen(room, text.data(), text.size());
    detail::cell::set_small_text(to, room, text.size());
  }

  void open_object() { open(true); }
  void open_list() { open(false); }
  void close();

  /// The name of a member, if it is the one to expect. `written` is how it stands in the text.
  bool take_expected(const void* written, std::size_t bytes) noexcept {
    detail::name_node* const expected = next_->last;
    if (!expected || !expected->is_written(written, bytes)) return false;
    return take_node(expected);
  }
  /// The same, of a text of which no more than the rest is known.
  template <class Unit>
  const Unit* take_expected_at(const Unit* first, const Unit* end) noexcept {
    const detail::name_node* const expected = next_->last;
    if (!expected) return nullptr;
    const std::size_t units = expected->written_bytes / sizeof(Unit);
    if (static_cast<std::size_t>(end - first) <= units || first[units] != Unit('"') ||
        !expected->begins(first))
      return nullptr;
    return take_node(next_->last) ? first + units : nullptr;
  }
  /// Any name; `name` is what it says.
  void take_name(const void* written, std::size_t bytes, std::wstring_view name);

  /// For a reader that goes on by itself, in the middle of open containers: moves the values behind those of
  /// the containers that are open in `tree`, where the outermost one here is the innermost, and opens the
  /// others there. A name that has no value yet is forgotten. The builder is empty then; what it holds when
  /// this throws may only be cleared.
  void settle(json_tree& tree, bundle& outermost);

 private:
  using entry = bundle::entry;
  using frame = open_container;

  bool take_node(detail::name_node* node) noexcept {
    if (node->depth > options_.limits.members) return false;
    frames_.top().at = node;
    next_ = &node->after;
    return true;
  }

  xvar& push() {
    if (values_.is_full() || elements_ == options_.limits.elements) [[unlikely]]
      make_room();
    ++elements_;
    return values_.push();
  }
  void make_room();
  void long_text(xvar& to, std::string_view text);
  void open(bool is_object);
  xvar made_list(const frame& f);
  xvar made_object(frame& f);
  detail::bundle_store* store_of(frame& f, std::size_t size);
  detail::bundle_store* filled_store(frame& f, std::size_t size) noexcept;
  void account_text(std::size_t units) {
    if (units > detail::cell::small_length) account(detail::cell::text_bytes(units));
  }
  void account(std::size_t bytes) {
    bytes_ += bytes;
    if (bytes_ > options_.limits.bytes) throw limit_reached{L"memoria"};
  }
  void settle(const frame& f, std::size_t count, list& into);
  void settle(frame& f, std::size_t count, bundle& into, bool named);
  const detail::shared_key* name_behind(const frame& f, std::size_t count) const noexcept;
  bool take_into_tree(frame& f, const void* written, std::size_t bytes, std::wstring_view name);
  void leave_tree(frame& f);
  void take_into_store(frame& f, std::wstring_view name);

  static detail::name_branch nothing_known;  // never changes

  detail::name_tree& names_;
  const json_read_options& options_;
  value_stack values_;
  detail::near_stack<frame, 16> frames_;
  std::size_t depth_ = 0;
  std::vector<entry*> places_;  // for the values of objects with a store; null for one that is dropped
  detail::name_branch* next_ = &nothing_known;  // of the innermost object
  std::size_t elements_ = 0;
  std::size_t bytes_ = 0;  // of complete values, about
};

}  // namespace ruvo::serializer
