// SPDX-License-Identifier: BSL-1.0

// Parts of messages from bytes.

#include <ruvo/exc.hpp>

#include <algorithm>
#include <utility>

#include "base/ascii.hpp"
#include "base/base64.hpp"
#include "base/utf.hpp"
#include "base/wire/encoded_words.hpp"
#include "base/wire/quoted_printable.hpp"
#include "base/wire/tokens.hpp"
#include "exc/classes.hpp"
#include "exc/detail.hpp"
#include "net/failures.hpp"
#include "net/part.hpp"

namespace ruvo::mime {

namespace {

/// Takes the next line, without its end, from the text.
std::string_view take_line(std::string_view& text) noexcept {
  const std::size_t feed = text.find('\n');
  std::string_view line = text.substr(0, feed);
  text.remove_prefix(feed == text.npos ? text.size() : feed + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

bool is_blank(char c) noexcept { return c == ' ' || c == '\t'; }

/// The text of a field. A control character, which has no place there, becomes a blank.
std::wstring text_of_field(std::string_view bytes) {
  std::wstring text = text_of_unknown(bytes);
  std::replace_if(
      text.begin(), text.end(), [](wchar_t c) { return !wire::is_field_unit(c); }, L' ');
  return std::wstring(wire::trimmed_value(text));
}

enum class delimiter : unsigned char { none, next, last };

delimiter delimiter_in(std::string_view line, std::string_view boundary) noexcept {
  if (!line.starts_with("--") || !line.substr(2).starts_with(boundary)) return delimiter::none;
  line.remove_prefix(2 + boundary.size());
  const bool is_last = line.starts_with("--");
  if (is_last) line.remove_prefix(2);
  if (!std::all_of(line.begin(), line.end(), is_blank)) return delimiter::none;
  return is_last ? delimiter::last : delimiter::next;
}

/// Decodes the encoded words of a file's name, which many mailers write although parameters have a form of
/// their own. Where that was used they are text.
void decode_name(wire::parameters& all, std::wstring_view name, std::wstring_view value) {
  if (value.find(std::wstring(name) + L"*") != value.npos) return;
  for (wire::parameter& each : all)
    if (wire::is_same_name(each.name, name)) each.value = wire::decode_words(each.value);
}

class message_reader {
 public:
  message_reader(std::string_view bytes, const limits& most) : whole_(bytes), most_(most) {}

  part read() {
    if (whole_.size() > most_.bytes) fail(L"más bytes de los permitidos", whole_.substr(most_.bytes));
    begin(whole_, false);
    while (!open_.empty()) {
      std::string_view child;
      if (take_child(open_.back(), child)) {
        begin(child, open_.back().made.get_type() == L"multipart/digest");
      } else {
        part made = std::move(open_.back().made);
        open_.pop_back();
        deliver(std::move(made));
      }
    }
    return std::move(result_);
  }

 private:
  struct open {
    part made;
    std::string_view left;
    std::string boundary;
    bool is_ended;
  };
  /// What the fields say of the content.
  struct head {
    std::wstring encoding;
    bool has_type = false, has_disposition = false;
  };

  [[noreturn]] void fail(const wchar_t* what, std::string_view at) const {
    exc::BadFormat failure;
    ruvo::detail::error_class::set_position(failure, static_cast<std::size_t>(at.data() - whole_.data()) + 1);
    ruvo::detail::add_detail(failure, [what] { return std::wstring(what); });
    throw failure;
  }

  /// Reads a leaf, or the beginning of a multipart, which stays open.
  void begin(std::string_view entity, bool is_in_digest) {
    if (++parts_ > most_.parts) fail(L"más partes de las permitidas", entity);
    part made;
    if (is_in_digest) part_access::of(made).type = L"message/rfc822";
    std::string_view body = entity;
    const head about = read_fields(made, body);
    if (!made.is_multipart()) {
      read_content(part_access::of(made), about.encoding, body);
      return deliver(std::move(made));
    }
    if (open_.size() >= std::min(most_.levels, most_levels)) fail(L"más niveles de los permitidos", entity);
    const std::string boundary = texto::to_utf_8(made.get_parameter(L"boundary"));
    if (boundary.empty()) fail(L"partes sin separador", entity);
    open_.push_back({std::move(made), body, boundary, false});
    skip_preamble(open_.back());
  }

  /// Takes the fields and the empty line behind them from the text.
  head read_fields(part& made, std::string_view& text) {
    const std::string_view all = text;
    head about;
    std::string field;
    for (bool at_end = false; !at_end;) {
      const std::string_view line = text.empty() ? std::string_view() : take_line(text);
      if (all.size() - text.size() > most_.header_bytes) fail(L"cabecera más larga de lo permitido", all);
      at_end = line.empty();
      if (!at_end && is_blank(line.front()) && !field.empty()) {
        field.append(line);
        continue;
      }
      if (!field.empty()) take_field(made, about, field);
      field = line;
    }
    return about;
  }

  static void take_field(part& made, head& about, std::string_view field) {
    part_data& own = part_access::of(made);
    const std::size_t colon = field.find(':');
    std::string_view bytes = field.substr(0, colon);
    while (!bytes.empty() && is_blank(bytes.back())) bytes.remove_suffix(1);
    if (colon == field.npos || !wire::is_field_name(bytes)) {
      own.is_damaged = true;
      return;
    }
    const std::wstring name = texto::to_utf_16(bytes);
    std::wstring value = text_of_field(field.substr(colon + 1));
    if (wire::is_same_name(name, type_field)) {
      if (!std::exchange(about.has_type, true)) take_type(own, value);
    } else if (wire::is_same_name(name, disposition_field)) {
      if (!std::exchange(about.has_disposition, true)) take_disposition(own, value);
    } else if (wire::is_same_name(name, encoding_field)) {
      about.encoding = std::move(value);
    } else if (!wire::is_same_name(name, version_field)) {
      own.fields.push_back({name, std::move(value)});
    }
  }

  static void take_disposition(part_data& own, std::wstring_view value) {
    read_worded_field(own.disposition, own.disposition_parameters, value, wire::parameter_reading::lenient);
    if (!wire::is_token(own.disposition)) {  // RFC 2183, 2.8: what is not known is attached
      own.disposition = L"attachment";
      own.is_damaged = true;
    }
    decode_name(own.disposition_parameters, L"filename", value);
  }

  static void take_type(part_data& own, std::wstring_view value) {
    std::wstring type;
    read_worded_field(type, own.type_parameters, value, wire::parameter_reading::lenient);
    decode_name(own.type_parameters, L"name", value);
    if (is_type(type)) {
      own.type = std::move(type);
    } else {
      own.is_damaged = own.is_damaged || type != L"text";  // as it was before there were subtypes
    }
  }

  static void read_content(part_data& own, std::wstring_view encoding, std::string_view body) {
    const auto is = [encoding](std::wstring_view name) { return wire::is_same_name(encoding, name); };
    if (is(L"base64")) {
      read_base64(own, body);
    } else if (is(L"quoted-printable")) {
      if (!wire::read_quoted_printable(own.content, body)) own.is_damaged = true;
    } else {
      own.content = body;
      if (!encoding.empty() && !is(L"7bit") && !is(L"8bit") && !is(L"binary")) own.is_damaged = true;
    }
  }

  static void read_base64(part_data& own, std::string_view body) {
    own.content.resize(texto::base64_room(body.size()));
    char* const begin = own.content.data();
    const unsigned char* end = texto::base64_read(reinterpret_cast<unsigned char*>(begin), body);
    if (!end) {
      own.is_damaged = true;
      end = reinterpret_cast<unsigned char*>(texto::base64_decode_to(begin, body));
    }
    own.content.resize(static_cast<std::size_t>(reinterpret_cast<const char*>(end) - begin));
  }

  void skip_preamble(open& parts) const {
    const std::string_view body = parts.left;
    while (!parts.left.empty()) {
      const delimiter found = delimiter_in(take_line(parts.left), parts.boundary);
      parts.is_ended = found == delimiter::last;
      if (found != delimiter::none) return;
    }
    fail(L"falta el separador de las partes", body);
  }

  /// The next child of a multipart; false at its end.
  static bool take_child(open& parts, std::string_view& out) {
    if (parts.is_ended) return false;
    const std::string_view from = parts.left;
    while (!parts.left.empty()) {
      const std::string_view line = take_line(parts.left);
      const delimiter found = delimiter_in(line, parts.boundary);
      if (found == delimiter::none) continue;
      parts.is_ended = found == delimiter::last;
      out = from.substr(0, static_cast<std::size_t>(line.data() - from.data()));
      // The line's end before a boundary belongs to it.
      if (out.ends_with('\n')) out.remove_suffix(1);
      if (out.ends_with('\r')) out.remove_suffix(1);
      return true;
    }
    parts.is_ended = part_access::of(parts.made).is_damaged = true;
    out = from;
    return !from.empty();
  }

  void deliver(part made) {
    if (open_.empty()) {
      result_ = std::move(made);
    } else {
      open_.back().made.add(std::move(made));
    }
  }

  const std::string_view whole_;
  const limits& most_;
  std::vector<open> open_;
  std::size_t parts_ = 0;
  part result_;
};

}  // namespace

part read(std::string_view bytes, const limits& most) { return message_reader(bytes, most).read(); }

bool read(part& out, std::string_view bytes, exception& err, const limits& most) {
  return http::succeeds(err, [&] { out = read(bytes, most); });
}

}  // namespace ruvo::mime
