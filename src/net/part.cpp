// SPDX-License-Identifier: BSL-1.0

// Parts of messages as values.

#include "net/part.hpp"

#include <ruvo/exc.hpp>
#include <ruvo/files/whole.hpp>

#include <algorithm>
#include <memory>
#include <utility>

#include "base/ascii.hpp"
#include "base/charset.hpp"
#include "base/file_names.hpp"
#include "base/utf.hpp"
#include "base/wire/encoded_words.hpp"
#include "base/wire/percent.hpp"
#include "base/wire/tokens.hpp"
#include "exc/detail.hpp"

namespace ruvo::mime {

namespace {

constexpr std::wstring_view multipart_prefix = L"multipart/", message_prefix = L"message/";
constexpr wchar_t unknown_type[] = L"application/octet-stream";

[[noreturn]] void refuse(std::wstring_view field) { throw exc::BadArgument(std::wstring(field)); }

void expect_value(std::wstring_view name, std::wstring_view text) {
  if (!wire::is_field_value(text)) refuse(name);
}

std::wstring in_lower_case(std::wstring_view text) {
  std::wstring made(text);
  std::transform(made.begin(), made.end(), made.begin(), texto::to_lower);
  return made;
}

/// As it is sent: in one line, with words that fit behind the name.
std::wstring encoded(std::wstring_view name, std::wstring_view text) {
  if (wire::is_plain_text(text)) return std::wstring(text);
  std::string words;
  const std::size_t before = std::min(name.size() + 2, wire::wanted_line);
  wire::append_encoded_words(words, text, wire::wanted_line - before);
  return texto::to_utf_16(words);
}

const std::wstring& value_of(const wire::parameters& all, std::wstring_view name) {
  static const std::wstring none;
  const wire::parameter* const found = wire::find_parameter(all, name);
  return found ? found->value : none;
}

void set_value(wire::parameters& all, std::wstring_view name, const std::wstring& value) {
  const auto found = std::find_if(all.begin(), all.end(), [name](const wire::parameter& each) {
    return wire::is_same_name(each.name, name);
  });
  if (found == all.end()) {
    all.push_back({std::wstring(name), value});
  } else {
    found->value = value;
  }
}

/// With its parameters, as people read it.
std::wstring whole_text(std::wstring word, const wire::parameters& parameters) {
  for (const wire::parameter& each : parameters) {
    word.append(L"; ").append(each.name).push_back(L'=');
    wire::append_word(word, each.value);
  }
  return word;
}

std::wstring with_line_ends(std::wstring_view text) {
  std::wstring made;
  made.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == L'\n' && (at == 0 || text[at - 1] != L'\r')) made.push_back(L'\r');
    made.push_back(text[at]);
  }
  return made;
}

auto is_named(std::wstring_view name) {
  return [name](const auto& field) { return wire::is_same_name(field.name, name); };
}

std::wstring_view behind_separators(std::wstring_view name) noexcept {
  const std::size_t last = name.find_last_of(L"/\\");
  return last == name.npos ? name : name.substr(last + 1);
}

}  // namespace

bool is_type(std::wstring_view text) noexcept {
  const std::size_t slash = text.find(L'/');
  return slash != text.npos && wire::is_token(text.substr(0, slash)) &&
         wire::is_token(text.substr(slash + 1));
}

bool read_worded_field(std::wstring& word, wire::parameters& parameters, std::wstring_view value,
                       wire::parameter_reading how) {
  std::size_t at = std::min(value.find(L';'), value.size());
  word = in_lower_case(wire::trimmed_value(value.substr(0, at)));
  const bool good = wire::read_parameters(parameters, value, at, how) && at == value.size();
  return good || how == wire::parameter_reading::lenient;
}

std::wstring text_of_unknown(std::string_view bytes) {
  std::wstring text;
  if (wire::first_not_utf_8(bytes) == bytes.npos) {
    texto::append_utf_16(text, bytes);
  } else {
    texto::decode_charset(text, bytes, L"windows-1252");
  }
  return text;
}

// --- the value

part::part() noexcept = default;
part::part(const part& other) : data_(other.data_ ? std::make_unique<data>(*other.data_) : nullptr) {}
part::part(part&& other) noexcept = default;
part::~part() = default;
part& part::operator=(const part& other) { return *this = part(other); }
part& part::operator=(part&& other) noexcept {
  const std::unique_ptr<data> old = std::move(data_);  // may hold the other one
  data_ = std::move(other.data_);
  return *this;
}

const part::data& part::get() const noexcept {
  static const data empty;
  return data_ ? *data_ : empty;
}

part::data& part::own() {
  if (!data_) data_ = std::make_unique<data>();
  return *data_;
}

// --- making

part part::text(const std::wstring& text, const std::wstring& subtype) {
  part made;
  made.set_header(std::wstring(type_field), L"text/" + subtype).set_parameter(L"charset", L"utf-8");
  made.own().content = texto::to_utf_8(with_line_ends(text));
  return made;
}

part part::bytes(const binary& content, const std::wstring& type, const std::wstring& name) {
  part made;
  made.set_header(std::wstring(type_field), type);
  made.own().content.assign(reinterpret_cast<const char*>(content.get_store().data()), content.size());
  if (!name.empty()) made.set_filename(name);
  return made;
}

part part::attachment(const file& source, const std::wstring& name) {
  part made;
  const std::wstring shown = name.empty() ? source.get_name() : name;
  std::wstring type = files::get_mimetype(shown);
  if (type.starts_with(message_prefix) || type.starts_with(multipart_prefix)) type = unknown_type;
  data& own = made.own();
  own.type = std::move(type);
  own.source = source;
  return made.set_filename(shown);
}

part part::multipart(const std::wstring& subtype) {
  part made;
  const std::wstring type = std::wstring(multipart_prefix) + in_lower_case(subtype);
  if (!is_type(type)) refuse(type_field);
  made.own().type = type;
  return made;
}

part& part::add(part child) {
  const std::size_t below = child.get().levels + 1;
  if (!is_multipart() || below > most_levels) throw exc::BadArgument(get_type());
  data& mine = own();
  mine.parts.push_back(std::move(child));
  mine.levels = std::max(mine.levels, below);
  return *this;
}

// --- fields

part& part::set_header(const std::wstring& name, const std::wstring& text) {
  const bool is_own = wire::is_same_name(name, type_field) || wire::is_same_name(name, disposition_field);
  expect_value(name, text);
  return set_field(name, is_own ? text : encoded(name, text));
}

part& part::add_header(const std::wstring& name, const std::wstring& text) {
  if (std::ranges::none_of(get().fields, is_named(name)))
    return set_header(name, text);  // an empty one stands
  part other;
  other.set_header(name, text);
  std::vector<data::field>& fields = own().fields;
  if (other.get().fields.empty()) refuse(name);  // one that stands once
  fields.insert(std::find_if(fields.rbegin(), fields.rend(), is_named(name)).base(), other.get().fields[0]);
  return *this;
}

part& part::set_field(const std::wstring& name, const std::wstring& value) {
  const std::wstring_view trimmed = wire::trimmed_value(value);
  if (!wire::is_field_name(name) || wire::is_same_name(name, version_field) ||
      wire::is_same_name(name, encoding_field))
    refuse(name);
  expect_value(name, value);
  std::wstring word;
  wire::parameters parameters;
  if (wire::is_same_name(name, type_field)) {
    if (!read_worded_field(word, parameters, trimmed, wire::parameter_reading::strict) || !is_type(word) ||
        word.starts_with(multipart_prefix) != is_multipart())
      refuse(name);
    data& mine = own();
    mine.type = std::move(word);
    mine.type_parameters = std::move(parameters);
  } else if (wire::is_same_name(name, disposition_field)) {
    if (!read_worded_field(word, parameters, trimmed, wire::parameter_reading::strict) ||
        !wire::is_token(word))
      refuse(name);
    data& mine = own();
    mine.disposition = std::move(word);
    mine.disposition_parameters = std::move(parameters);
  } else {
    std::vector<data::field> fields = get().fields;
    const auto place = std::find_if(fields.begin(), fields.end(), is_named(name)) - fields.begin();
    std::erase_if(fields, is_named(name));
    fields.insert(fields.begin() + place, {name, std::wstring(trimmed)});
    own().fields = std::move(fields);
  }
  return *this;
}

std::size_t part::erase_header(const std::wstring& name) {
  return data_ ? std::erase_if(data_->fields, is_named(name)) : 0;
}

std::wstring part::get_header(const std::wstring& name) const {
  if (wire::is_same_name(name, type_field)) return whole_text(get_type(), get().type_parameters);
  if (wire::is_same_name(name, disposition_field))
    return whole_text(get().disposition, get().disposition_parameters);
  return wire::decode_words(get_field(name));
}

std::wstring part::get_field(const std::wstring& name) const {
  const std::vector<data::field>& fields = get().fields;
  const auto found = std::find_if(fields.begin(), fields.end(), is_named(name));
  return found == fields.end() ? std::wstring() : found->value;
}

std::vector<std::pair<std::wstring, std::wstring>> part::get_headers() const {
  std::vector<std::pair<std::wstring, std::wstring>> all;
  for (const data::field& each : get().fields) all.emplace_back(each.name, wire::decode_words(each.value));
  return all;
}

std::wstring part::get_type() const { return get().type.empty() ? L"text/plain" : get().type; }

bool part::is_multipart() const noexcept { return get().type.starts_with(multipart_prefix); }

std::wstring part::get_parameter(const std::wstring& name) const {
  return value_of(get().type_parameters, name);
}

part& part::set_parameter(const std::wstring& name, const std::wstring& value) {
  std::wstring unused;
  if (!wire::append_parameter(unused, name, value, wire::parameter_form::mail)) refuse(name);
  set_value(own().type_parameters, name, value);
  return *this;
}

std::wstring part::get_disposition() const { return get().disposition; }

part& part::set_disposition(const std::wstring& disposition) {
  if (!wire::is_token(disposition)) refuse(disposition_field);
  own().disposition = in_lower_case(disposition);
  return *this;
}

std::wstring part::get_filename() const {
  const std::wstring& name = value_of(get().disposition_parameters, L"filename");
  return std::wstring(behind_separators(name.empty() ? value_of(get().type_parameters, L"name") : name));
}

part& part::set_filename(const std::wstring& name) {
  expect_value(L"filename", name);
  data& mine = own();
  set_value(mine.disposition_parameters, L"filename", name);
  if (mine.disposition.empty()) mine.disposition = L"attachment";
  return *this;
}

std::wstring part::get_content_id() const {
  const std::wstring id = get_field(std::wstring(id_field));
  const bool is_framed = id.size() >= 2 && id.front() == L'<' && id.back() == L'>';
  return is_framed ? id.substr(1, id.size() - 2) : id;
}

part& part::set_content_id(const std::wstring& id) {
  const bool good = std::all_of(id.begin(), id.end(),
                                [](wchar_t c) { return c > L' ' && c <= L'~' && c != L'<' && c != L'>'; });
  if (!good || id.empty()) refuse(id_field);
  return set_field(std::wstring(id_field), L"<" + id + L">");
}

// --- content

const std::vector<part>& part::get_parts() const noexcept { return get().parts; }

binary part::get_content() const {
  return get().source.empty() ? binary(get().content) : files::read(get().source);
}

const std::string& part::get_bytes() const noexcept { return get().content; }

const file& part::get_source() const noexcept { return get().source; }

std::wstring part::get_text() const {
  const std::wstring& name = value_of(get().type_parameters, L"charset");
  std::string read;
  if (!get().source.empty()) {
    exception failure;
    if (!files::read(read, get().source, failure)) failure.raise();
  }
  const std::string& bytes = get().source.empty() ? get().content : read;
  if (name.empty()) return text_of_unknown(bytes);
  std::wstring text;
  if (texto::decode_charset(text, bytes, name) == texto::charset_result::unknown)
    throw detail::about(exc::BadFormat(), [&name] { return name; });
  return text;
}

bool part::is_damaged() const noexcept { return get().is_damaged; }

// --- names

namespace {

/// Cut to so many units before the extension, between characters.
std::wstring shortened(std::wstring name) {
  constexpr std::size_t longest_stem = 200, longest_extension = 40;
  const std::size_t point = std::min(name.rfind(L'.'), name.size());
  const bool has_extension = name.size() - point <= longest_extension;
  const std::wstring extension = has_extension ? name.substr(point) : std::wstring();
  name.resize(std::min(name.size() - extension.size(), longest_stem));
  if (!name.empty() && texto::is_high_surrogate(name.back())) name.pop_back();
  return name + extension;
}

}  // namespace

std::wstring safe_name(const std::wstring& name) {
  constexpr std::wstring_view marks = L"<>:\"|?*";
  std::wstring made(behind_separators(name));
  std::erase_if(
      made, [](wchar_t c) { return !wire::is_field_unit(c) || c == L'\t' || texto::is_direction_mark(c); });
  std::replace_if(
      made.begin(), made.end(), [marks](wchar_t c) { return marks.find(c) != marks.npos; }, L'_');
  made = shortened(std::move(made));
  made.erase(made.find_last_not_of(L" .") + 1);
  made.erase(0, std::min(made.find_first_not_of(L' '), made.size()));
  return texto::is_device_name(made) ? L"_" + made : made;
}

std::wstring decode_words(std::wstring_view text) { return wire::decode_words(text); }

}  // namespace ruvo::mime
