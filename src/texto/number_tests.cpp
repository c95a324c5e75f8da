// SPDX-License-Identifier: BSL-1.0

// Tests of the form of a text. Each walks the text once: the character classes of its pattern are disjoint
// from what follows them, so that no choice is ever taken back.

#include <ruvo/texto.hpp>

#include <string_view>

#include "base/ascii.hpp"
#include "base/numbers.hpp"

namespace ruvo::texto {

namespace {

/// Units from `at` on that are in the class.
template <class Test>
std::size_t run_length(std::wstring_view text, std::size_t at, Test test) {
  std::size_t size = 0;
  while (at + size < text.size() && test(text[at + size])) ++size;
  return size;
}

/// One to three digits, groups of three after a `thousands` each, and optionally a `decimal` with digits.
bool is_grouped(std::wstring_view text, wchar_t thousands, wchar_t decimal) {
  std::size_t at = run_length(text, 0, is_digit);
  if (at < 1 || at > 3) return false;
  for (; at < text.size() && text[at] == thousands; at += 4) {
    if (run_length(text, at + 1, is_digit) != 3) return false;
  }
  if (at == text.size()) return true;
  const std::size_t decimals = run_length(text, at + 1, is_digit);
  return text[at] == decimal && decimals > 0 && at + 1 + decimals == text.size();
}

/// An optional '-', a digit, then digits and `mark`s. Without a mark this is a plain integer.
bool is_marked(std::wstring_view text, wchar_t mark) {
  if (!text.empty() && text[0] == L'-') text.remove_prefix(1);
  if (text.empty() || !is_digit(text[0])) return false;
  return run_length(text, 0, [mark](wchar_t c) { return is_digit(c) || c == mark; }) == text.size();
}

bool is_dashed(wchar_t c) { return is_alnum(c) || c == L'-'; }
bool is_local(wchar_t c) { return is_dashed(c) || c == L'_'; }
bool is_first_local(wchar_t c) { return is_local(c) || c == L'+'; }

/// What precedes the '@': the first word may hold '+'.
bool is_local_part(std::wstring_view text) {
  std::size_t at = run_length(text, 0, is_first_local);
  for (std::size_t word = at; word > 0; at += 1 + word) {
    if (at == text.size()) return true;
    word = text[at] == L'.' ? run_length(text, at + 1, is_local) : 0;
  }
  return false;
}

/// What follows the '@': at least two words, the last of letters.
bool is_domain(std::wstring_view text) {
  const std::size_t last = text.rfind(L'.') + 1;  // 0 without one
  if (last == 0 || text.size() - last < 2 || run_length(text, last, is_alpha) != text.size() - last)
    return false;
  std::size_t at = run_length(text, 0, is_dashed);
  for (std::size_t word = at; word > 0; at += 1 + word) {
    if (at + 1 == last) return true;
    word = text[at] == L'.' ? run_length(text, at + 1, is_alnum) : 0;
  }
  return false;
}

}  // namespace

bool is_integer(wide_view text) { return is_plain_integer(text); }
bool is_integer(const std::wstring& text) { return is_integer(std::wstring_view(text)); }
bool is_integer_positive(wide_view text) {
  return !text.empty() && run_length(text, 0, is_digit) == text.size();
}
bool is_integer_positive(const std::wstring& text) { return is_integer_positive(std::wstring_view(text)); }

bool is_number(wide_view text) {
  return is_grouped(text, L'.', L',') || is_grouped(text, L',', L'.') || is_marked(text, L'.') ||
         is_marked(text, L',');
}
bool is_number(const std::wstring& text) { return is_number(std::wstring_view(text)); }

bool is_email(wide_view text) {
  const std::size_t at = text.find(L'@');
  return at != text.npos && is_local_part(text.substr(0, at)) && is_domain(text.substr(at + 1));
}
bool is_email(const std::wstring& text) { return is_email(std::wstring_view(text)); }

}  // namespace ruvo::texto
