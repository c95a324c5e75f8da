// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the kinds of identifiers have in common: a compact text, and functions over that, a row for each kind.

#include <ruvo/identifiers.hpp>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

namespace ruvo::identifiers {

/// A text in capitals, without what separates its parts, and where each character stood.
struct compact {
  static constexpr std::size_t room = 40;  // longer than any identifier; what follows is not looked at
  char text[room] = {};
  std::size_t places[room] = {};  // counted from 1
  std::size_t size = 0;
  std::size_t wrong = 0;  // the place of the first character that cannot be there; 0 for none

  std::string_view view() const noexcept { return {text, size}; }
};

/// What is particular to a kind. The functions take a compact text of `least` to `longest` characters, and
/// their verdicts count positions in that from 1.
struct kind_rules {
  const wchar_t* name;
  const wchar_t* beginning;  // what to say of an unknown one
  std::wstring_view passed;  // what separates besides blanks, wherever it stands
  std::wstring_view kept;    // what belongs to it besides letters and digits
  std::size_t least, longest;
  const char* sizes;  // to be shown
  verdict (*check)(std::string_view text) noexcept;
  /// Writes the control characters into the text; false where the rest is wrong. Null where there are none.
  bool (*complete)(char* text, std::size_t size) noexcept;
  /// The usual writing of a right text; null where that is the compact one.
  std::wstring (*format)(std::string_view text);
  std::wstring_view (*describe)(std::string_view text) noexcept;
};

const kind_rules& rules_of(kind what) noexcept;

/// The verdict on a compact text that is, or is a part of, what is checked.
verdict check_compact(kind what, std::string_view text) noexcept;

inline verdict faulty(fault what, std::size_t index) noexcept {
  verdict out;
  out.what = what;
  out.position = index + 1;
  return out;
}

/// The same with what was expected, of up to seven characters.
verdict faulty(fault what, std::size_t index, std::string_view expected) noexcept;

/// Whether what stands at the index is right; `bad` is what is wrong otherwise.
inline verdict compared(std::string_view given, std::string_view right, fault bad, std::size_t index) {
  return given == right ? verdict{} : faulty(bad, index, right);
}

/// The verdict on a part that begins at the index.
inline verdict moved(verdict part, std::size_t index) noexcept {
  if (part.position != 0) part.position += index;
  return part;
}

/// The index of the first character that the pattern does not have there: `9` is a digit, `@` a letter, `#`
/// either, `*` either or "+" and "*", another character itself. `npos` for none. Both are of one length.
std::size_t misfit(std::string_view text, std::string_view pattern) noexcept;

/// The pieces of a text with a blank between them; the last size counts for all that follow.
std::wstring in_groups(std::string_view text, std::initializer_list<std::size_t> sizes);

// --- identity.cpp

verdict check_dni(std::string_view text) noexcept;
verdict check_nie(std::string_view text) noexcept;
verdict check_company(std::string_view text) noexcept;
verdict check_nif(std::string_view text) noexcept;
bool complete_nif(char* text, std::size_t size) noexcept;
std::wstring format_nif(std::string_view text);
std::wstring_view describe_nif(std::string_view text) noexcept;

// --- countries.cpp

verdict check_bic(std::string_view text) noexcept;
std::wstring_view describe_bic(std::string_view text) noexcept;
/// By the first two characters.
std::wstring_view describe_by_country(std::string_view text) noexcept;

// --- trade.cpp

verdict check_vat(std::string_view text) noexcept;
bool complete_vat(char* text, std::size_t size) noexcept;
verdict check_eori(std::string_view text) noexcept;
bool complete_behind_country(char* text, std::size_t size) noexcept;

// --- banking.cpp

verdict check_ccc(std::string_view text) noexcept;
bool complete_ccc(char* text, std::size_t size) noexcept;
std::wstring format_ccc(std::string_view text);
verdict check_iban(std::string_view text) noexcept;
bool complete_iban(char* text, std::size_t size) noexcept;
std::wstring format_iban(std::string_view text);
verdict check_card(std::string_view text) noexcept;
bool complete_card(char* text, std::size_t size) noexcept;
std::wstring format_card(std::string_view text);
std::wstring_view describe_card(std::string_view text) noexcept;

// --- places.cpp

verdict check_postal_code(std::string_view text) noexcept;
std::wstring_view describe_postal_code(std::string_view text) noexcept;
verdict check_telephone(std::string_view text) noexcept;
std::wstring canonical_telephone(std::wstring compact_text);
std::wstring format_telephone(std::string_view text);
std::wstring_view describe_telephone(std::string_view text) noexcept;

}  // namespace ruvo::identifiers
