// SPDX-License-Identifier: BSL-1.0

// Names of persons and places in capitals and small letters.

#include <ruvo/texto.hpp>

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>

#include "base/numbers.hpp"
#include "base/unicode.hpp"
#include "texto/word_reader.hpp"

namespace ruvo::texto {

namespace {

constexpr std::wstring_view name_particles[] = {
    L"de",  L"del", L"dels", L"el", L"la", L"los", L"las", L"els", L"les", L"da",  L"das", L"do",
    L"dos", L"y",   L"e",    L"i",  L"di", L"du",  L"van", L"von", L"der", L"den", L"zu",
};
constexpr std::wstring_view place_particles[] = {
    L"el", L"la", L"los", L"las", L"de", L"del", L"dels", L"y", L"na", L"i", L"els", L"les", L"ses", L"sa",
};
/// Articles that lists of municipalities put behind the name.
constexpr std::wstring_view place_articles[] = {
    L"a",   L"as", L"el", L"els",     L"es", L"l'", L"l\x2019", L"la",      L"las", L"les", L"lo",
    L"los", L"na", L"n'", L"n\x2019", L"o",  L"os", L"s'",      L"s\x2019", L"sa",  L"ses",
};

constexpr std::size_t longest_particle = 4;

/// Whether `word`, in capitals or small letters, is in `list`.
template <std::size_t Size>
bool is_particle_of(const std::wstring_view (&list)[Size], std::wstring_view word) {
  if (word.size() > longest_particle) return false;
  std::array<wchar_t, longest_particle> small{};
  std::transform(word.begin(), word.end(), small.begin(), to_lower);
  return std::find(std::begin(list), std::end(list), std::wstring_view(small.data(), word.size())) !=
         std::end(list);
}

/// 2 to 39 in capitals or small letters.
bool is_roman_numeral(std::wstring_view word) {
  static constexpr std::wstring_view units[] = {L"",  L"I",  L"II",  L"III",  L"IV",
                                                L"V", L"VI", L"VII", L"VIII", L"IX"};
  std::size_t tens = 0;
  while (tens < 3 && tens < word.size() && to_upper(word[tens]) == L'X') ++tens;
  const std::wstring_view rest = word.substr(tens);
  if (word.size() < 2 || rest.size() > 4) return false;
  return std::any_of(std::begin(units), std::end(units), [rest](std::wstring_view unit) {
    return std::equal(rest.begin(), rest.end(), unit.begin(), unit.end(),
                      [](wchar_t a, wchar_t b) { return to_upper(a) == b; });
  });
}

bool is_apostrophe(wchar_t c) { return c == L'\'' || static_cast<char16_t>(c) == 0x2019; }

/// Whether a part of a word goes on: digits, and all above U+00C0 but signs and punctuation.
bool is_word_unit(wchar_t c) {
  const auto unit = static_cast<char16_t>(c);
  return is_alnum(c) || (unit >= 0xC0 && unit != 0xD7 && unit != 0xF7 && (unit < 0x2000 || unit > 0x206F));
}

enum class letter_form { small, capital, large };

/// A part of a word: a run of letters and digits.
struct word_part {
  std::wstring_view text;
  wchar_t before, after;   ///< what stands on both sides within the word, 0 at its ends
  bool is_first, is_last;  ///< the first of the name; at the end of the name

  /// Limited by blanks or hyphens only.
  bool is_whole() const { return (before == 0 || before == L'-') && (after == 0 || after == L'-'); }
  /// Elided article or preposition, of the given letters.
  bool is_elision(std::wstring_view letters) const {
    return text.size() == 1 && is_apostrophe(after) && letters.find(to_lower(text[0])) != letters.npos;
  }
};

letter_form form_in_person(const word_part& part) {
  if (part.text.size() == 1 && is_apostrophe(part.before) && part.after == 0) return letter_form::small;
  if (part.is_first) return letter_form::capital;
  if (part.is_elision(L"dl")) return letter_form::small;
  if (!part.is_whole()) return letter_form::capital;
  if (is_roman_numeral(part.text)) return letter_form::large;
  if (part.is_last && part.text.size() == 1 && to_lower(part.text[0]) == L'i') return letter_form::large;
  return is_particle_of(name_particles, part.text) ? letter_form::small : letter_form::capital;
}

letter_form form_in_place(const word_part& part) {
  if (part.is_first) return letter_form::capital;
  if (part.is_elision(L"dlns")) return letter_form::small;
  return part.is_whole() && is_particle_of(place_particles, part.text) ? letter_form::small
                                                                       : letter_form::capital;
}

void append_part(std::wstring& out, std::wstring_view part, letter_form form) {
  for (std::size_t i = 0; i < part.size(); ++i) {
    const bool large = form == letter_form::large || (form == letter_form::capital && i == 0);
    out.push_back(large ? to_uppercase(part[i]) : to_lowercase(part[i]));
  }
}

/// Appends the words of `name` with a blank between them, the parts of each in the form that `form_of` gives.
void append_words(std::wstring& out, std::wstring_view name, letter_form (*form_of)(const word_part&)) {
  word_reader words(name);
  bool is_first = true;
  for (std::wstring_view word = words.next(), next; !word.empty(); word = next) {
    next = words.next();
    for (std::size_t at = 0, end = 0; at < word.size(); at = end) {
      while (end < word.size() && is_word_unit(word[end])) ++end;
      if (end == at) {
        out.push_back(word[end++]);
        continue;
      }
      const wchar_t before = at == 0 ? wchar_t() : word[at - 1];
      const wchar_t after = end == word.size() ? wchar_t() : word[end];
      const bool is_last = end == word.size() && next.empty();
      const word_part part{word.substr(at, end - at), before, after, is_first, is_last};
      append_part(out, part.text, form_of(part));
      is_first = false;
    }
    if (!next.empty()) out.push_back(L' ');
  }
}

/// A name of a municipality, cut at its article.
struct place_name {
  std::wstring_view article;  ///< without comma and brackets; empty if none stands behind the name
  std::wstring_view name;
};

/// Whether the article stands in front of the name, too.
bool begins_with_article(std::wstring_view name, std::wstring_view article) {
  const auto is_alike = [](wchar_t a, wchar_t b) { return to_lower(a) == to_lower(b); };
  const std::wstring_view first = name.substr(0, article.size()), rest = name.substr(first.size());
  return std::equal(first.begin(), first.end(), article.begin(), article.end(), is_alike) &&
         (rest.empty() || is_apostrophe(first.back()) || is_word_blank(rest.front()));
}

place_name cut_article(std::wstring_view text) {
  const bool in_brackets = text.ends_with(L')');
  const std::size_t mark = text.rfind(in_brackets ? L'(' : L',');
  if (mark == text.npos) return {{}, text};
  const std::wstring_view name = without_blanks(text.substr(0, mark));
  const std::wstring_view article =
      without_blanks(text.substr(mark + 1, text.size() - mark - 1 - (in_brackets ? 1 : 0)));
  if (name.empty() || !is_particle_of(place_articles, article)) return {{}, text};
  if (begins_with_article(name, article)) return {{}, name};
  return {article, name};
}

void append_place(std::wstring& out, std::wstring_view text) {
  const place_name place = cut_article(without_blanks(text));
  std::wstring whole(place.article);
  if (!whole.empty() && !is_apostrophe(whole.back())) whole.push_back(L' ');
  whole += place.name;
  append_words(out, whole, form_in_place);
}

void append_joined(std::wstring& out, std::wstring_view part) {
  if (!out.empty() && !part.empty()) out.push_back(L' ');
  out += part;
}

}  // namespace

std::wstring to_capitalize_name_(wide_view name) {
  std::wstring out;
  out.reserve(name.size());
  append_words(out, name, form_in_person);
  return out;
}
std::wstring to_capitalize_name_(const std::wstring& name) {
  return to_capitalize_name_(std::wstring_view(name));
}

bool is_article_or_preposition(wide_view word) { return is_particle_of(name_particles, word); }
bool is_article_or_preposition(const std::wstring& word) {
  return is_article_or_preposition(std::wstring_view(word));
}

std::wstring corregir_nombre_municipio(wide_view name) {
  std::wstring out;
  out.reserve(name.size());
  for (std::size_t at = 0, end = 0; at <= name.size(); at = end + 1) {
    end = std::min(name.find(L'/', at), name.size());
    if (at != 0) out.push_back(L'/');
    append_place(out, name.substr(at, end - at));
  }
  return out;
}
std::wstring corregir_nombre_municipio(const std::wstring& name) {
  return corregir_nombre_municipio(std::wstring_view(name));
}

std::wstring order_name_(wide_view text) {
  const std::size_t first_comma = std::min(text.find(L','), text.size());
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t at = first_comma; at < text.size();) {
    const std::size_t end = std::min(text.find(L',', at + 1), text.size());
    append_joined(out, trimmed(text.substr(at + 1, end - at - 1)));
    at = end;
  }
  append_joined(out, trimmed(text.substr(0, first_comma)));
  return out;
}
std::wstring order_name_(const std::wstring& name) { return order_name_(std::wstring_view(name)); }

}  // namespace ruvo::texto
