// SPDX-License-Identifier: BSL-1.0

// Escaping for SQL and HTML, and the tags of HTML.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"

namespace ruvo::texto {

namespace {

constexpr std::wstring_view accented = L"áéíóúÁÉÍÓÚñÑüÜçÇ";
constexpr std::wstring_view entities[] = {
    L"&aacute;", L"&eacute;", L"&iacute;", L"&oacute;", L"&uacute;", L"&Aacute;", L"&Eacute;", L"&Iacute;",
    L"&Oacute;", L"&Uacute;", L"&ntilde;", L"&Ntilde;", L"&uuml;",   L"&Uuml;",   L"&ccedil;", L"&Ccedil;"};

constexpr char16_t first_accented = 0xC1, last_accented = 0xFC;

/// By code, one more than the index in `accented`; 0 for what is not in it.
constexpr auto number_accented() {
  std::array<unsigned char, last_accented - first_accented + 1> numbers{};
  for (std::size_t n = 0; n < accented.size(); ++n)
    numbers[static_cast<std::size_t>(accented[n] - first_accented)] = static_cast<unsigned char>(n + 1);
  return numbers;
}

constexpr auto numbers_of_accented = number_accented();

std::size_t number_of(wchar_t c) {
  const auto code = static_cast<char16_t>(c);
  if (code < first_accented || code > last_accented) return 0;
  return numbers_of_accented[static_cast<std::size_t>(code - first_accented)];
}

bool is_accented(wchar_t c) { return number_of(c) != 0; }

/// Goes through the text. Where `first` stands, `read` is given the rest and may write a unit to where its
/// second argument points; it returns how many units of the rest that replaces, or 0.
template <class Read>
std::wstring& condense(std::wstring& text, wchar_t first, Read read) {
  const wchar_t* at = text.data();
  const wchar_t* const end = at + text.size();
  wchar_t* written = text.data();
  while (at != end) {
    const std::wstring_view rest(at, static_cast<std::size_t>(end - at));
    const std::size_t taken = *at == first ? read(rest, written) : 0;
    if (taken == 0) *written++ = *at;
    at += std::max<std::size_t>(taken, 1);
  }
  text.resize(static_cast<std::size_t>(written - text.data()));
  return text;
}

std::size_t read_entity(std::wstring_view rest, wchar_t*& written) {
  const auto found = std::find_if(std::begin(entities), std::end(entities),
                                  [rest](std::wstring_view entity) { return rest.starts_with(entity); });
  if (found == std::end(entities)) return 0;
  *written++ = accented[static_cast<std::size_t>(found - entities)];
  return found->size();
}

void remove_tags(std::wstring& text) {
  const std::size_t last =
      text.rfind(L'>');  // no tag begins behind it: don't look for an end again and again
  if (last == text.npos) return;
  const wchar_t* const end = text.data() + last;
  condense(text, L'<', [end](std::wstring_view rest, wchar_t*&) {
    return rest.data() < end ? rest.find(L'>') + 1 : std::size_t{0};
  });
}

/// The size of a tag at the start: an optional '/', the name in any case, an optional '/' and nothing else. 0
/// if there is none.
std::size_t tag_size(std::wstring_view rest, std::wstring_view name) {
  std::size_t size = rest.substr(0, 2) == L"</" ? 2 : 1;
  const std::wstring_view found = rest.substr(size, name.size());
  if (!std::equal(found.begin(), found.end(), name.begin(), name.end(),
                  [](wchar_t a, wchar_t b) { return to_lower(a) == b; }))
    return 0;
  size += name.size();
  if (rest.substr(size, 1) == L"/") ++size;
  return rest.substr(size, 1) == L">" ? size + 1 : 0;
}

void remove_tags_named(std::wstring& text, std::wstring_view name) {
  condense(text, L'<', [name](std::wstring_view rest, wchar_t*&) { return tag_size(rest, name); });
}

}  // namespace

std::wstring& escaped_to_sql(std::wstring& text) { return std_replace(text, L"'", L"''", true); }
std::wstring escaped_to_sql_(wide_view text) {
  std::wstring copy(text);
  return std::move(escaped_to_sql(copy));
}
std::wstring escaped_to_sql_(const std::wstring& text) { return escaped_to_sql_(std::wstring_view(text)); }

std::wstring& escaped_from_sql(std::wstring& text) { return std_replace(text, L"''", L"'", true); }
std::wstring escaped_from_sql_(wide_view text) {
  std::wstring copy(text);
  return std::move(escaped_from_sql(copy));
}
std::wstring escaped_from_sql_(const std::wstring& text) {
  return escaped_from_sql_(std::wstring_view(text));
}

std::wstring& escaped_to_html(std::wstring& text) {
  const auto count = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is_accented));
  if (count == 0) return text;
  std::wstring made;
  made.reserve(text.size() + count * 7);  // an entity has at most 8 units
  const auto next = [&](auto from) { return std::find_if(from, text.cend(), is_accented); };
  auto from = text.cbegin();
  for (auto at = next(from); at != text.cend(); at = next(from)) {
    made.append(from, at).append(entities[number_of(*at) - 1]);
    from = at + 1;
  }
  made.append(from, text.cend());
  return text = std::move(made);
}

std::wstring& escaped_from_html(std::wstring& text) { return condense(text, L'&', read_entity); }

std::wstring& to_html(std::wstring& text) {
  std_replace(text, L"\r\n", L"<br/>", true);
  std_replace(text, L"\n", L"<br/>", true);
  return escaped_to_html(text);
}
std::wstring to_html_(wide_view text) {
  std::wstring copy(text);
  return std::move(to_html(copy));
}
std::wstring to_html_(const std::wstring& text) { return to_html_(std::wstring_view(text)); }

std::wstring& to_plain(std::wstring& text) {
  escaped_from_html(text);
  std_replace(text, L"<br/>", L"\r\n", true);
  std_replace(text, L"</br>", L"\r\n", true);
  remove_tags(text);
  return text;
}
std::wstring to_plain_(wide_view text) {
  std::wstring copy(text);
  return std::move(to_plain(copy));
}
std::wstring to_plain_(const std::wstring& text) { return to_plain_(std::wstring_view(text)); }

bool is_html(wide_view text) {
  const std::size_t open = text.find(L'<');
  return open != text.npos && text.find(L'>', open) != text.npos;
}
bool is_html(const std::wstring& text) { return is_html(std::wstring_view(text)); }

unsigned long long remove_html_and_body_tags(std::wstring& text) {
  const std::size_t body = text.find(L"<body>");
  remove_tags_named(text, L"html");
  remove_tags_named(text, L"body");
  return body;
}

std::wstring remove_html_and_body_tags_(wide_view text, unsigned long long* body) {
  std::wstring copy(text);
  const unsigned long long found = remove_html_and_body_tags(copy);
  if (body) *body = found;
  return copy;
}
std::wstring remove_html_and_body_tags_(const std::wstring& text, unsigned long long* body) {
  return remove_html_and_body_tags_(std::wstring_view(text), body);
}

}  // namespace ruvo::texto
