// SPDX-License-Identifier: BSL-1.0

// What a value can be read as: a switch over the families of kinds for each target.

#include <ruvo/binary.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/time.hpp>
#include <ruvo/var.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "values/cell.hpp"
#include "values/decimal_access.hpp"
#include "values/kinds.hpp"

namespace ruvo {

using detail::cell;
using detail::family;
using detail::family_of;
using detail::kind;

namespace {

constexpr double two_to_64 = 2 * texto::two_to_63;

/// A date made from its instant, which asks no context.
class kept_date : public date {
 public:
  kept_date(long long seconds, times::HUSO mode) noexcept : date(as_it_is(), seconds, mode) {}
};

/// The date, time or datetime that a cell of such a kind holds.
template <class T>
T lapse_of(const var& v) {
  const long long seconds = cell::integer(v);
  const auto mode = static_cast<times::HUSO>(cell::mode(v));
  if constexpr (std::is_same_v<T, date>) {
    return kept_date(seconds, mode);
  } else {
    return T(datetime(seconds, mode));
  }
}

/// What the calendar makes of a value; nothing where the value has no calendar form. Its seconds then stand
/// for it.
template <class Form>
auto in_calendar(Form form) -> std::optional<decltype(form())> {
  try {
    return form();
  } catch (const exception&) {
    return std::nullopt;
  }
}

/// The truth that a text names, if any.
enum class truth { no, yes, unknown };

truth read_truth(std::wstring_view text) {
  static constexpr std::wstring_view yes[] = {L"true", L"1", L"si", L"verdadero", L"correcto"};
  static constexpr std::wstring_view no[] = {L"false", L"0", L"no", L"falso", L"incorrecto"};
  text = texto::trimmed(text);
  const auto is = [text](std::wstring_view word) {
    return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                      [](wchar_t a, wchar_t b) { return texto::to_lower(a) == b; });
  };
  if (std::any_of(std::begin(yes), std::end(yes), is)) return truth::yes;
  if (std::any_of(std::begin(no), std::end(no), is)) return truth::no;
  return truth::unknown;
}

long long text_to_integer(std::wstring_view text) {
  text = texto::trimmed(text);
  return texto::is_plain_number(text) ? texto::read_integer(text) : 0;
}

bool truth_of_text(std::wstring_view text) {
  text = texto::trimmed(text);
  const truth answer = read_truth(text);
  if (answer == truth::unknown && !text.empty()) throw std::bad_cast();
  return answer == truth::yes;
}

/// Without its decimals; the end of 64 bits for what is beyond.
long long truncated(const decimal& value) {
  const decimal whole = value.rounded(0, rounding::down);
  constexpr long long most = std::numeric_limits<long long>::max();
  if (whole.abs() <= most) return static_cast<long long>(whole);
  return whole.is_negative() ? std::numeric_limits<long long>::min() : most;
}

long long to_integer(const var& v) {
  switch (family_of(v)) {
    case family::nothing:
      throw exc::NullValue();
    case family::truth:
    case family::character:
    case family::integer:
      return cell::integer(v);
    case family::real:
      return texto::truncated(cell::real(v));
    case family::exact:
      return truncated(*cell::pointer<decimal>(v));
    case family::date:
      return static_cast<long>(lapse_of<date>(v));
    case family::time:
      return static_cast<long>(lapse_of<time>(v));
    case family::text:
      return text_to_integer(cell::text(v));
    default:
      throw std::bad_cast();
  }
}

double to_double(const var& v) {
  switch (family_of(v)) {
    case family::real:
      return cell::real(v);
    case family::exact:
      return static_cast<double>(*cell::pointer<decimal>(v));
    case family::integer:
      if (cell::kind_of(v) == kind::uxlong)
        return static_cast<double>(static_cast<unsigned long long>(cell::integer(v)));
      return static_cast<double>(cell::integer(v));
    case family::datetime:
      return static_cast<double>(cell::integer(v));
    case family::character:
      throw std::bad_cast();
    case family::text: {
      const std::wstring_view text = texto::trimmed(cell::text(v));
      return texto::is_plain_number(text) ? texto::read_double(text) : 0.0;
    }
    default:
      return static_cast<double>(to_integer(v));
  }
}

bool to_boolean(const var& v) {
  switch (family_of(v)) {
    case family::nothing:
      throw exc::NullValue();
    case family::truth:
      return cell::integer(v) != 0;
    case family::integer:
      if (cell::integer(v) == 0 || cell::integer(v) == 1) return cell::integer(v) == 1;
      throw std::bad_cast();
    case family::text:
      return truth_of_text(cell::text(v));
    default:
      throw std::bad_cast();
  }
}

/// The plan that the three conversions to dates and times share.
template <class T, class FromNumber, class FromDatetime>
T to_lapse(const var& v, family own, FromNumber from_number, FromDatetime from_datetime) {
  const family held = family_of(v);
  if (held == own) return lapse_of<T>(v);
  switch (held) {
    case family::nothing:
      throw exc::NullValue();
    case family::datetime:
      return from_datetime(lapse_of<datetime>(v));
    case family::integer:
      return from_number(cell::integer(v));
    case family::text:
      break;
    default:
      throw std::bad_cast();
  }
  const std::wstring_view text = cell::text(v);
  if (texto::is_plain_number(texto::trimmed(text))) return from_number(text_to_integer(text));
  T made(times::GMT);
  made = std::wstring(text);
  return made;
}

/// For the conversions that every value has.
void require_value(const var& v) {
  if (v.is_null()) throw exc::NullValue();
}

}  // namespace

// --- what a value can be

bool var::can_be_number() const {
  switch (family_of(*this)) {
    case family::truth:
    case family::integer:
    case family::exact:
      return true;
    case family::real:
      return std::isfinite(cell::real(*this));
    case family::character:
    case family::text:
    case family::prose:
    case family::object:
      return cell::with_text(
          *this, [](std::wstring_view text) { return texto::is_plain_number(texto::trimmed(text)); });
    default:
      return false;
  }
}

bool var::can_be_boolean() const {
  if (is_null() || is_lapse() || cell::is_container(*this) || data_.kind == kind::decimal) return false;
  return cell::with_text(*this, [](std::wstring_view text) { return read_truth(text) != truth::unknown; });
}

// --- numbers

var::operator short() const { return static_cast<short>(to_integer(*this)); }
var::operator unsigned short() const { return static_cast<unsigned short>(to_integer(*this)); }
var::operator int() const { return static_cast<int>(to_integer(*this)); }
var::operator unsigned int() const { return static_cast<unsigned int>(to_integer(*this)); }
var::operator long() const { return static_cast<long>(to_integer(*this)); }
var::operator unsigned long() const { return static_cast<unsigned long>(to_integer(*this)); }
var::operator long long() const { return to_integer(*this); }

var::operator unsigned long long() const {
  if (data_.kind == kind::decimal && *cell::pointer<decimal>(*this) > 0) {
    const decimal whole = cell::pointer<decimal>(*this)->rounded(0, rounding::down);
    constexpr unsigned long long most = std::numeric_limits<unsigned long long>::max();
    return whole <= most ? detail::decimal_access::low(whole) : most;
  }
  if (family_of(*this) == family::real && cell::real(*this) >= texto::two_to_63) {
    const double value = cell::real(*this);
    return value < two_to_64 ? static_cast<unsigned long long>(value)
                             : std::numeric_limits<unsigned long long>::max();
  }
  return static_cast<unsigned long long>(to_integer(*this));
}

var::operator double() const { return to_double(*this); }

var::operator float() const {
  const double value = to_double(*this);
  constexpr auto limit = static_cast<double>(std::numeric_limits<float>::max());
  if (std::isfinite(value) && std::fabs(value) > limit) {
    return std::copysign(std::numeric_limits<float>::infinity(),
                         static_cast<float>(std::copysign(1.0, value)));
  }
  return static_cast<float>(value);
}

var::operator bool() const { return to_boolean(*this); }

// --- text

var::operator wchar_t() const {
  require_value(*this);
  if (data_.kind == kind::wide_char) return static_cast<wchar_t>(integer());
  if (!cell::is_text(*this)) throw std::bad_cast();
  const std::wstring_view text = cell::text(*this);
  return text.empty() ? L'\0' : text.front();
}

var::operator std::wstring() const {
  require_value(*this);
  return to_string();
}

var::operator binary() const {
  require_value(*this);
  return data_.kind == kind::binary ? *cell::pointer<binary>(*this) : binary(to_string());
}

var::operator memo() const {
  require_value(*this);
  return data_.kind == kind::memo ? *cell::pointer<memo>(*this) : memo(to_string());
}

var::operator decimal() const {
  switch (family_of(*this)) {
    case family::nothing:
      throw exc::NullValue();
    case family::truth:
      return integer();
    case family::integer:
      if (data_.kind == kind::uxlong) return static_cast<unsigned long long>(integer());
      return integer();
    case family::real:
      return data_.kind == kind::float_ ? decimal(static_cast<float>(real())) : decimal(real());
    case family::exact:
      return *cell::pointer<decimal>(*this);
    case family::text:
      return decimal(texto::trimmed(cell::text(*this)));
    default:
      throw std::bad_cast();
  }
}

// --- dates and times

var::operator date() const {
  return to_lapse<date>(
      *this, family::date, [](long long n) { return date(n, times::GMT); },
      [](const datetime& d) { return date(d); });
}

var::operator time() const {
  return to_lapse<time>(
      *this, family::time, [](long long n) { return time(n, times::GMT); },
      [](const datetime& d) { return time(d); });
}

var::operator datetime() const {
  return to_lapse<datetime>(
      *this, family::datetime, [](long long n) { return datetime(n, times::GMT); },
      [](const datetime& d) { return d; });
}

namespace detail {

void append_lapse(std::wstring& out, const var& v, const std::string& format) {
  const auto text = in_calendar([&] { return lapse_of<datetime>(v).format(format); });
  if (text)
    out += *text;
  else
    texto::append_integer(out, cell::integer(v));
}

long long date_number(const var& v) {
  const auto number = in_calendar([&] { return static_cast<long>(lapse_of<date>(v)); });
  return number ? *number : cell::integer(v);
}

}  // namespace detail

}  // namespace ruvo
