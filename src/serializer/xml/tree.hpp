#pragma once

// What a reader of XML makes of elements: members, lists of what repeats, qualities, texts.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "serializer/scan.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

/// The text of an element while it is read.
class xml_text {
 public:
  void clear() noexcept {
    text_.clear();
    solid_ = 0;
  }
  /// Blanks at the ends are lost.
  void add(std::wstring_view part) {
    std::size_t blanks = 0;
    if (solid_ == 0) {
      while (blanks < part.size() && is_xml_blank(part[blanks])) ++blanks;
      part.remove_prefix(blanks);
    }
    text_ += part;
    std::size_t size = part.size();
    while (size > 0 && is_xml_blank(part[size - 1])) --size;
    if (size > 0) solid_ = text_.size() - (part.size() - size);
  }
  /// What is added here until end_verbatim() is kept as it is.
  std::wstring& verbatim() noexcept {
    verbatim_from_ = text_.size();
    return text_;
  }
  void end_verbatim() noexcept {
    if (text_.size() > verbatim_from_) solid_ = text_.size();
  }

  std::wstring_view text() const noexcept { return std::wstring_view(text_).substr(0, solid_); }

 private:
  std::wstring text_;
  std::size_t solid_ = 0;  // without the blanks at the end that may be lost
  std::size_t verbatim_from_ = 0;
};

/// Makes the elements. A document that is given up is destroyed with it.
class xml_tree {
 public:
  /// The name of the innermost element.
  std::wstring_view name() const noexcept { return open_.back().name; }

  /// `name` must outlive the element.
  void open(std::wstring_view name) {
    xvar& element = place(name);
    open_.push_back({name, &element});
    aliases_.clear();
  }

  /// False when the innermost element has the attribute already.
  bool set_attribute(std::wstring_view name, std::wstring_view value) {
    xvar::qualities_map& qualities = open_.back().value->hack_qualities();
    const auto [at, made] = qualities.try_emplace(std::wstring(name));
    if (!made && (at->first == name || !aliases_.insert(name).second)) return false;
    at->second.clear();
    detail::cell::set_text(at->second, value);
    return true;
  }

  /// The innermost element is complete; `text` is its value unless it got children.
  void close(std::wstring_view text) {
    var& value = *open_.back().value;
    if (detail::cell::kind_of(value) == detail::kind::null) {
      detail::cell::set_text(value, text);
    } else if (detail::cell::kind_of(value) == detail::kind::bundle) {
      bundle& children = detail::cell::as_bundle(value);
      detail::bundle_access::set(children,
                                 detail::bundle_store::fitted(detail::bundle_access::store(children)));
    }
    open_.pop_back();
  }

  bundle take_document() noexcept { return std::move(document_); }

 private:
  struct open_element {
    std::wstring_view name;
    xvar* value;
  };

  /// Where an element with this name belongs.
  xvar& place(std::wstring_view name) {
    const detail::folded_key folded(name);
    const detail::key_view key(folded.view());
    if (open_.empty()) return detail::bundle_access::made_store(document_, 1).add(key)->second;
    xvar& parent = *open_.back().value;
    if (detail::cell::kind_of(parent) != detail::kind::list) {
      detail::bundle_store& children = detail::bundle_access::made_store(detail::cell::on_bundle(parent));
      if (!children.find(key)) return children.add(key)->second;
      become_list(parent);
    }
    return add_item(detail::cell::as_list(parent), key);
  }

  static xvar& add_item(list& items, const detail::key_view& key) {
    return detail::bundle_access::made_store(items.on_back_bundle(), 1).add(key)->second;
  }

  static void become_list(var& repeated) {
    list items;
    for (auto& [key, child] : detail::cell::as_bundle(repeated)) {
      xvar& item = add_item(items, detail::key_view(key));
      static_cast<var&>(item) = static_cast<var&&>(child);
      std::swap(detail::cell::qualities(item), detail::cell::qualities(child));
    }
    var whole;
    detail::cell::set_box(whole, detail::kind::list, std::move(items));
    repeated = std::move(whole);
  }

  bundle document_;
  std::vector<open_element> open_;       // the outermost first
  std::set<std::wstring_view> aliases_;  // attributes of the innermost element that another one hides
};

}  // namespace ruvo::serializer
