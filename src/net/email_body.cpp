// SPDX-License-Identifier: BSL-1.0

// The texts of a message that a transport sends as its content.

#include <ruvo/smtp/email.hpp>
#include <ruvo/texto/markup.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"

namespace ruvo::smtp {

namespace {

bool starts_with_tag(std::wstring_view rest, std::wstring_view tag) {
  return rest.size() >= tag.size() &&
         std::equal(tag.begin(), tag.end(), rest.begin(),
                    [](wchar_t a, wchar_t b) { return a == texto::to_lower(b); });
}

/// Where the tag, in any case, stands first at or behind `from`, and where it stands last; npos if nowhere.
std::size_t find_tag(std::wstring_view text, std::wstring_view tag, std::size_t from = 0) {
  std::size_t at = text.find(L'<', from);
  while (at != text.npos && !starts_with_tag(text.substr(at), tag)) at = text.find(L'<', at + 1);
  return at;
}

std::size_t find_last_tag(std::wstring_view text, std::wstring_view tag) {
  std::size_t at = text.rfind(L'<');
  while (at != text.npos && !starts_with_tag(text.substr(at), tag))
    at = at == 0 ? text.npos : text.rfind(L'<', at - 1);
  return at;
}

/// Removes what lies between the first <head> and the last </head>, with them, unless that is nothing, and
/// every <head/>.
void remove_head(std::wstring& text) {
  constexpr std::wstring_view open = L"<head>", close = L"</head>", alone = L"<head/>";
  const std::size_t first = find_tag(text, open), last = find_last_tag(text, close);
  if (first != text.npos && last != text.npos && last > first + open.size())
    text.erase(first, last + close.size() - first);
  std::wstring kept;
  std::size_t from = 0;
  for (std::size_t at = find_tag(text, alone); at != text.npos; at = find_tag(text, alone, from)) {
    kept.append(text, from, at - from);
    from = at + alone.size();
  }
  if (from != 0) text = std::move(kept.append(text, from));
}

/// The text as a part of an HTML document.
std::wstring markup(std::wstring text) {
  if (!texto::is_html(text)) return std::move(texto::to_html(text));
  remove_head(text);
  texto::remove_html_and_body_tags(text);
  return text;
}

std::wstring plain_text(const std::wstring& text) {
  return texto::is_html(text) ? texto::to_plain_(text) : text;
}

}  // namespace

std::wstring email::get_plain_post() const {
  std::wstring post = plain_text(body_);
  if (!signature_.empty()) post.append(L"\r\n--\r\n").append(plain_text(signature_));
  return post;
}

std::wstring email::get_hmtl_post() const {
  std::wstring post =
      L"<html><head><meta http-equiv=\"Content-Type\" content=\"text/html;\" charset=\"iso-8859-1\"></head>"
      L"<body>";
  post += markup(body_);
  if (!signature_.empty()) post.append(L"<p>--</p><div>").append(markup(signature_)).append(L"</div>");
  return post += L"</body></html>";
}

}  // namespace ruvo::smtp
