#include <ruvo/exc.hpp>
#include <ruvo/list.hpp>
#include <ruvo/serializer.hpp>

#include <algorithm>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "serializer/scan.hpp"
#include "values/bundle_store.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::cell;
using detail::kind;

namespace {

constexpr std::wstring_view array_key = L"__json_array__";

/// Characters that stand between values without meaning.
bool is_ignored(wchar_t c) noexcept { return c < 34 || c >= 126; }
bool is_number_part(wchar_t c) noexcept { return texto::is_digit(c) || c == L'-' || c == L'.'; }

}  // namespace

json_reader::json_reader() = default;
json_reader::~json_reader() = default;

std::wstring json_reader::raw_value(const xvar& value) {
  std::wstring text = value.to_string();
  if (!cell::is_text(value) || text.find(L'\\') == std::wstring::npos) return text;
  std::wstring plain;
  unescape(plain, text);
  return plain;
}

void json_reader::unescape(std::wstring& out, std::wstring_view text) {
  out.clear();
  for (std::size_t at = 0; at < text.size(); ++at) {
    const wchar_t next = text[at] == L'\\' && at + 1 < text.size() ? text[at + 1] : L'\0';
    if (next == L'"' || next == L'\\') continue;
    if (next == L'n') {
      out += L'\n';
      ++at;
      continue;
    }
    out += text[at];
    if (text[at] == L'\\' && at + 1 < text.size()) out += text[++at];
  }
}

std::wstring& json_reader::raw_key(std::wstring& key) { return key; }

void json_reader::reset() {
  store_ = nullptr;
  position_ = 0;
  state_ = state::start;
  open_nodes_.clear();
  clear_buffers();
}

void json_reader::clear_buffers() noexcept {
  value_text_.clear();
  key_text_.clear();
  escape_pending_ = in_key_quotes_ = in_string_ = has_fraction_point_ = false;
}

// --- character by character

bool json_reader::on_char(wchar_t c, exception& result) {
  switch (state_) {
    case state::start:
      on_start(c, result);
      break;
    case state::key:
      on_key(c);
      break;
    case state::value:
      on_value(c, result);
      break;
    case state::string:
      on_string(c, result);
      break;
    case state::number:
      on_number(c, result);
      break;
    case state::boolean:
      on_boolean(c, result);
      break;
    case state::null:
      on_null(c, result);
      break;
    case state::object:
      on_object(c, result);
      break;
    case state::array:
      on_array(c, result);
      break;
  }
  return result.WRONG();
}

void json_reader::on_start(wchar_t c, exception& result) {
  if (c == L'{') {
    state_ = state::key;
  } else if (c == L'[') {
    key_text_ = array_key;
    state_ = state::array;
    on_array(c, result);
  }
}

void json_reader::on_key(wchar_t c) {
  if (c == L'"') {
    in_key_quotes_ = !in_key_quotes_;
  } else if (c == L':') {
    state_ = state::value;
  } else if (in_key_quotes_) {
    key_text_ += c;
  }
}

void json_reader::on_value(wchar_t c, exception& result) {
  if (is_ignored(c)) return;
  if (c == L'-' || texto::is_digit(c)) {
    state_ = state::number;
    return on_number(c, result);
  }
  switch (c) {
    case L'"':
      in_string_ = true;
      state_ = state::string;
      return;
    case L'f':
    case L't':
    case L'F':
    case L'T':
      state_ = state::boolean;
      return on_boolean(c, result);
    case L'n':
      state_ = state::null;
      return on_null(c, result);
    case L'[':
    case L']':
      state_ = state::array;
      return on_array(c, result);
    case L'{':
    case L'}':
      state_ = state::object;
      return on_object(c, result);
    case L',':
      if (!in_list()) return;
      state_ = state::array;
      return on_array(c, result);
    default:
      return;
  }
}

void json_reader::on_string(wchar_t c, exception& result) {
  if (escape_pending_ || c != L'"' || !in_string_) {
    value_text_ += c;
    escape_pending_ = !escape_pending_ && c == L'\\';
    return;
  }
  store(raw_value(value_text_), result);
  on_value_end(L'\t', result);
}

void json_reader::on_number(wchar_t c, exception& result) {
  if (is_number_part(c)) {
    value_text_ += c;
    has_fraction_point_ |= c == L'.';
    return;
  }
  store(read_number(value_text_), result);
  on_value_end(c, result);
}

void json_reader::on_boolean(wchar_t c, exception& result) {
  const bool is_true = texto::to_lower(value_text_.empty() ? c : value_text_.front()) == L't';
  on_word(c, is_true ? L"true" : L"false", is_true, result);
}

void json_reader::on_null(wchar_t c, exception& result) { on_word(c, L"null", xvar(), result); }

/// A word that went wrong stays wrong: every further character reports it again.
void json_reader::on_word(wchar_t c, std::wstring_view word, const xvar& value, exception& result) {
  if (value_text_.size() <= word.size()) value_text_ += texto::to_lower(c);
  if (value_text_ == word) {
    store(value, result);
    on_value_end(c, result);
  } else if (!word.starts_with(value_text_)) {
    exc::jsonUnKnowValue(position_, open_nodes_.size()).copy_on(result);
  }
}

void json_reader::on_object(wchar_t c, exception& result) {
  switch (c) {
    case L'"':
      in_key_quotes_ = true;
      state_ = state::key;
      return;
    case L',':
      return clear_buffers();
    case L'}':
    case L']':
      return close_node();
    case L'{':
      return open_container(false, result);
    default:
      return;
  }
}

void json_reader::on_array(wchar_t c, exception& result) {
  switch (c) {
    case L',':
      return clear_buffers();
    case L'[':
      return open_container(true, result);
    case L']':
    case L'}':
      return close_node();
    default:
      state_ = state::value;
      return on_value(c, result);
  }
}

void json_reader::on_value_end(wchar_t c, exception& result) {
  clear_buffers();
  if (in_list()) {
    state_ = state::array;
    return on_array(c, result);
  }
  state_ = state::object;
  if (in_bundle()) on_object(c, result);
}

// --- nodes

bool json_reader::in_list() const noexcept {
  return !open_nodes_.empty() && cell::kind_of(*open_nodes_.back()) == kind::list;
}

bool json_reader::in_bundle() const noexcept {
  return !open_nodes_.empty() && cell::kind_of(*open_nodes_.back()) == kind::bundle;
}

xvar* json_reader::place(exception& result) {
  if (in_list()) return &cell::as_list(*open_nodes_.back()).on_back();
  const std::wstring& key = raw_key(key_text_);
  if (in_bundle()) {
    if (!key.empty()) return &cell::as_bundle(*open_nodes_.back())[key];
    exc::jsonEmptyKey(position_, open_nodes_.size()).copy_on(result);
    return nullptr;
  }
  if (store_) return &(*store_)[key];
  exc::NullPointer().copy_on(result);
  return nullptr;
}

void json_reader::store(const xvar& value, exception& result) {
  if (xvar* const to = place(result)) *to = value;
}

void json_reader::open_container(bool as_list, exception& result) {
  xvar* const to = place(result);
  if (!to) return;
  static_cast<var&>(*to).clear();  // a container that was there before is replaced
  if (as_list) {
    cell::on_list(*to);
  } else {
    cell::on_bundle(*to);
  }
  open_nodes_.push_back(to);
  clear_buffers();
}

void json_reader::close_node() {
  if (!open_nodes_.empty()) open_nodes_.pop_back();
  clear_buffers();
  state_ = in_list() ? state::array : state::object;
}

/// Inside an object the point decides between the kinds, elsewhere the whole text does.
xvar json_reader::read_number(std::wstring_view text) const {
  const bool as_double =
      in_bundle() ? text.find(L'.') != std::wstring_view::npos : !texto::is_plain_integer(text);
  if (as_double) return texto::read_double(text);
  return texto::read_integer(text);
}

}  // namespace ruvo::serializer
