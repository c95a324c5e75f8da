// SPDX-License-Identifier: BSL-1.0

// Dates as people write them in Spanish.

#include <ruvo/exc.hpp>
#include <ruvo/written_dates.hpp>

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "base/unicode.hpp"
#include "exc/classes.hpp"

namespace ruvo::dates {

namespace {

constexpr std::wstring_view spanish_months[] = {L"enero",      L"febrero", L"marzo",     L"abril",
                                                L"mayo",       L"junio",   L"julio",     L"agosto",
                                                L"septiembre", L"octubre", L"noviembre", L"diciembre"};
constexpr std::wstring_view spanish_days[] = {L"domingo", L"lunes",   L"martes", L"miercoles",
                                              L"jueves",  L"viernes", L"sabado"};

/// A letter small and without its accent, for names of days and months.
wchar_t plain_letter(wchar_t c) {
  switch (c) {
    case L'á':
    case L'Á':
      return L'a';
    case L'é':
    case L'É':
      return L'e';
    default:
      return texto::to_lower(c);
  }
}

bool is_name(std::wstring_view word, std::wstring_view name) {
  return std::equal(word.begin(), word.end(), name.begin(), name.end(),
                    [](wchar_t a, wchar_t b) { return plain_letter(a) == b; });
}

/// The index of the name that the word is or begins, with three letters at least; -1 for none.
template <std::size_t Count>
int find_name(const std::wstring_view (&names)[Count], std::wstring_view word) {
  constexpr std::size_t least = 3;
  for (std::size_t i = 0; i < Count; ++i)
    if (word.size() >= least && is_name(word, names[i].substr(0, word.size()))) return static_cast<int>(i);
  return -1;
}

int find_month(std::wstring_view word) {
  const int found = find_name(spanish_months, word);
  const std::wstring_view other_september[] = {L"setiembre"};
  return found < 0 && find_name(other_september, word) == 0 ? 8 : found;
}

/// Takes the parts off the text from its front; the first that is wrong ends the reading.
class date_reader {
 public:
  date_reader(std::wstring_view text, const date_options& options) : text_(text), options_(options) {}

  parsed_date read() {
    skip_blanks();
    if (read_week_day() && read_date() && read_time() && is_at_end()) is_in_calendar();
    return out_;
  }

 private:
  struct number {
    int value = 0;
    std::size_t at = 0, digits = 0;
  };

  bool wrong(date_field field, date_fault fault, std::size_t index) {
    out_ = {};
    out_.field = field;
    out_.fault = fault;
    out_.position = index + 1;
    return false;
  }

  wchar_t unit() const { return at_ < text_.size() ? text_[at_] : L'\0'; }
  bool is_letter(std::size_t index) const {
    return index < text_.size() && texto::is_word_letter(text_[index]) && !texto::is_digit(text_[index]) &&
           text_[index] != L'º';
  }
  void skip_blanks() {
    while (at_ < text_.size() && texto::is_word_blank(text_[at_])) ++at_;
  }
  bool skip(wchar_t c) {
    if (at_ == text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  /// The word that stands here; empty where there is none.
  std::wstring_view word() const {
    std::size_t end = at_;
    while (is_letter(end)) ++end;
    return text_.substr(at_, end - at_);
  }
  /// Passes the word over, and blanks behind it; false where another stands here.
  bool skip_word(std::wstring_view name) {
    if (!is_name(word(), name)) return false;
    at_ += name.size();
    skip_blanks();
    return true;
  }

  bool skip_of() { return skip_word(L"de") || skip_word(L"del"); }

  /// Takes all digits that stand here; `value` is only right of up to four.
  number take_number() {
    number out;
    out.at = at_;
    for (; texto::is_digit(unit()); ++at_, ++out.digits)
      if (out.digits < 4) out.value = out.value * 10 + (text_[at_] - L'0');
    return out;
  }

  bool take(date_field field, int& value, std::size_t most_digits) {
    const number found = take_number();
    if (found.digits == 0) return no_number(field);
    if (found.digits > most_digits) return wrong(field, date_fault::out_of_range, found.at);
    value = found.value;
    return true;
  }
  bool no_number(date_field field) {
    return wrong(field, at_ == text_.size() ? date_fault::missing : date_fault::unknown, at_);
  }

  // --- the date

  bool read_week_day() {
    skip_word(L"el");
    const std::wstring_view name = word();
    if (name.empty() || is_name(name, L"primero")) return true;
    week_day_at_ = at_;
    week_day_ = find_name(spanish_days, name);
    if (week_day_ < 0) {
      return find_month(name) < 0 ? wrong(date_field::week_day, date_fault::unknown, at_)
                                  : wrong(date_field::day, date_fault::missing, at_);
    }
    at_ += name.size();
    skip(L'.');
    skip_blanks();
    skip(L',');
    skip_blanks();
    return true;
  }

  bool read_date() {
    day_at_ = at_;
    if (skip_word(L"primero")) {
      out_.day = 1;
      return read_month_and_year(L' ');
    }
    const number first = take_number();
    if (first.digits == 4) {
      out_.year = first.value;
      year_at_ = first.at;
      return read_month_and_day();
    }
    if (first.digits == 0) return no_number(date_field::day);
    if (first.digits > 2) return wrong(date_field::day, date_fault::out_of_range, first.at);
    out_.day = first.value;
    const std::size_t before = at_;
    skip(L'.');
    if (!skip(L'º') && !skip(L'°')) at_ = before;
    return read_month_and_year(take_separator());
  }

  /// A sign with or without blanks around it, or blanks alone; null for none.
  wchar_t take_separator() {
    const std::size_t before = at_;
    skip_blanks();
    const wchar_t c = unit();
    if (c != L'/' && c != L'-' && c != L'.') return at_ != before ? L' ' : L'\0';
    ++at_;
    skip_blanks();
    return c;
  }

  bool read_month_and_year(wchar_t separator) {
    const bool has_words = skip_of() || !word().empty();
    month_at_ = at_;
    if (const std::wstring_view name = word(); !name.empty()) {
      out_.month = find_month(name) + 1;
      if (out_.month == 0) return wrong(date_field::month, date_fault::unknown, at_);
      at_ += name.size();
      skip_behind_name();
      return read_year();
    }
    if (separator == 0 && !has_words && at_ != text_.size()) return wrong_text();
    if (!take(date_field::month, out_.month, 2)) return false;
    const std::size_t before = at_;
    const wchar_t second = take_separator();
    if (!skip_of() && second != separator && at_ != text_.size()) {
      at_ = before;
      return wrong_text();
    }
    return read_year();
  }

  /// What separates a year from the name of a month.
  void skip_behind_name() {
    skip(L'.');
    skip_blanks();
    if (!skip(L',') && !skip(L'-') && !skip(L'/')) skip_of();
    skip_blanks();
  }

  bool read_year() {
    const number found = take_number();
    year_at_ = found.at;
    if (found.digits == 0) return no_number(date_field::year);
    if (found.digits != 2 && found.digits != 4)
      return wrong(date_field::year, date_fault::out_of_range, found.at);
    out_.year = found.value;
    if (found.digits == 4) return true;
    const int first = options_.first_short_year, in_century = first % 100;
    out_.year += first - in_century + (found.value < in_century ? 100 : 0);
    return true;
  }

  /// Behind a year.
  bool read_month_and_day() {
    const wchar_t separator = take_separator();
    if (separator == 0 && at_ != text_.size()) return wrong_text();
    month_at_ = at_;
    if (!take(date_field::month, out_.month, 2)) return false;
    const std::size_t before = at_;
    if (take_separator() != separator && at_ != text_.size()) {
      at_ = before;
      return wrong_text();
    }
    day_at_ = at_;
    return take(date_field::day, out_.day, 2);
  }

  // --- the time

  bool read_time() {
    const std::size_t before = at_;
    skip_blanks();
    if (at_ == text_.size()) return true;
    const std::size_t first = at_;
    const bool is_behind_letter = first == before && plain_letter(unit()) == L't';
    const bool is_behind_comma = unit() == L',';
    if (!options_.takes_time || (first == before && !is_behind_letter && !is_behind_comma))
      return wrong_text();
    if (is_behind_letter || is_behind_comma) ++at_;
    skip_blanks();
    const bool is_announced = skip_at_the();
    if (at_ == text_.size()) return wrong(date_field::hour, date_fault::missing, at_);
    if (!texto::is_digit(unit())) {
      at_ = first;
      return wrong_text();
    }
    hour_at_ = at_;
    out_.has_time = true;
    return take(date_field::hour, out_.hour, 2) && read_minutes(is_announced);
  }

  bool skip_at_the() {
    const std::size_t before = at_;
    if (skip_word(L"a") && (skip_word(L"las") || skip_word(L"la"))) return true;
    at_ = before;
    return false;
  }

  /// What stands behind the hour; an hour alone has words around it.
  bool read_minutes(bool is_announced) {
    const bool has_point = unit() == L'.' && at_ + 1 < text_.size() && texto::is_digit(text_[at_ + 1]);
    const bool has_minutes = has_point || unit() == L':';
    if (has_minutes) {
      minute_at_ = ++at_;
      if (!take_two(date_field::minute, out_.minute)) return false;
      if (skip(L':')) {
        second_at_ = at_;
        if (!take_two(date_field::second, out_.second)) return false;
      }
    }
    const std::size_t end = at_;
    skip_blanks();
    if (skip_word(L"h") || skip_word(L"hs") || skip_word(L"horas")) {
      skip(L'.');
      return true;
    }
    if (const wchar_t half = take_half()) return count_from_noon(half == L'p');
    at_ = end;
    return has_minutes || is_announced || wrong(date_field::minute, date_fault::missing, end);
  }

  bool take_two(date_field field, int& value) {
    const number found = take_number();
    if (found.digits == 0) return no_number(field);
    value = found.value;
    return found.digits == 2 || wrong(field, date_fault::out_of_range, found.at);
  }

  /// 'a' or 'p' of "a. m." and "p. m.", with or without points and blank; null for neither.
  wchar_t take_half() {
    const std::size_t before = at_;
    const wchar_t half = plain_letter(unit());
    if (half == L'a' || half == L'p') {
      ++at_;
      skip(L'.');
      skip_blanks();
      if (skip_word(L"m")) {
        skip(L'.');
        return half;
      }
    }
    at_ = before;
    return L'\0';
  }

  bool count_from_noon(bool is_afternoon) {
    if (out_.hour < 1 || out_.hour > 12) return wrong(date_field::hour, date_fault::out_of_range, hour_at_);
    out_.hour = out_.hour % 12 + (is_afternoon ? 12 : 0);
    return true;
  }

  // --- the end

  bool wrong_text() { return wrong(date_field::text, date_fault::unknown, at_); }

  bool is_at_end() {
    skip_blanks();
    return at_ == text_.size() || wrong_text();
  }

  bool beyond(date_field field, std::size_t index) { return wrong(field, date_fault::out_of_range, index); }

  bool is_in_calendar() {
    const auto& [field, fault, position, year, month, day, has_time, hour, minute, second] = out_;
    if (day < 1 || day > 31) return beyond(date_field::day, day_at_);
    if (month < 1 || month > 12) return beyond(date_field::month, month_at_);
    if (year < 1) return beyond(date_field::year, year_at_);
    if (day > civil::month_days(year, month)) return beyond(date_field::day, day_at_);
    if (hour > 23) return beyond(date_field::hour, hour_at_);
    if (minute > 59) return beyond(date_field::minute, minute_at_);
    if (second > 59) return beyond(date_field::second, second_at_);
    if (week_day_ < 0 || civil::week_day(civil::days_from_date(year, month, day)) == week_day_) return true;
    return wrong(date_field::week_day, date_fault::contradiction, week_day_at_);
  }

  std::wstring_view text_;
  date_options options_;
  parsed_date out_;
  std::size_t at_ = 0;
  int week_day_ = -1;  // 0 = Sunday; -1 where none stands there
  std::size_t week_day_at_ = 0, day_at_ = 0, month_at_ = 0, year_at_ = 0;
  std::size_t hour_at_ = 0, minute_at_ = 0, second_at_ = 0;
};

/// How people are shown a field; in the order of the enumerators.
struct field_words {
  const wchar_t *missing, *unknown, *beyond;
};
constexpr field_words words_of_fields[] = {
    {L"", L"", L""},
    {L"Falta el día de la semana", L"No se entiende el día de la semana", L""},
    {L"Falta el día", L"No se entiende el día", L"El día no existe en ese mes"},
    {L"Falta el mes", L"No se entiende el mes", L"El mes no existe"},
    {L"Falta el año", L"No se entiende el año", L"El año no es correcto"},
    {L"Falta la hora", L"No se entiende la hora", L"La hora no es correcta"},
    {L"Faltan los minutos", L"No se entienden los minutos", L"Los minutos no son correctos"},
    {L"Faltan los segundos", L"No se entienden los segundos", L"Los segundos no son correctos"},
    {L"", L"No se entiende el texto que sigue", L""}};

const wchar_t* message_of(date_field field, date_fault fault) {
  const field_words& words = words_of_fields[static_cast<std::size_t>(field)];
  switch (fault) {
    case date_fault::missing:
      return words.missing;
    case date_fault::unknown:
      return words.unknown;
    case date_fault::out_of_range:
      return words.beyond;
    default:
      return L"El día de la semana no es el de esa fecha";
  }
}

[[noreturn]] void raise_for(const parsed_date& wrong) {
  exc::CalendarException failure(1, message_of(wrong));
  detail::error_class::set_position(failure, wrong.position);
  throw failure;
}

}  // namespace

parsed_date parse_date(std::wstring_view text, const date_options& options) {
  return date_reader(text, options).read();
}

std::wstring message_of(const parsed_date& found) {
  if (found) return {};
  std::wstring out = message_of(found.field, found.fault);
  out.append(L" (posición ");
  texto::append_unsigned(out, found.position);
  out.push_back(L')');
  return out;
}

ruvo::date parsed_date::to_date(times::HUSO huso) const {
  if (!*this) raise_for(*this);
  return ruvo::date(static_cast<long>(year), static_cast<long>(month), static_cast<long>(day), huso);
}

datetime parsed_date::to_datetime(times::HUSO huso) const {
  if (!*this) raise_for(*this);
  const long fields[] = {year, month, day, hour, minute, second};
  return datetime(fields[0], fields[1], fields[2], fields[3], fields[4], fields[5], huso);
}

}  // namespace ruvo::dates
