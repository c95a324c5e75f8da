// SPDX-License-Identifier: BSL-1.0

// Hosts of addresses.

#include "net/host_names.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "base/ascii.hpp"
#include "base/wire/ascii_set.hpp"

namespace ruvo::http {

namespace {

/// Four decimal numbers up to 255, without leading zeros.
bool is_ipv4(std::wstring_view text) noexcept {
  int parts = 0;
  for (bool more = true; more; ++parts) {
    const std::size_t dot = std::min(text.find(L'.'), text.size());
    const std::wstring_view part = text.substr(0, dot);
    if (part.empty() || part.size() > 3 || (part.size() > 1 && part.front() == L'0')) return false;
    if (!std::all_of(part.begin(), part.end(), texto::is_digit)) return false;
    int number = 0;
    for (const wchar_t c : part) number = number * 10 + (c - L'0');
    if (number > 255) return false;
    more = dot < text.size();
    text.remove_prefix(more ? dot + 1 : dot);
  }
  return parts == 4;
}

/// Without "[]" and without a zone.
bool is_ipv6(std::wstring_view text) noexcept {
  constexpr int whole = 8;
  int groups = 0;
  bool is_short = text.starts_with(L"::");  // "::" stands once for groups of zero
  if (is_short) text.remove_prefix(2);
  while (!text.empty()) {
    const std::size_t colon = std::min(text.find(L':'), text.size());
    const std::wstring_view part = text.substr(0, colon);
    if (colon == text.size() && is_ipv4(part)) return is_short ? groups + 2 < whole : groups + 2 == whole;
    const bool is_hex =
        std::all_of(part.begin(), part.end(), [](wchar_t c) { return texto::hex_value(c) >= 0; });
    if (part.empty() || part.size() > 4 || !is_hex || ++groups > whole) return false;
    if (colon == text.size()) break;
    text.remove_prefix(colon + 1);
    if (text.empty()) return false;  // one ":" at the end
    if (text.front() == L':') {
      if (is_short) return false;
      is_short = true;
      text.remove_prefix(1);
    }
  }
  return is_short ? groups < whole : groups == whole;
}

}  // namespace

std::size_t wrong_in_host(std::wstring_view host) noexcept {
  constexpr wire::ascii_set name_set = wire::unreserved_set.with("!$&'()*+,;=");
  if (host.starts_with(L'[')) {
    const bool is_good = host.ends_with(L']') && host.size() > 2 && is_ipv6(host.substr(1, host.size() - 2));
    return is_good ? host.npos : 0;
  }
  for (std::size_t at = 0; at < host.size(); ++at) {
    const bool escape = host[at] == L'%' && host.size() - at > 2 && texto::hex_value(host[at + 1]) >= 0 &&
                        texto::hex_value(host[at + 2]) >= 0;
    if (escape)
      at += 2;
    else if (!name_set.has(host[at]))
      return at;
  }
  return host.npos;
}

}  // namespace ruvo::http
