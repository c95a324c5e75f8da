// The fast way through ordinary XML: whole tags, attributes and texts at once.
//
// Everything here has the outcome of on_char for each character. What is unusual (a comment, a name with a
// line break inside, an end tag that fits nothing, whatever the text's end cuts off, ...) is left to on_char,
// character by character. Nothing is looked through twice for that: on_char then stays in the middle of a
// token until the token's end.

#include <ruvo/list.hpp>
#include <ruvo/xml.hpp>

#include "base/numbers.hpp"
#include "serializer/scan.hpp"
#include "values/cell.hpp"

namespace ruvo::serializer {

using detail::cell;

namespace {

/// Whether the unit means something inside the name of a tag.
constexpr bool ends_name(wchar_t c) noexcept {
  return is_xml_blank(c) || c == L'<' || c == L'>' || c == L'/' || c == L'!';
}

std::wstring_view between(const wchar_t* first, const wchar_t* last) noexcept {
  return {first, static_cast<std::size_t>(last - first)};
}

}  // namespace

struct xml_reading {
  using state = xml_reader::state;
  using tag = xml_reader::tag;

  xml_reader& reader;
  const wchar_t* at;
  const wchar_t* const end;

  void run() {
    bool went_on = true;
    while (went_on && at != end) {
      switch (reader.state_) {
        case state::start:
          went_on = between_elements();
          break;
        case state::value:
          went_on = text();
          break;
        case state::quality_key:
          went_on = reader.attribute_name_.empty() && attribute();
          break;
        case state::key:
          went_on = reader.name_text_.empty() && reader.tag_kind_ == tag::qualified_start && tag_end();
          break;
        default:
          went_on = false;
      }
    }
  }

  bool between_elements() {
    at = find_either(at, end, L'<', L'<');
    return at != end && tag_at();
  }

  /// The text of an element and the tag behind it.
  bool text() {
    while (at != end && is_xml_blank(*at)) ++at;
    const wchar_t* last = find_either(at, end, L'<', L'&');
    const bool escaped = last != end && *last == L'&';
    if (escaped) last = find_either(last, end, L'<', L'<');
    if (last != end && reader.current_) assign(between(at, last), escaped);
    at = last;
    if (at == end || tag_at()) return at != end;
    reader.tag_kind_ = tag::start;
    reader.state_ = state::key;
    ++at;
    return false;
  }

  void assign(std::wstring_view text, bool escaped) {
    text = texto::trimmed(text);
    if (escaped) {
      xml_reader::unescape(reader.scratch_, text);
      text = reader.scratch_;
    }
    var& to = *reader.current_;
    to.clear();
    cell::set_text(to, text);
  }

  /// A whole tag, or that of an element up to its attributes.
  bool tag_at() {
    if (end - at < 2 || at[1] == L'?' || at[1] == L'\0') return false;
    return at[1] == L'/' ? end_tag() : start_tag();
  }

  bool start_tag() {
    const wchar_t* const first = at + 1;
    const wchar_t* last = first;
    while (last != end && !ends_name(*last)) ++last;
    if (last == first || last == end || (reader.current_ && !cell::is_text(*reader.current_))) return false;
    if (*last == L'>') {
      create(between(first, last));
      reader.state_ = state::value;
    } else if (*last == L' ') {
      create(between(first, last));
      reader.tag_kind_ = tag::qualified_start;
      reader.state_ = state::quality_key;
    } else if (*last == L'/' && end - last > 1 && last[1] == L'>') {
      create(between(first, last++));
      finish_empty();
    } else {
      return false;
    }
    at = last + 1;
    return true;
  }

  void create(std::wstring_view name) {
    if (reader.current_) reader.push_current();
    reader.current_ = &reader.place(name);
    reader.current_key_ = name;
  }

  void finish_empty() {
    if (reader.current_) assign(L"", false);
    reader.clear_element();
    reader.state_ = state::start;
  }

  /// The end of the element that was opened last, or of the innermost one with children.
  bool end_tag() {
    if (!reader.current_ && reader.open_nodes_.empty()) return false;
    const std::wstring_view name = reader.current_ ? reader.current_key_ : reader.innermost_name();
    const std::wstring_view rest = between(at + 2, end);
    if (rest.size() <= name.size() || rest[name.size()] != L'>' || !rest.starts_with(name)) return false;
    if (rest.front() == L'?' || rest.front() == L'\0') return false;
    at += name.size() + 3;
    if (!reader.current_) {
      reader.note_size();
      reader.pop_node();
    }
    reader.clear_element();
    reader.state_ = state::start;
    return true;
  }

  /// One attribute with its value.
  bool attribute() {
    while (at != end && is_xml_blank(*at)) ++at;
    const wchar_t* name_end = at;
    while (name_end != end && !is_xml_blank(*name_end) && *name_end != L'=') ++name_end;
    if (end - name_end < 2 || *name_end != L'=' || name_end[1] != L'"') return false;
    const wchar_t* const first = name_end + 2;
    const wchar_t* const last = find_either(first, end, L'"', L'\\');
    if (last == end || *last != L'"') return false;
    if (reader.current_) put_quality(between(at, name_end), between(first, last));
    at = last + 1;
    reader.state_ = state::key;
    return true;
  }

  void put_quality(std::wstring_view name, std::wstring_view value) {
    auto& qualities = reader.current_->hack_qualities();
    var& to = qualities.try_emplace(qualities.end(), std::wstring(name))->second;
    to.clear();
    cell::set_text(to, value);
  }

  /// What follows an attribute.
  bool tag_end() {
    if (*at == L' ') {
      reader.state_ = state::quality_key;
    } else if (*at == L'>') {
      reader.state_ = state::value;
    } else if (*at == L'/' && end - at > 1 && at[1] == L'>') {
      finish_empty();
      ++at;
    } else {
      return false;
    }
    ++at;
    return true;
  }
};

const wchar_t* xml_reader::take_tokens(const wchar_t* at, const wchar_t* end) {
  xml_reading work{*this, at, end};
  work.run();
  position_ += static_cast<std::uint64_t>(work.at - at);
  return work.at;
}

}  // namespace ruvo::serializer
