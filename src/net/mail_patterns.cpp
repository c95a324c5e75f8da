// SPDX-License-Identifier: BSL-1.0

// The forms of hosts, mailboxes and addresses, read without patterns.

#include "net/mail_patterns.hpp"

#include <ruvo/texto.hpp>

#include <algorithm>
#include <string>
#include <utility>

#include "base/unicode.hpp"

namespace ruvo::smtp::detail {

namespace {

constexpr std::size_t npos = std::wstring_view::npos;
constexpr std::wstring_view line_ends = L"\n\r\u2028\u2029";  // what '.' does not stand for

bool all_digits(std::wstring_view text) noexcept {
  return std::all_of(text.begin(), text.end(), texto::is_digit);
}
bool has_blanks(std::wstring_view text) noexcept {
  return std::any_of(text.begin(), text.end(), texto::is_word_blank);
}

bool is_label(std::wstring_view text) noexcept {
  return !text.empty() &&
         std::all_of(text.begin(), text.end(), [](wchar_t c) { return texto::is_alnum(c) || c == L'-'; });
}

/// Two or three labels, each with a dot, and two small letters.
bool is_name(std::wstring_view text) noexcept {
  int labels = 0;
  for (std::size_t dot; (dot = text.find(L'.')) != npos; text.remove_prefix(dot + 1)) {
    if (++labels > 3 || !is_label(text.substr(0, dot))) return false;
  }
  return labels >= 2 && text.size() == 2 && texto::is_lower(text[0]) && texto::is_lower(text[1]);
}

/// A name and, behind ':', a port; whether the text may end there is left to the caller.
struct host_text {
  explicit host_text(std::wstring_view text) noexcept
      : name(text.substr(0, text.find(L':'))), has_port(name.size() < text.size()) {
    if (has_port) port = text.substr(name.size() + 1);
  }

  std::wstring_view name, port;
  bool has_port;
};

/// "user:password", divided at the first ':' that is not the first character.
bool read_credentials(std::wstring_view text, mailbox_text& read) noexcept {
  const std::size_t colon = text.find(L':', 1);
  if (colon == npos || colon + 1 == text.size() || has_blanks(text)) return false;
  read.user = text.substr(0, colon);
  read.password = text.substr(colon + 1);
  return true;
}

mailbox_text::scheme_of take_scheme(std::wstring_view& text) noexcept {
  for (const auto& [prefix, scheme] :
       {std::pair(std::wstring_view(L"smtp://"), mailbox_text::scheme_of::smtp),
        std::pair(std::wstring_view(L"smtps://"), mailbox_text::scheme_of::smtps)}) {
    if (!text.starts_with(prefix)) continue;
    text.remove_prefix(prefix.size());
    return scheme;
  }
  return mailbox_text::scheme_of::none;
}

/// A name of quotes only is empty; quotes with others inside are kept.
std::wstring_view without_quotes(std::wstring_view name) noexcept {
  const std::size_t begin = std::min(name.find_first_not_of(L'"'), name.size());
  const std::size_t end = name.find_last_not_of(L'"') + 1;
  if (end == 0) return {};
  const std::wstring_view inside = name.substr(begin, end - begin);
  return begin == 0 || end == name.size() || inside.find(L'"') != npos ? name : inside;
}

}  // namespace

bool is_host(std::wstring_view text) noexcept {
  const host_text host(text);
  return is_name(host.name) && (!host.has_port || (!host.port.empty() && all_digits(host.port)));
}

std::optional<mailbox_text> read_mailbox(std::wstring_view text) noexcept {
  mailbox_text read{take_scheme(text), {}, {}, {}, {}};
  const std::size_t at = text.rfind(L'@');  // no host holds one
  if (at != npos && !read_credentials(text.substr(0, at), read)) return {};
  if (at == npos && read.scheme == mailbox_text::scheme_of::none) return {};
  const host_text host(text.substr(at + 1));
  if (!is_name(host.name)) return {};
  if (host.has_port && (host.port.size() < 2 || host.port.size() > 4 || !all_digits(host.port))) return {};
  read.host = host.name;
  read.port = host.port;
  return read;
}

std::optional<address_text> split_address(std::wstring_view text) noexcept {
  const std::size_t open = text.rfind(L'<');  // no mail address holds one
  if (open == npos || text.back() != L'>') return {};
  const std::wstring_view mail = text.substr(open + 1, text.size() - open - 2);
  if (open == 0) return address_text{{}, mail};
  const std::wstring_view name = text.substr(0, open - 1);
  if (!texto::is_word_blank(text[open - 1]) || name.find_first_of(line_ends) != npos) return {};
  return address_text{texto::without_blanks(without_quotes(texto::without_blanks(name))), mail};
}

std::optional<address_text> read_address(std::wstring_view text) {
  const auto read = split_address(text);
  return read && texto::is_email(std::wstring(read->mail)) ? read : std::nullopt;
}

}  // namespace ruvo::smtp::detail
