// SPDX-License-Identifier: BSL-1.0

// multipart/form-data: writing it, and one pass over a body.

#include <ruvo/forms.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/ascii.hpp"
#include "base/charset.hpp"
#include "base/find.hpp"
#include "base/services.hpp"
#include "base/utf.hpp"
#include "base/wire/parameters.hpp"
#include "base/wire/tokens.hpp"
#include "net/failures.hpp"

namespace ruvo::http {

namespace {

constexpr std::wstring_view multipart_type = L"multipart/form-data";
constexpr std::size_t longest_boundary = 256;

// --- writing

/// The text between quotation marks, as browsers escape it. False for a control character that they let
/// through and that no field may have.
bool append_quoted_name(std::string& out, std::wstring_view name) {
  constexpr struct {
    wchar_t unit;
    std::string_view escape;
  } escapes[] = {{L'"', "%22"}, {L'\r', "%0D"}, {L'\n', "%0A"}};
  out.push_back('"');
  for (std::size_t from = 0; from <= name.size();) {
    const std::size_t stop = std::min(name.find_first_of(L"\"\r\n", from), name.size());
    const std::wstring_view plain = name.substr(from, stop - from);
    if (!wire::is_field_value(plain)) return false;
    texto::append_utf_8(out, plain);
    if (stop < name.size()) {
      const auto* const row = std::find_if(std::begin(escapes), std::end(escapes),
                                           [&](const auto& each) { return each.unit == name[stop]; });
      out += row->escape;
    }
    from = stop + 1;
  }
  out.push_back('"');
  return true;
}

std::string boundary_stem() {
  constexpr std::size_t longest = 40;
  std::string made = "----form";
  for (const wchar_t c : services::new_uuid())
    if (texto::is_alnum(c) && made.size() < longest) made.push_back(static_cast<char>(c));
  return made;
}

/// One that stands in no part; where the context gives the same identifier again and again, a counter makes
/// the difference.
std::string free_boundary(const std::vector<form_part>& parts) {
  const std::string stem = boundary_stem();
  std::string made = stem;
  const auto stands_in = [&](const form_part& part) {
    return texto::basic_finder<char>(made).find(part.content, 0) != std::string::npos;
  };
  for (unsigned long count = 0; std::any_of(parts.begin(), parts.end(), stands_in); ++count)
    made = stem + std::to_string(count);
  return made;
}

void append_part(std::string& out, const form_part& part) {
  out += "Content-Disposition: form-data; name=";
  if (!append_quoted_name(out, part.name)) refuse(part.name);
  if (part.is_file) {
    out += "; filename=";
    if (!append_quoted_name(out, part.filename)) refuse(part.name);
  }
  if (part.is_file || !part.content_type.empty()) {
    if (!wire::is_field_value(part.content_type)) refuse(part.name);
    out += "\r\nContent-Type: ";
    if (part.content_type.empty())
      out += "application/octet-stream";
    else
      texto::append_utf_8(out, part.content_type);
  }
  out.append("\r\n\r\n").append(part.content);
}

std::string body_of(const std::vector<form_part>& parts, const std::string& boundary) {
  constexpr std::size_t usual_head = 200;
  std::size_t size = usual_head;
  for (const form_part& part : parts) size += part.content.size() + usual_head;
  std::string out;
  out.reserve(size);
  for (const form_part& part : parts) {
    out.append("--").append(boundary).append("\r\n");
    append_part(out, part);
    out += "\r\n";
  }
  return out.append("--").append(boundary).append("--\r\n");
}

// --- reading

std::wstring text_of_name(std::string_view bytes) {
  std::wstring text;
  if (texto::decode_charset(text, bytes, L"utf-8") != texto::charset_result::good)
    texto::decode_charset(text, bytes, L"windows-1252");
  return text;
}

std::wstring_view without_path(std::wstring_view name) noexcept {
  const std::size_t separator = name.find_last_of(L"/\\");
  return separator == name.npos ? name : name.substr(separator + 1);
}

/// What a part's Content-Disposition says.
struct form_disposition {
  std::wstring name, filename;
  bool has_name = false, has_filename = false;
};

/// Takes the value of a parameter that begins at `at`, up to what ends it.
std::wstring take_form_value(std::wstring_view text, std::size_t& at) {
  std::wstring value;
  if (at == text.size() || text[at] != L'"') {
    const std::size_t end = std::min(text.find(L';', at), text.size());
    value = wire::trimmed_value(text.substr(at, end - at));
    at = end;
    return value;
  }
  const auto ends_at = [&](std::size_t mark) {  // the quotation mark there is the last one
    const std::wstring_view behind = wire::trimmed_value(text.substr(mark + 1));
    return behind.empty() || behind.front() == L';';
  };
  for (++at; at < text.size() && text[at] != L'"'; ++at) {
    const bool mark_follows = text[at] == L'\\' && at + 1 < text.size() && text[at + 1] == L'"';
    if (mark_follows && !ends_at(at + 1)) ++at;  // of a name that ends with "\" browsers write "...\"
    value.push_back(text[at]);
  }
  at = std::min(text.find(L';', at), text.size());
  return value;
}

/// False for what is no disposition of a form's field.
bool read_form_disposition(form_disposition& out, std::wstring_view text) {
  std::size_t at = std::min(text.find(L';'), text.size());
  if (!wire::is_same_name(wire::trimmed_value(text.substr(0, at)), L"form-data")) return false;
  std::wstring extended;
  bool has_extended = false;
  while (at < text.size()) {
    const std::size_t equals = text.find_first_of(L"=;", ++at);
    if (equals == text.npos) break;
    const std::wstring_view name = wire::trimmed_value(text.substr(at, equals - at));
    at = equals;
    if (text[equals] == L';') continue;
    at = std::min(text.find_first_not_of(L" \t", equals + 1), text.size());
    const std::wstring value = take_form_value(text, at);
    if (wire::is_same_name(name, L"name") && !std::exchange(out.has_name, true)) out.name = value;
    if (wire::is_same_name(name, L"filename") && !std::exchange(out.has_filename, true)) out.filename = value;
    if (wire::is_same_name(name, L"filename*")) has_extended = wire::read_extended_value(extended, value);
  }
  if (has_extended && !std::exchange(out.has_filename, true)) out.filename = extended;
  out.filename = without_path(out.filename);
  return out.has_name;
}

/// Goes through the parts of a body.
class multipart_reader {
 public:
  multipart_reader(std::string_view body, const std::string& boundary, const multipart_limits& most)
      : body_(body), delimiter_("\r\n--" + boundary), finder_(delimiter_), most_(most) {}

  std::vector<form_part> read() {
    if (body_.size() > most_.bytes) refuse_at(most_.bytes);
    std::vector<form_part> parts;
    if (!find_first()) refuse_at(0);
    while (!is_last()) {
      if (parts.size() == most_.parts) refuse_at(at_);
      parts.push_back(part());
    }
    return parts;
  }

 private:
  /// Moves behind the first delimiter, which may stand at the very beginning.
  bool find_first() {
    const std::string_view bare = std::string_view(delimiter_).substr(2);
    std::size_t found = 0;
    if (!body_.starts_with(bare)) {
      found = finder_.find(body_, 0);
      if (found == body_.npos) return false;
      found += 2;
    }
    at_ = found + bare.size();
    return true;
  }

  /// Behind a delimiter: "--" at the last one, otherwise blanks and the end of the line.
  bool is_last() {
    if (body_.substr(at_, 2) == "--") return true;
    while (at_ < body_.size() && (body_[at_] == ' ' || body_[at_] == '\t')) ++at_;
    if (body_.substr(at_, 2) != "\r\n") refuse_at(at_);
    at_ += 2;
    return false;
  }

  form_part part() {
    const std::size_t begin = at_;
    form_part made;
    form_disposition says;
    bool is_field = false;
    for (std::string_view line = next_line(begin); !line.empty(); line = next_line(begin)) {
      const std::wstring text = text_of_name(line);
      const std::size_t colon = std::min(text.find(L':'), text.size());
      const std::wstring_view name = std::wstring_view(text).substr(0, colon);
      const std::wstring_view value =
          wire::trimmed_value(std::wstring_view(text).substr(std::min(colon + 1, text.size())));
      if (!wire::is_field_name(name) || colon == text.size() || !wire::is_field_value(value))
        refuse_at(begin);
      if (wire::is_same_name(name, L"Content-Disposition")) is_field = read_form_disposition(says, value);
      if (wire::is_same_name(name, L"Content-Type")) made.content_type = value;
    }
    if (!is_field) refuse_at(begin);
    // The delimiter of an empty content begins with the end of the fields.
    const std::size_t content = at_;
    const std::size_t end = finder_.find(body_, content - 2);
    if (end == body_.npos) refuse_at(begin);
    made.content = body_.substr(content, std::max(end, content) - content);
    at_ = end + delimiter_.size();
    made.name = std::move(says.name);
    made.filename = std::move(says.filename);
    made.is_file = says.has_filename;
    return made;
  }

  std::string_view next_line(std::size_t begin) {
    const std::size_t end = body_.find("\r\n", at_);
    if (end == body_.npos) refuse_at(begin);
    if (end - begin > most_.header_bytes) refuse_at(begin + most_.header_bytes);
    const std::string_view line = body_.substr(at_, end - at_);
    at_ = end + 2;
    return line;
  }

  std::string_view body_;
  std::string delimiter_;
  texto::basic_finder<char> finder_;
  const multipart_limits& most_;
  std::size_t at_ = 0;
};

std::string boundary_in(std::wstring_view content_type) {
  constexpr std::wstring_view type_field = L"Content-Type";
  std::size_t at = std::min(content_type.find(L';'), content_type.size());
  wire::parameters all;
  const bool is_form = wire::is_same_name(wire::trimmed_value(content_type.substr(0, at)), multipart_type) &&
                       wire::read_parameters(all, content_type, at, wire::parameter_reading::lenient);
  const wire::parameter* const boundary = is_form ? wire::find_parameter(all, L"boundary") : nullptr;
  if (!boundary) refuse(type_field);
  std::string bytes = texto::to_utf_8(std::wstring_view(boundary->value));
  if (bytes.empty() || bytes.size() > longest_boundary) refuse(type_field);
  return bytes;
}

}  // namespace

bool write_multipart(std::string& out, std::wstring& content_type, const std::vector<form_part>& parts,
                     exception& err) {
  return succeeds(err, [&] {
    const std::string boundary = free_boundary(parts);
    std::string body = body_of(parts, boundary);
    content_type.assign(multipart_type).append(L"; boundary=").append(boundary.begin(), boundary.end());
    out = std::move(body);
  });
}

bool read_multipart(std::vector<form_part>& out, std::wstring_view content_type, std::string_view body,
                    exception& err, const multipart_limits& most) {
  return succeeds(err, [&] { out = multipart_reader(body, boundary_in(content_type), most).read(); });
}

}  // namespace ruvo::http
