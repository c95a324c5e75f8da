// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the readers of XML make of elements: members, lists of what repeats, qualities, texts.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "serializer/usual_sizes.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// A text beside elements, and how many of them come before it.
struct xml_text_between {
  std::size_t depth, children;
  std::wstring text;
};

/// The elements that are open. The one that was opened last is a leaf until another one is opened inside it:
/// it has a text or nothing. All of them are the caller's.
class xml_tree {
 public:
  /// Whether lists have the order of the document, or what came before the first repetition by key.
  explicit xml_tree(bool in_order = false) noexcept : in_order_(in_order) {}

  void clear() noexcept {
    open_.clear();
    has_leaf_ = false;
  }

  bool empty() const noexcept { return open_.empty(); }
  /// How many elements are open, without the leaf.
  std::size_t depth() const noexcept { return open_.size() - (has_leaf_ ? 1 : 0); }
  /// The value of the leaf, or null.
  xvar* leaf() const noexcept { return has_leaf_ ? open_.back().value : nullptr; }
  /// The name of the innermost element.
  std::wstring_view name() const noexcept {
    return std::wstring_view(names_).substr(open_.back().name, open_.back().length);
  }

  /// An element inside the innermost one, whose text is lost. Outside of all it becomes a member of
  /// `document` in place of what had its name.
  void open(bundle& document, std::wstring_view name) {
    if (has_leaf_) detail::cell::on_bundle(*leaf());
    has_leaf_ = false;
    const std::size_t from = open_.empty() ? 0 : open_.back().name + open_.back().length;
    names_.replace(from, std::wstring::npos, name);
    open_.push_back({from, name.size(), &place(document, name)});
    has_leaf_ = true;
  }

  /// How many elements and texts are in the innermost element.
  std::size_t children() const noexcept {
    const xvar& innermost = *open_.back().value;
    if (has_leaf_) return 0;
    return detail::cell::kind_of(innermost) == detail::kind::list ? detail::cell::as_list(innermost).size()
                                                                  : detail::cell::as_bundle(innermost).size();
  }
  /// Makes the innermost element a list, with these texts between its children.
  void mix(const xml_text_between* first, const xml_text_between* last) {
    xvar& innermost = *open_.back().value;
    if (has_leaf_) {
      detail::cell::on_list(innermost);
    } else if (detail::cell::kind_of(innermost) != detail::kind::list) {
      become_list(innermost);
    }
    has_leaf_ = false;
    if (first == last) return;
    list& items = detail::cell::as_list(innermost);
    list merged;
    merged.reserve(items.size() + static_cast<std::size_t>(last - first));
    std::size_t taken = 0;
    const auto take_items = [&](std::size_t before) {
      for (; taken < before; ++taken) merged.push_back(std::move(items[taken]));
    };
    for (; first != last; ++first) {
      take_items(first->children);
      add_text(merged, first->text);
    }
    take_items(items.size());
    items = std::move(merged);
  }
  /// A text behind the children of the innermost element, which is a list.
  void add_text(std::wstring_view text) { add_text(detail::cell::as_list(*open_.back().value), text); }

  void set_text(std::wstring_view text) {
    var& value = *leaf();
    value.clear();
    detail::cell::set_text(value, text);
  }

  bool has_attribute(std::wstring_view name) const {
    const xvar::qualities_map* const qualities = detail::cell::qualities(*leaf());
    return qualities && qualities->count(std::wstring(name)) > 0;
  }
  /// Sets an attribute of the leaf. Names that differ in case only are one: the name that the leaf has it
  /// under, and whether it is new.
  std::pair<std::wstring_view, bool> set_attribute(std::wstring_view name, std::wstring_view text) {
    xvar::qualities_map& qualities = leaf()->hack_qualities();
    const std::size_t before = qualities.size();
    auto& [key, value] = *qualities.try_emplace(qualities.end(), std::wstring(name));
    value.clear();
    detail::cell::set_text(value, text);
    return {key, qualities.size() > before};
  }

  /// The innermost element is complete. What is in it stays where it is: between two characters the caller
  /// may hold references to it.
  void close() noexcept {
    has_leaf_ = false;
    open_.pop_back();
  }
  /// The same where nobody can hold any yet: it also gives back the room that it does not need, and its size
  /// is remembered.
  void close_fitted() {
    var& complete = *open_.back().value;
    if (!has_leaf_ && detail::cell::kind_of(complete) == detail::kind::bundle)
      sizes_.fit(depth(), detail::cell::as_bundle(complete));
    close();
  }

 private:
  struct open_element {
    std::size_t name, length;  // where its name is in names_
    xvar* value;
  };

  /// Where an element with this name belongs.
  xvar& place(bundle& document, std::wstring_view name) {
    const detail::folded_key folded(name);
    const detail::key_view key(folded);
    if (open_.empty()) {
      xvar& outermost = detail::bundle_access::made_store(document, 1).put(key)->second;
      static_cast<var&>(outermost).clear();
      outermost.clear_qualities();
      return outermost;
    }
    xvar& parent = *open_.back().value;
    if (detail::cell::kind_of(parent) != detail::kind::list) {
      const std::size_t room = std::max<std::size_t>(sizes_.at(depth(), 4), 1);
      detail::bundle_store& children =
          detail::bundle_access::made_store(detail::cell::on_bundle(parent), room);
      if (!children.find(key)) return children.add(key)->second;
      become_list(parent);
    }
    return add_item(detail::cell::as_list(parent), key);
  }

  static xvar& add_item(list& items, const detail::key_view& key) {
    return detail::bundle_access::made_store(items.on_back_bundle(), 1).add(key)->second;
  }

  static void add_text(list& items, std::wstring_view text) {
    detail::cell::set_text(add_item(items, detail::key_view(std::wstring_view(L"#text"))), text);
  }

  /// Visits the entries in the order that lists have.
  template <class Visit>
  void each_of(bundle& children, Visit visit) const {
    if (!in_order_) {
      for (auto& child : children) visit(child);
      return;
    }
    const detail::bundle_store& store = *detail::bundle_access::store(children);
    for (std::size_t n = 0; n < store.size(); ++n) visit(*store.nth(n));
  }

  void become_list(var& repeated) const {
    bundle& children = detail::cell::as_bundle(repeated);
    list made;
    made.reserve(children.size() + 1);
    each_of(children, [&](const bundle::entry& child) {
      add_item(made, detail::key_view(*detail::bundle_store::key_of(&child)));
    });
    var whole;
    list& items = detail::cell::set_box<list>(whole, std::move(made));
    // From here on nothing can fail, and nothing is lost.
    auto item = items.begin();
    each_of(children, [&](bundle::entry& child) {
      xvar& to = detail::cell::as_bundle(*item++).begin()->second;
      static_cast<var&>(to) = static_cast<var&&>(child.second);
      std::swap(detail::cell::qualities(to), detail::cell::qualities(child.second));
    });
    repeated = std::move(whole);
  }

  bool in_order_;
  std::vector<open_element> open_;  // the outermost first
  std::wstring names_;              // one after the other; behind the innermost one, what is left of others
  bool has_leaf_ = false;
  usual_sizes sizes_;
};

}  // namespace ruvo::serializer
