#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>
#include <ruvo/xml.hpp>

#include <algorithm>
#include <utility>

#include "base/numbers.hpp"
#include "serializer/scan.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::bundle_access;
using detail::bundle_store;
using detail::cell;
using detail::folded_key;
using detail::key_view;
using detail::kind;

namespace {

constexpr std::size_t most_expected = 64;  // children for which an element makes room at once

struct entity {
  std::wstring_view text;
  wchar_t meant;
};
// No entity can begin inside another or come out of a replacement, so that one walk replaces all of them.
constexpr entity entities[] = {
    {L"&qout;", L'"'}, {L"&apos;", L'\''}, {L"&lt;", L'<'}, {L"&gt;", L'>'}, {L"&&amp;", L'&'}};

}  // namespace

xml_reader::xml_reader() = default;
xml_reader::~xml_reader() = default;

std::wstring xml_reader::raw_value(const xvar& value) {
  std::wstring text = value.to_string();
  if (!cell::is_text(value)) return text;
  std::wstring plain;
  unescape(plain, texto::trimmed(text));
  return plain;
}

void xml_reader::unescape(std::wstring& out, std::wstring_view text) {
  out.clear();
  while (!text.empty()) {
    const std::size_t plain = std::min(text.find(L'&'), text.size());
    out += text.substr(0, plain);
    text.remove_prefix(plain);
    const entity* found = nullptr;
    for (const entity& e : entities) {
      if (text.starts_with(e.text)) found = &e;
    }
    if (text.empty()) return;
    out += found ? found->meant : text.front();
    text.remove_prefix(found ? found->text.size() : 1);
  }
}

std::wstring& xml_reader::raw_key(std::wstring& key) { return key; }

void xml_reader::reset() {
  store_ = nullptr;
  position_ = 0;
  state_ = state::start;
  tag_kind_ = tag::start;
  open_nodes_.clear();
  open_names_.clear();
  clear_element();
}

void xml_reader::clear_element() noexcept {
  current_ = nullptr;
  current_key_.clear();
  value_text_.clear();
  name_text_.clear();
  attribute_name_.clear();
  attribute_value_.clear();
  quote_ = L'\0';
  backslash_seen_ = false;
}

// --- character by character

bool xml_reader::on_char(wchar_t c, exception& result) {
  switch (state_) {
    case state::start:
      on_start(c);
      break;
    case state::metadata:
      on_metadata(c);
      break;
    case state::tag:
      on_tag(c, result);
      break;
    case state::key:
      on_key(c, result);
      break;
    case state::quality_key:
      on_quality_key(c);
      break;
    case state::quality_value:
      on_quality_value(c);
      break;
    case state::value:
      on_value(c);
      break;
    case state::comment:
      on_comment(c);
      break;
    case state::cdata:
      on_cdata(c);
      break;
  }
  return result.WRONG();
}

void xml_reader::on_start(wchar_t c) {
  if (c != L'<') return;
  state_ = state::tag;
  tag_kind_ = tag::start;
}

void xml_reader::on_metadata(wchar_t c) {
  if (c == L'>') state_ = state::start;
}

void xml_reader::on_tag(wchar_t c, exception& result) {
  if (c == L'\0' || is_xml_blank(c)) return;
  switch (c) {
    case L'!':
      state_ = state::comment;
      return;
    case L'/':
      tag_kind_ = tag::end;
      return;
    case L'<':
      tag_kind_ = tag::start;
      return;
    case L'?':
      state_ = state::metadata;
      return;
    default:
      state_ = state::key;
      on_key(c, result);
  }
}

void xml_reader::on_key(wchar_t c, exception& result) {
  switch (c) {
    case L'\t':
    case L'\n':
    case L'\r':
      return;
    case L' ':
      tag_kind_ = tag::qualified_start;
      state_ = state::quality_key;
      return create_element(result);
    case L'!':
      if (!name_text_.empty()) break;
      state_ = state::comment;
      return;
    case L'/':
      if (tag_kind_ == tag::qualified_start) {
        tag_kind_ = tag::qualified_empty;
      } else {
        tag_kind_ = name_text_.empty() ? tag::end : tag::empty;
      }
      return;
    case L'<':
      tag_kind_ = tag::start;
      return;
    case L'>':
      return on_tag_end(result);
    default:
      break;
  }
  name_text_ += c;
}

void xml_reader::on_tag_end(exception& result) {
  state_ = state::start;
  switch (tag_kind_) {
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
    case tag::empty: {
      const xvar* const outer = current_;
      create_element(result);
      if (current_ == outer) return;  // refused
      break;
    }
    case tag::qualified_empty:
      break;
  }
  if (current_) *current_ = std::wstring();
  clear_element();
}

/// White space inside the name counts as little as around it.
void xml_reader::on_quality_key(wchar_t c) {
  if (is_xml_blank(c)) return;
  if (c == L'=') {
    state_ = state::quality_value;
  } else {
    attribute_name_ += c;
  }
}

void xml_reader::on_quality_value(wchar_t c) {
  if (c == L'"') {
    if (!quote_) {
      quote_ = c;
      return;
    }
    store_quality();
    state_ = state::key;
  } else if (c == L'\\') {
    backslash_seen_ = true;
  } else if (quote_ || !is_xml_blank(c)) {
    attribute_value_ += c;
  }
}

void xml_reader::on_value(wchar_t c) {
  if (c == L'<') {
    fix_value();
    tag_kind_ = tag::start;
    state_ = state::key;
  } else if (!value_text_.empty() || !is_xml_blank(c)) {
    value_text_ += c;
  }
}

void xml_reader::on_comment(wchar_t c) {
  if (c != L'[') return on_section(c, L'-');
  state_ = state::cdata;
  on_cdata(c);
}

void xml_reader::on_cdata(wchar_t c) { on_section(c, L']'); }

void xml_reader::on_section(wchar_t c, wchar_t mark) {
  if (c == mark) {
    if (name_text_.size() < 2) name_text_ += c;
    return;
  }
  if (c == L'>' && name_text_.size() == 2) state_ = state::start;
  name_text_.clear();
}

// --- elements

void xml_reader::create_element(exception& result) {
  if (name_text_.empty()) return;
  const std::wstring& name = raw_key(name_text_);
  if (name.empty()) {
    exc::xmlEmptyKey(position_, open_nodes_.size()).copy_on(result);
  } else if (current_ && !cell::is_text(*current_)) {
    exc::xmlFalseKnot(position_, open_nodes_.size()).copy_on(result);
  } else if (!store_) {
    exc::NullPointer().copy_on(result);
  } else {
    if (current_) push_current();
    current_ = &place(name);
    current_key_ = name;
  }
  name_text_.clear();
}

void xml_reader::push_current() {
  open_nodes_.push_back({open_names_.size(), current_});
  try {
    open_names_ += current_key_;
  } catch (...) {
    open_nodes_.pop_back();
    throw;
  }
  cell::on_bundle(*std::exchange(current_, nullptr));
  current_key_.clear();
}

xvar& xml_reader::place(std::wstring_view name) {
  const folded_key folded(name);
  const key_view key(folded.view());
  if (open_nodes_.empty()) {
    xvar& outermost = bundle_access::made_store(*store_).put(key)->second;
    static_cast<var&>(outermost).clear();
    outermost.clear_qualities();
    return outermost;
  }
  xvar& parent = *open_nodes_.back().value;
  if (cell::kind_of(parent) != kind::list) {
    bundle_store& children = bundle_access::made_store(cell::on_bundle(parent), expected_size());
    if (!children.find(key)) return children.add(key)->second;
    become_list(parent);
  }
  return bundle_access::made_store(cell::as_list(parent).on_back_bundle(), 1).add(key)->second;
}

std::size_t xml_reader::expected_size() const noexcept {
  const std::size_t depth = open_nodes_.size();
  return depth <= sizes_.size() ? std::max<std::size_t>(sizes_[depth - 1], 1) : 4;
}

void xml_reader::note_size() {
  const std::size_t depth = open_nodes_.size();
  if (sizes_.size() < depth) sizes_.resize(depth);
  xvar& complete = *open_nodes_.back().value;
  if (cell::kind_of(complete) != kind::bundle) return;
  bundle& children = cell::as_bundle(complete);
  if (bundle_store* const store = bundle_access::store(children)) {
    bundle_access::set(children, bundle_store::fitted(store));
    sizes_[depth - 1] = static_cast<std::uint32_t>(std::min(children.size(), most_expected));
  }
}

void xml_reader::become_list(xvar& repeated) {
  bundle& children = cell::as_bundle(repeated);
  list made;
  made.reserve(children.size() + 1);
  for (const auto& child : children) made.on_back_bundle()[child.first];
  // From here on nothing can fail, and nothing is lost.
  var whole;
  list& elements = cell::set_box(whole, kind::list, std::move(made));
  auto element = elements.begin();
  for (auto& child : children) {
    xvar& to = cell::as_bundle(*element++).begin()->second;
    static_cast<var&>(to) = static_cast<var&&>(child.second);
    std::swap(cell::qualities(to), cell::qualities(child.second));
  }
  repeated = std::move(whole);
}

void xml_reader::store_quality() {
  if (current_) (*current_)[attribute_name_] = attribute_value_;
  attribute_name_.clear();
  attribute_value_.clear();
  quote_ = L'\0';
}

void xml_reader::fix_value() {
  if (current_) *current_ = raw_value(value_text_);
  value_text_.clear();
}

void xml_reader::close(std::wstring_view name, exception& result) {
  if (name != current_key_) {
    if (current_) {
      exc::xmlCachePointer(position_, open_nodes_.size()).copy_on(result);
    } else if (!open_nodes_.empty() && name == innermost_name()) {
      note_size();
      pop_node();
    }
  }
  clear_element();
}

std::wstring_view xml_reader::innermost_name() const noexcept {
  return std::wstring_view(open_names_).substr(open_nodes_.back().name);
}

void xml_reader::pop_node() noexcept {
  open_names_.resize(open_nodes_.back().name);
  open_nodes_.pop_back();
}

}  // namespace ruvo::serializer
