// SPDX-License-Identifier: BSL-1.0

// Numbers as people write them.

#include <ruvo/texto/written_numbers.hpp>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>

#include "base/numbers.hpp"
#include "base/services.hpp"
#include "base/unicode.hpp"

namespace ruvo::texto {

namespace {

constexpr std::size_t group_size = 3;

/// One character for all that separate alike.
wchar_t separator_kind(wchar_t c) {
  if (is_word_blank(c)) return L' ';
  return c == L'\u2019' ? L'\'' : c;
}

services::separators in_force(const number_options& options) {
  services::separators marks = services::of_this_thread();
  if (options.decimal != 0) marks.decimal = options.decimal;
  if (options.thousands != 0) marks.thousands = options.thousands;
  if (marks.decimal == marks.thousands && (options.decimal == 0) != (options.thousands == 0)) {
    wchar_t& other = options.decimal == 0 ? marks.decimal : marks.thousands;
    other = other == L'.' ? L',' : L'.';
  }
  marks.thousands = separator_kind(marks.thousands);
  if (marks.thousands == separator_kind(marks.decimal)) marks.thousands = 0;
  return marks;
}

bool is_minus(wchar_t c, bool lenient) { return c == L'-' || c == L'\u2212' || (lenient && c == L'\u2013'); }
bool is_currency_sign(wchar_t c) { return c == L'€' || c == L'$' || c == L'£' || c == L'¥'; }

/// Takes the parts off the text from its front; the first fault ends the reading.
class number_reader {
 public:
  number_reader(std::wstring_view text, const number_options& options)
      : text_(text), options_(options), marks_(in_force(options)), end_(text.size()) {}

  parsed_number read() {
    while (end_ > 0 && is_word_blank(text_[end_ - 1])) --end_;
    skip_blanks();
    if (at_ == end_) return fail(number_fault::empty, no_place);
    if (!read_front() || !find_digits() || !choose_separators() || !read_digits() || !read_back())
      return out_;
    if (bracket_ != no_place) return fail(number_fault::sign, bracket_);
    if (is_negative_ && !is_zero_) out_.plain.insert(0, 1, L'-');
    try {
      out_.value = read_double(out_.plain);
    } catch (const std::out_of_range&) {
      return fail(number_fault::too_large, first_);
    }
    return out_;
  }

 private:
  static constexpr std::size_t no_place = std::wstring_view::npos;

  parsed_number fail(number_fault fault, std::size_t index) {
    out_ = {};
    out_.fault = fault;
    out_.position = index + 1;  // 0 of no place
    return out_;
  }
  bool wrong(number_fault fault, std::size_t index) {
    fail(fault, index);
    return false;
  }

  wchar_t unit_at(std::size_t index) const { return index < end_ ? text_[index] : L'\0'; }
  bool is_digit_at(std::size_t index) const { return is_digit(unit_at(index)); }
  void skip_blanks() {
    while (at_ < end_ && is_word_blank(text_[at_])) ++at_;
  }

  // --- around the digits

  bool take_sign(bool negative, bool is_bracket) {
    if (has_sign_) return wrong(number_fault::sign, at_);
    has_sign_ = true;
    is_negative_ = negative;
    if (is_bracket) bracket_ = at_;
    ++at_;
    return true;
  }

  /// What stands before the digits.
  bool read_front() {
    for (; at_ < end_; skip_blanks()) {
      const wchar_t c = text_[at_];
      const bool minus = is_minus(c, options_.lenient);
      if (minus || c == L'+') {
        if (!take_sign(minus, false)) return false;
        if (!options_.lenient && is_word_blank(unit_at(at_))) return wrong(number_fault::sign, at_ - 1);
      } else if (c == L'(') {
        if (!take_sign(true, true)) return false;
      } else if (is_currency_sign(c) || is_alpha(c)) {
        if (!read_currency()) return false;
      } else {
        return true;
      }
    }
    return wrong(number_fault::digits, end_ - 1);
  }

  /// What stands behind them.
  bool read_back() {
    for (skip_blanks(); at_ < end_; skip_blanks()) {
      const wchar_t c = text_[at_];
      if (c == L')') {
        if (bracket_ == no_place) return wrong(number_fault::sign, at_);
        bracket_ = no_place;
        ++at_;
      } else if (c == L'%' || c == L'‰') {
        if (!take_unit(1, std::wstring(1, c))) return false;
      } else if (is_currency_sign(c) || is_alpha(c)) {
        if (!read_currency()) return false;
      } else if (options_.lenient && is_minus(c, true)) {
        if (!take_sign(true, false)) return false;
      } else {
        return wrong(is_minus(c, true) || c == L'+' ? number_fault::sign : number_fault::character, at_);
      }
    }
    return true;
  }

  bool take_unit(std::size_t size, std::wstring unit) {
    if (!options_.takes_units || !out_.unit.empty()) return wrong(number_fault::unit, at_);
    out_.unit = std::move(unit);
    at_ += size;
    return true;
  }

  bool read_currency() {
    if (is_currency_sign(text_[at_])) return take_unit(1, std::wstring(1, text_[at_]));
    constexpr std::size_t longest = 6;
    std::wstring word;
    while (word.size() < longest && is_alpha(unit_at(at_ + word.size()))) word += text_[at_ + word.size()];
    const std::size_t size = word.size();
    if (options_.lenient) {
      std::transform(word.begin(), word.end(), word.begin(), to_upper);
      if (word == L"EURO" || word == L"EUROS") word.resize(3);
    }
    if (word.size() != 3 || !std::all_of(word.begin(), word.end(), is_upper))
      return wrong(number_fault::character, at_);
    return take_unit(size, std::move(word));
  }

  // --- the digits

  bool may_separate(wchar_t c) const {
    const wchar_t of = separator_kind(c);
    return c == L'.' || c == L',' || c == marks_.decimal ||
           (marks_.thousands != 0 && of == marks_.thousands) ||
           (options_.lenient && (of == L' ' || of == L'\''));
  }

  /// Where they begin and end, separators among them. A blank counts between two digits only.
  bool find_digits() {
    first_ = last_ = at_;
    bool has_digit = false;
    for (; last_ < end_; ++last_) {
      const wchar_t c = text_[last_];
      if (is_digit(c)) {
        has_digit = true;
      } else if (!may_separate(c) || (is_word_blank(c) && !(has_digit && is_digit_at(last_ + 1)))) {
        break;
      }
    }
    if (has_digit) return true;
    const bool has_separators = last_ != first_;
    return wrong(has_separators ? number_fault::digits : number_fault::character, at_);
  }

  std::size_t count(wchar_t c) const {
    const std::wstring_view part = text_.substr(first_, last_ - first_);
    return static_cast<std::size_t>(std::count(part.begin(), part.end(), c));
  }

  /// Leniently, what separates decimals and thousands here.
  bool choose_separators() {
    if (!options_.lenient) return true;
    const std::size_t points = count(L'.'), commas = count(L',');
    const auto other = std::find_if(text_.begin() + static_cast<std::ptrdiff_t>(first_),
                                    text_.begin() + static_cast<std::ptrdiff_t>(last_), [this](wchar_t c) {
                                      return !is_digit(c) && c != L'.' && c != L',' && c != marks_.decimal;
                                    });
    const std::size_t other_at = static_cast<std::size_t>(other - text_.begin());
    const wchar_t third = other_at < last_ ? separator_kind(*other) : L'\0';
    if (points > 0 && commas > 0) {
      const bool point_is_last = text_.rfind(L'.', last_ - 1) > text_.rfind(L',', last_ - 1);
      marks_ = point_is_last ? services::separators{L'.', L','} : services::separators{L',', L'.'};
    } else if (points + commas > 1) {
      marks_ = {points > 0 ? L',' : L'.', points > 0 ? L'.' : L','};
    } else if (points + commas == 1) {
      choose_for_one(points > 0 ? L'.' : L',', third);
    } else if (third != 0) {
      marks_.thousands = third;
    }
    return true;
  }

  /// '.' or ',', the only one there.
  void choose_for_one(wchar_t mark, wchar_t third) {
    const std::size_t at = text_.find(mark, first_);
    const std::size_t before = at - first_, behind = last_ - at - 1;
    out_.is_ambiguous =
        third == 0 && before >= 1 && before <= group_size && text_[first_] != L'0' && behind == group_size;
    if (out_.is_ambiguous && mark == marks_.thousands) return;
    marks_ = {mark, third};
  }

  /// Writes the plain number.
  bool read_digits() {
    std::size_t group = first_, point = no_place;  // where the present group begins, and the decimals
    bool is_grouped = false;
    std::wstring digits;
    for (at_ = first_; at_ < last_; ++at_) {
      const wchar_t c = text_[at_];
      if (is_digit(c)) {
        digits += c;
        continue;
      }
      const bool is_decimal = c == marks_.decimal;
      if (point != no_place || (!is_decimal && separator_kind(c) != marks_.thousands))
        return wrong(number_fault::separator, at_);
      if (!is_decimal || is_grouped) {
        if (group == at_) return wrong(number_fault::digits, at_);
        if (!has_group_size(group, at_, is_grouped)) return wrong(number_fault::grouping, group);
      }
      if (is_decimal) {
        point = digits.size();
        point_at_ = at_;
      } else {
        is_grouped = true;
      }
      group = at_ + 1;
    }
    if (point == no_place && is_grouped) {
      if (group == last_) return wrong(number_fault::digits, last_ - 1);
      if (!has_group_size(group, last_, true)) return wrong(number_fault::grouping, group);
    }
    return put_plain(digits, point);
  }

  bool has_group_size(std::size_t first, std::size_t last, bool is_grouped) const {
    const std::size_t size = last - first;
    return is_grouped ? size == group_size : size >= 1 && size <= group_size && text_[first] != L'0';
  }

  bool put_plain(std::wstring_view digits, std::size_t point) {
    const std::wstring_view whole = digits.substr(0, point);
    const std::wstring_view decimals = point == no_place ? std::wstring_view() : digits.substr(point);
    if (point != no_place && !options_.lenient && (whole.empty() || decimals.empty()))
      return wrong(number_fault::digits, point_at_);
    is_zero_ = digits.find_first_not_of(L'0') == digits.npos;
    const std::size_t first = std::min(whole.find_first_not_of(L'0'), whole.size());
    std::wstring& plain = out_.plain;
    plain.assign(whole.substr(first));
    if (plain.empty()) plain = L"0";
    if (!decimals.empty()) plain.append(1, L'.').append(decimals);
    return true;
  }

  std::wstring_view text_;
  number_options options_;
  services::separators marks_;
  parsed_number out_;
  std::size_t at_ = 0, end_;
  std::size_t first_ = 0, last_ = 0, point_at_ = 0;  // of the digits
  std::size_t bracket_ = no_place;                   // one that is open
  bool has_sign_ = false, is_negative_ = false, is_zero_ = false;
};

const wchar_t* text_of(number_fault fault) {
  switch (fault) {
    case number_fault::none:
      break;
    case number_fault::empty:
      return L"No hay ningún número";
    case number_fault::character:
      return L"Hay un carácter que no puede estar ahí";
    case number_fault::digits:
      return L"Faltan cifras";
    case number_fault::separator:
      return L"El separador no es el que corresponde";
    case number_fault::grouping:
      return L"Los millares no están en grupos de tres cifras";
    case number_fault::sign:
      return L"El signo o el paréntesis no es correcto";
    case number_fault::unit:
      return L"La unidad no se admite";
    case number_fault::too_large:
      return L"El número es demasiado grande";
  }
  return L"";
}

}  // namespace

parsed_number parse_number(std::wstring_view text, const number_options& options) {
  return number_reader(text, options).read();
}

std::wstring message_of(const parsed_number& number) {
  std::wstring out = text_of(number.fault);
  if (number.position != 0) {
    out.append(L" (posición ");
    append_unsigned(out, number.position);
    out.push_back(L')');
  }
  return out;
}

}  // namespace ruvo::texto
