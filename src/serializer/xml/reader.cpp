// SPDX-License-Identifier: BSL-1.0

// The lenient reader of XML.

#include <ruvo/exc.hpp>
#include <ruvo/xml.hpp>

#include <cstddef>
#include <cstdint>
#include <utility>

#include "base/numbers.hpp"
#include "memory/block_cache.hpp"
#include "serializer/xml/grammar.hpp"
#include "serializer/xml/tree.hpp"

namespace ruvo::serializer {

using detail::cell;

/// Takes XML in two ways. The state machine takes character after character. The fast way takes whole tags,
/// attributes and texts where the XML is ordinary, with the outcome of the state machine for each of their
/// characters. What is unusual (a comment, a name with a line break inside, an end tag that fits nothing,
/// whatever the text's end cuts off, ...) it leaves to the state machine. Nothing is looked through twice for
/// that: the state machine then stays in the middle of a token until the token's end.
class xml_reader::machine {
 public:
  explicit machine(xml_reader& owner) noexcept : owner_(owner) {}

  // Readers may be short-lived: the thread keeps the block for the next one.
  static void* operator new(std::size_t size) { return detail::take_block(size); }
  static void operator delete(void* block, std::size_t size) noexcept { detail::give_block(block, size); }

  void reset() noexcept {
    state_ = state::start;
    tag_ = tag::start;
    tree_.clear();
    clear_buffers();
  }

  // --- character by character

  void take(wchar_t c, exception& result) {
    switch (state_) {
      case state::start:
        return on_start(c);
      case state::metadata:
        return on_metadata(c);
      case state::tag:
        return on_tag(c, result);
      case state::key:
        return on_key(c, result);
      case state::quality_key:
        return on_quality_key(c);
      case state::quality_value:
        return on_quality_value(c);
      case state::value:
        return on_value(c);
      case state::comment:
        return on_comment(c);
      case state::cdata:
        return on_section(c, L']');
    }
  }

  // --- whole tokens

  /// Takes what it can at once, and returns the first character that it leaves to take().
  const wchar_t* take_tokens(const wchar_t* at, const wchar_t* end) {
    at_ = at;
    end_ = end;
    while (at_ != end_ && token()) {
    }
    owner_.position_ += static_cast<std::uint64_t>(at_ - at);
    return at_;
  }

 private:
  enum class state { start, metadata, tag, key, quality_key, quality_value, value, comment, cdata };
  enum class tag { start, qualified_start, end, empty, qualified_empty };

  void on_start(wchar_t c) {
    if (c != L'<') return;
    state_ = state::tag;
    tag_ = tag::start;
  }

  void on_metadata(wchar_t c) {
    if (c == L'>') state_ = state::start;
  }

  void on_tag(wchar_t c, exception& result) {
    if (c == L'\0' || is_blank(c)) return;
    switch (c) {
      case L'!':
        state_ = state::comment;
        return;
      case L'/':
        tag_ = tag::end;
        return;
      case L'<':
        tag_ = tag::start;
        return;
      case L'?':
        state_ = state::metadata;
        return;
      default:
        state_ = state::key;
        on_key(c, result);
    }
  }

  void on_key(wchar_t c, exception& result) {
    switch (c) {
      case L'\t':
      case L'\n':
      case L'\r':
        return;
      case L' ':
        tag_ = tag::qualified_start;
        state_ = state::quality_key;
        create_element(result);
        return;
      case L'!':
        if (!name_text_.empty()) break;
        state_ = state::comment;
        return;
      case L'/':
        if (tag_ == tag::qualified_start) {
          tag_ = tag::qualified_empty;
        } else {
          tag_ = name_text_.empty() ? tag::end : tag::empty;
        }
        return;
      case L'<':
        tag_ = tag::start;
        return;
      case L'>':
        return on_tag_end(result);
      default:
        break;
    }
    name_text_ += c;
  }

  void on_tag_end(exception& result) {
    state_ = state::start;
    switch (tag_) {
      case tag::start:
        create_element(result);
        state_ = state::value;
        return;
      case tag::qualified_start:
        name_text_.clear();
        state_ = state::value;
        return;
      case tag::end:
        return close(name_text_, result);
      case tag::empty:
        if (create_element(result)) finish_empty();
        return;
      case tag::qualified_empty:
        return finish_empty();
    }
  }

  /// White space inside the name counts as little as around it.
  void on_quality_key(wchar_t c) {
    if (is_blank(c)) return;
    if (c == L'=') {
      state_ = state::quality_value;
    } else {
      attribute_name_ += c;
    }
  }

  void on_quality_value(wchar_t c) {
    if (c == L'"') {
      if (std::exchange(in_quotes_, true)) {
        store_attribute();
        state_ = state::key;
      }
    } else if (c != L'\\' && (in_quotes_ || !is_blank(c))) {
      attribute_value_ += c;
    }
  }

  void on_value(wchar_t c) {
    if (c == L'<') {
      if (tree_.leaf()) tree_.set_text(owner_.raw_value(value_text_));
      value_text_.clear();
      tag_ = tag::start;
      state_ = state::key;
    } else if (!value_text_.empty() || !is_blank(c)) {
      value_text_ += c;
    }
  }

  void on_comment(wchar_t c) {
    if (c == L'[') {
      state_ = state::cdata;
      name_text_.clear();
    } else {
      on_section(c, L'-');
    }
  }

  /// Comments and CDATA sections end at '>' behind two of `mark`, which are collected in name_text_.
  void on_section(wchar_t c, wchar_t mark) {
    if (c == mark) {
      if (name_text_.size() < 2) name_text_ += c;
      return;
    }
    if (c == L'>' && name_text_.size() == 2) state_ = state::start;
    name_text_.clear();
  }

  // --- elements

  /// Makes the element that name_text_ names, if any, and forgets the name. True when it is made.
  bool create_element(exception& result) {
    if (name_text_.empty()) return false;
    bool made = false;
    const std::wstring& name = owner_.raw_key(name_text_);
    if (name.empty()) {
      exc::xmlEmptyKey(owner_.position_, tree_.depth()).copy_on(result);
    } else if (!may_open()) {
      exc::xmlFalseKnot(owner_.position_, tree_.depth()).copy_on(result);
    } else if (!owner_.store_) {
      exc::NullPointer().copy_on(result);
    } else {
      tree_.open(*owner_.store_, name);
      made = true;
    }
    name_text_.clear();
    return made;
  }

  /// Whether the start tag of the leaf has ended.
  bool may_open() const noexcept { return !tree_.leaf() || cell::is_text(*tree_.leaf()); }

  void store_attribute() {
    if (tree_.leaf()) tree_.set_attribute(attribute_name_, attribute_value_);
    attribute_name_.clear();
    attribute_value_.clear();
    in_quotes_ = false;
  }

  void finish_empty() {
    if (tree_.leaf()) tree_.set_text(L"");
    drop_leaf();
  }

  void close(std::wstring_view name, exception& result) {
    const bool fits = !tree_.empty() && name == tree_.name();
    if (!fits && tree_.leaf()) exc::xmlCachePointer(owner_.position_, tree_.depth()).copy_on(result);
    if (fits) tree_.close();
    drop_leaf();
  }

  void drop_leaf() {
    if (tree_.leaf()) tree_.close();
    clear_buffers();
  }

  void clear_buffers() noexcept {
    value_text_.clear();
    name_text_.clear();
    attribute_name_.clear();
    attribute_value_.clear();
    in_quotes_ = false;
  }

  // --- the fast way

  /// True when it goes on from a state in which nothing of a token is taken.
  bool token() {
    switch (state_) {
      case state::start:
        at_ = find_either(at_, end_, L'<', L'<');
        return at_ != end_ && tag_at();
      case state::value:
        return text();
      case state::quality_key:
        return attribute_name_.empty() && attribute();
      case state::key:
        return name_text_.empty() && tag_ == tag::qualified_start && behind_attribute();
      default:
        return false;
    }
  }

  /// The text of an element and the tag behind it.
  bool text() {
    at_ = skip_blanks(at_, end_);
    const wchar_t* last = find_either(at_, end_, L'<', L'&');
    const bool escaped = last != end_ && *last == L'&';
    if (escaped) last = find_either(last, end_, L'<', L'<');
    if (last != end_ && tree_.leaf()) set_text(between(at_, last), escaped);
    at_ = last;
    if (at_ == end_ || tag_at()) return at_ != end_;
    tag_ = tag::start;
    state_ = state::key;
    ++at_;
    return false;
  }

  void set_text(std::wstring_view text, bool escaped) {
    text = texto::trimmed(text);
    if (escaped) {
      unescape_markup(scratch_, text);
      text = scratch_;
    }
    tree_.set_text(text);
  }

  /// A whole tag, or that of an element up to its attributes.
  bool tag_at() {
    if (end_ - at_ < 2 || at_[1] == L'?' || at_[1] == L'\0') return false;
    return at_[1] == L'/' ? end_tag() : start_tag();
  }

  bool start_tag() {
    const wchar_t* const first = at_ + 1;
    const wchar_t* last = first;
    while (last != end_ && !ends_tag_name(*last)) ++last;
    if (last == first || last == end_ || !may_open()) return false;
    const bool ends = *last == L'/' && end_ - last > 1 && last[1] == L'>';
    if (!ends && *last != L'>' && *last != L' ') return false;
    tree_.open(*owner_.store_, between(first, last));
    at_ = last + (ends ? 2 : 1);
    if (*last == L' ') tag_ = tag::qualified_start;
    state_ = *last == L' ' ? state::quality_key : state::value;
    if (ends) finish_element();
    return true;
  }

  void finish_element() {
    finish_empty();
    state_ = state::start;
  }

  /// The end of the innermost element.
  bool end_tag() {
    if (tree_.empty()) return false;
    const std::wstring_view name = tree_.name(), rest = between(at_ + 2, end_);
    if (rest.size() <= name.size() || rest[name.size()] != L'>' || !rest.starts_with(name)) return false;
    if (rest.front() == L'?' || rest.front() == L'\0') return false;
    at_ += name.size() + 3;
    tree_.close_fitted();
    clear_buffers();
    state_ = state::start;
    return true;
  }

  /// One attribute with its value.
  bool attribute() {
    at_ = skip_blanks(at_, end_);
    const wchar_t* name_end = at_;
    while (name_end != end_ && !is_blank(*name_end) && *name_end != L'=') ++name_end;
    if (end_ - name_end < 2 || *name_end != L'=' || name_end[1] != L'"') return false;
    const wchar_t* const first = name_end + 2;
    const wchar_t* const last = find_either(first, end_, L'"', L'\\');
    if (last == end_ || *last != L'"') return false;
    if (tree_.leaf()) tree_.set_attribute(between(at_, name_end), between(first, last));
    at_ = last + 1;
    state_ = state::key;
    return true;
  }

  bool behind_attribute() {
    if (*at_ == L' ') {
      state_ = state::quality_key;
    } else if (*at_ == L'>') {
      state_ = state::value;
    } else if (*at_ == L'/' && end_ - at_ > 1 && at_[1] == L'>') {
      finish_element();
      ++at_;
    } else {
      return false;
    }
    ++at_;
    return true;
  }

  xml_reader& owner_;
  state state_ = state::start;
  tag tag_ = tag::start;  // what the tag that is being read is
  xml_tree tree_;
  std::wstring value_text_, name_text_, attribute_name_, attribute_value_;  // as far as they are read
  bool in_quotes_ = false;
  const wchar_t *at_ = nullptr, *end_ = nullptr;  // what the fast way has still to take
  std::wstring scratch_;
};

xml_reader::xml_reader() : machine_(std::make_unique<machine>(*this)) {}
xml_reader::~xml_reader() = default;

bool xml_reader::on_char(wchar_t c, exception& result) {
  machine_->take(c, result);
  return result.WRONG();
}

std::wstring xml_reader::raw_value(const xvar& value) {
  std::wstring text = value.to_string();
  if (!cell::is_text(value)) return text;
  std::wstring plain;
  unescape_markup(plain, texto::trimmed(text));
  return plain;
}

std::wstring& xml_reader::raw_key(std::wstring& key) { return key; }

void xml_reader::reset() {
  store_ = nullptr;
  position_ = 0;
  machine_->reset();
}

const wchar_t* xml_reader::take_tokens(const wchar_t* at, const wchar_t* end) {
  return machine_->take_tokens(at, end);
}

}  // namespace ruvo::serializer
