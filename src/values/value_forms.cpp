// SPDX-License-Identifier: BSL-1.0

// Exact readings: a value as a type of C++, or not at all.

#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/views.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <typeinfo>

#include "base/ascii.hpp"
#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "values/cell.hpp"
#include "values/decimal_access.hpp"
#include "values/kinds.hpp"

namespace ruvo::detail {

namespace {

/// What `read` says; false where the calendar, a conversion or the range of a number refuses.
template <class Read>
bool is_read(Read read) {
  try {
    return read();
  } catch (const exception&) {
    return false;
  } catch (const std::bad_cast&) {
    return false;
  } catch (const std::out_of_range&) {
    return false;
  }
}

// --- integers

struct whole_number {
  bool negative;
  unsigned long long size;
};

/// Appends a digit; false where 64 bits do not hold the number.
bool add_digit(unsigned long long& number, wchar_t digit) noexcept {
  constexpr auto most = std::numeric_limits<unsigned long long>::max();
  const auto value = static_cast<unsigned long long>(digit - L'0');
  if (number > (most - value) / 10) return false;
  number = number * 10 + value;
  return true;
}

/// A number in fixed notation without a fraction but zeros.
std::optional<whole_number> whole_of_text(std::wstring_view text) noexcept {
  text = texto::trimmed(text);
  if (!texto::is_plain_number(text)) return std::nullopt;
  whole_number made{text.front() == L'-', 0};
  if (made.negative || text.front() == L'+') text.remove_prefix(1);
  const std::size_t point = text.find(L'.');
  if (point != text.npos && text.find_first_not_of(L'0', point + 1) != text.npos) return std::nullopt;
  for (const wchar_t digit : text.substr(0, point))
    if (!add_digit(made.size, digit)) return std::nullopt;
  return made;
}

std::optional<whole_number> whole_of_real(double value) noexcept {
  if (!(std::fabs(value) < 2 * texto::two_to_63) || std::trunc(value) != value) return std::nullopt;
  return whole_number{value < 0, static_cast<unsigned long long>(std::fabs(value))};
}

std::optional<whole_number> whole_of_exact(const decimal& value) noexcept {
  const decimal plain = value.trimmed();
  if (plain.get_scale() != 0 || !decimal_access::is_small(plain)) return std::nullopt;
  return whole_number{plain.is_negative(), decimal_access::low(plain)};
}

/// The integer that a value is, if it is one.
std::optional<whole_number> whole_of(const var& value) noexcept {
  switch (family_of(value)) {
    case family::integer: {
      const long long held = cell::integer(value);
      const auto bits = static_cast<unsigned long long>(held);
      if (held >= 0 || cell::kind_of(value) == kind::uxlong) return whole_number{false, bits};
      return whole_number{true, 0 - bits};
    }
    case family::real:
      return whole_of_real(cell::real(value));
    case family::exact:
      return whole_of_exact(*cell::pointer<const decimal>(value));
    default:
      const auto text = as_text(value);
      return text ? whole_of_text(*text) : std::nullopt;
  }
}

// --- decimals

/// Whether the shortest text of a double has no more digits than every double gives back: what was written
/// with more may have been rounded on its way into it.
bool keeps_all_digits(double value) noexcept {
  char text[texto::most_shortest_units];
  const char* const end =
      std::to_chars(std::begin(text), std::end(text), value, std::chars_format::scientific).ptr;
  const char* const first = text + (value < 0 ? 1 : 0);
  return std::find(first, end, 'e') - first <= std::numeric_limits<double>::digits10 + 1;  // with the point
}

// --- dates and times as texts

/// Takes a text apart from its front. A step that does not fit changes nothing that counts.
class fields_of_text {
 public:
  explicit fields_of_text(std::wstring_view text) noexcept : rest_(texto::trimmed(text)) {}

  bool is_over() const noexcept { return rest_.empty(); }
  /// Whether the mark stands `at` so many units from here.
  bool has(std::size_t at, wchar_t mark) const noexcept { return rest_.size() > at && rest_[at] == mark; }
  bool take(wchar_t mark) noexcept {
    const bool fits = has(0, mark);
    if (fits) rest_.remove_prefix(1);
    return fits;
  }
  /// So many digits.
  bool take(int digits, long long& out) noexcept {
    out = 0;
    for (; digits > 0; --digits) {
      if (rest_.empty() || !texto::is_digit(rest_.front())) return false;
      out = out * 10 + (rest_.front() - L'0');
      rest_.remove_prefix(1);
    }
    return true;
  }
  void skip_digits() noexcept {
    while (!rest_.empty() && texto::is_digit(rest_.front())) rest_.remove_prefix(1);
  }

 private:
  std::wstring_view rest_;
};

struct day_fields {
  long long year = 0, month = 0, day = 0;

  bool exists() const noexcept {
    return month >= 1 && month <= 12 && day >= 1 && day <= civil::month_days(year, static_cast<int>(month));
  }
  long long seconds() const noexcept {
    return civil::days_from_date(year, static_cast<int>(month), day) * civil::seconds_per_day;
  }
};

struct hour_fields {
  long long hour = 0, minute = 0, second = 0;

  bool exists() const noexcept { return hour <= 23 && minute <= 59 && second <= 59; }
  long long seconds() const noexcept { return hour * 3600 + minute * 60 + second; }
};

/// `2024-02-29` or `29-02-2024`.
bool take_day(fields_of_text& text, day_fields& out) noexcept {
  const bool year_first = text.has(4, L'-');
  long long& last = year_first ? out.day : out.year;
  const bool fits = text.take(year_first ? 4 : 2, year_first ? out.year : out.day) && text.take(L'-') &&
                    text.take(2, out.month) && text.take(L'-') && text.take(year_first ? 2 : 4, last);
  return fits && out.exists();
}

/// `09:30:05`
bool take_hour(fields_of_text& text, hour_fields& out) noexcept {
  return text.take(2, out.hour) && text.take(L':') && text.take(2, out.minute) && text.take(L':') &&
         text.take(2, out.second) && out.exists();
}

/// Nothing, `Z` or `+01:00`: the seconds before UTC.
bool take_offset(fields_of_text& text, long long& ahead) noexcept {
  ahead = 0;
  if (text.is_over() || text.take(L'Z')) return true;
  const bool west = text.has(0, L'-');
  hour_fields offset;
  if (!text.take(west ? L'-' : L'+') || !text.take(2, offset.hour)) return false;
  text.take(L':');
  if (!text.take(2, offset.minute) || !offset.exists()) return false;
  ahead = west ? -offset.seconds() : offset.seconds();
  return true;
}

/// A day, `T` or a blank, a time of day, perhaps a fraction and an offset: the seconds since 1970.
bool read_instant(std::wstring_view from, long long& out) noexcept {
  fields_of_text text(from);
  day_fields day;
  hour_fields hour;
  if (!take_day(text, day) || !(text.take(L'T') || text.take(L' ')) || !take_hour(text, hour)) return false;
  if (text.take(L'.')) text.skip_digits();
  long long ahead = 0;
  if (!take_offset(text, ahead) || !text.is_over()) return false;
  out = day.seconds() + hour.seconds() - ahead;
  return true;
}

/// The number yyyymmdd or hhmmss that the value is, split into two pairs of digits and what is before.
std::optional<day_fields> packed_of(const var& value) noexcept {
  const std::optional<whole_number> number = whole_of(value);
  if (!number || number->negative || number->size > 99991231) return std::nullopt;
  const auto packed = static_cast<long long>(number->size);
  return day_fields{packed / 10000, packed / 100 % 100, packed % 100};
}

}  // namespace

// --- the readings

bool read_integer_form(long long& out, const var& value, long long least, long long most) {
  const std::optional<whole_number> number = whole_of(value);
  if (!number) return false;
  const auto below = 0 - static_cast<unsigned long long>(least);
  if (number->size > (number->negative ? below : static_cast<unsigned long long>(most))) return false;
  out = static_cast<long long>(number->negative ? 0 - number->size : number->size);
  return true;
}

bool read_integer_form(unsigned long long& out, const var& value, unsigned long long most) {
  const std::optional<whole_number> number = whole_of(value);
  if (!number || number->size > most || (number->negative && number->size != 0)) return false;
  out = number->size;
  return true;
}

bool read_form(bool& out, const var& value) {
  return is_read([&] {
    if (!value.can_be_boolean()) return false;
    out = as_memo(value) ? static_cast<bool>(var(value.to_string())) : static_cast<bool>(value);
    return true;
  });
}

bool read_form(double& out, const var& value) {
  if (value.is_number()) {
    out = static_cast<double>(value);
    return true;
  }
  const auto text = as_text(value);
  if (!text) return false;
  return is_read([&] {
    const std::wstring_view digits = texto::trimmed(*text);
    if (!texto::is_plain_number(digits)) return false;
    out = texto::read_double(digits);
    return true;
  });
}

bool read_form(decimal& out, const var& value) {
  if (cell::kind_of(value) == kind::double_ && !keeps_all_digits(cell::real(value))) return false;
  const auto text = as_text(value);
  if (text ? !texto::is_plain_number(texto::trimmed(*text)) : !value.is_number()) return false;
  return is_read([&] {
    out = text ? decimal(texto::trimmed(*text)) : value.operator decimal();
    return true;
  });
}

bool read_form(std::wstring& out, const var& value) {
  if (const auto text = as_text(value)) {
    out.assign(*text);
    return true;
  }
  if (family_of(value) != family::integer && family_of(value) != family::character) return false;
  out = value.to_string();
  return true;
}

bool read_form(std::string& out, const var& value) {
  if (const auto text = as_text(value)) {
    out.clear();
    texto::append_utf_8(out, *text);
    return true;
  }
  std::wstring wide;
  if (!read_form(wide, value)) return false;
  out = texto::to_utf_8(std::wstring_view(wide));
  return true;
}

bool read_form(memo& out, const var& value) {
  std::wstring text;
  if (!read_form(text, value)) return false;
  out = std::move(text);
  return true;
}

bool read_form(binary& out, const var& value) {
  if (const binary* const held = as_binary(value)) {
    out = *held;
    return true;
  }
  const auto text = as_text(value);
  if (!text) return false;
  exception failure;
  out.setAsB64(std::wstring(*text), &failure);
  return failure.OK();
}

bool read_form(date& out, const var& value) {
  return is_read([&] {
    if (family_of(value) == family::date) {
      out = value.operator date();
      return true;
    }
    std::optional<day_fields> day = packed_of(value);
    if (day && day->year < 1000) return false;  // a number of eight digits is a day, 128 is none
    if (!day) {
      const auto words = as_text(value);
      if (!words) return false;
      fields_of_text text(*words);
      day.emplace();
      if (!take_day(text, *day) || !text.is_over()) return false;
    }
    if (!day->exists()) return false;
    out = date(static_cast<long>(day->year), static_cast<long>(day->month), static_cast<long>(day->day),
               times::GMT);
    return true;
  });
}

bool read_form(time& out, const var& value) {
  return is_read([&] {
    if (family_of(value) == family::time) {
      out = value.operator time();
      return true;
    }
    hour_fields hour;
    if (const std::optional<day_fields> packed = packed_of(value)) {
      hour = {packed->year, packed->month, packed->day};
    } else {
      const auto words = as_text(value);
      if (!words) return false;
      fields_of_text text(*words);
      if (!take_hour(text, hour) || !(text.is_over() || text.take(L'Z')) || !text.is_over()) return false;
    }
    if (!hour.exists()) return false;
    out = time(static_cast<long>(hour.hour), static_cast<long>(hour.minute), static_cast<long>(hour.second),
               times::GMT);
    return true;
  });
}

bool read_form(datetime& out, const var& value) {
  return is_read([&] {
    if (family_of(value) == family::datetime) {
      out = value.operator datetime();
      return true;
    }
    long long seconds = 0;
    using limits = std::numeric_limits<long long>;
    if (!read_integer_form(seconds, value, limits::min(), limits::max())) {
      const auto text = as_text(value);
      if (!text || !read_instant(*text, seconds)) return false;
    }
    out = datetime(seconds, times::GMT);
    return true;
  });
}

std::wstring noun_of_integers(long long least, unsigned long long most) {
  std::wstring out = L"entero de ";
  texto::append_integer(out, least);
  out += L" a ";
  texto::append_unsigned(out, most);
  return out;
}

}  // namespace ruvo::detail
