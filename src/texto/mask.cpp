// SPDX-License-Identifier: BSL-1.0

// Masks with '*' and '?'.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::texto {

namespace {

bool is_wildcard(wchar_t c) { return c == L'*' || c == L'?'; }

/// Whether the mask fits the whole text. After a mismatch only the last '*' takes one unit more: what the
/// ones before it took needs no second thought, because a later place could not fit better.
bool fits(std::wstring_view text, std::wstring_view mask) {
  std::size_t at = 0, in_mask = 0;
  std::size_t star = mask.npos, resume = 0;  // the last '*' seen, and where the part behind it is tried
  while (at < text.size()) {
    if (in_mask < mask.size() && mask[in_mask] == L'*') {
      star = in_mask++;
      resume = at;
      if (in_mask == mask.size()) return true;
    } else if (in_mask < mask.size() && (mask[in_mask] == L'?' || mask[in_mask] == text[at])) {
      ++at;
      ++in_mask;
    } else if (star != mask.npos) {
      in_mask = star + 1;
      at = ++resume;
    } else {
      return false;
    }
  }
  return mask.find_first_not_of(L'*', in_mask) == mask.npos;
}

}  // namespace

bool has_mask(wide_view text) { return std::any_of(text.begin(), text.end(), is_wildcard); }
bool has_mask(const std::wstring& text) { return has_mask(std::wstring_view(text)); }

bool match_mask(wide_view text, wide_view mask, modo_busqueda mode) {
  if (has_mask(mask)) return fits(text, mask);
  switch (mode) {
    case busqueda_completa:
    case busqueda_exacta:
      return text == mask;
    case busqueda_comienza:
      return starts_with(text, mask);
    case busqueda_termina:
      return ends_with(text, mask);
    default:
      return contains(text, mask);
  }
}
bool match_mask(const std::wstring& text, const std::wstring& mask, modo_busqueda mode) {
  return match_mask(std::wstring_view(text), std::wstring_view(mask), mode);
}

std::wstring mask_to_sql(wide_view mask) {
  std::wstring sql(mask);
  std::replace(sql.begin(), sql.end(), L'*', L'%');
  std::replace(sql.begin(), sql.end(), L'?', L'_');
  return sql;
}
std::wstring mask_to_sql(const std::wstring& mask) { return mask_to_sql(std::wstring_view(mask)); }

}  // namespace ruvo::texto
