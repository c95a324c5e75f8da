#include <ruvo/binary.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/time.hpp>
#include <ruvo/var.hpp>

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <limits>
#include <optional>
#include <ostream>
#include <type_traits>
#include <typeinfo>

#include "base/ascii.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "values/cell.hpp"
#include "values/object.hpp"

namespace ruvo {

using detail::cell;
using detail::kind;

// --- kinds

namespace detail {

const kind_traits& traits_of(kind k) noexcept {
  static const kind_traits table[] = {
      {nullptr, false, false, false},
      {&typeid(bool), true, false, false},
      {&typeid(wchar_t), false, false, false},
      {&typeid(short), false, true, false},
      {&typeid(unsigned short), true, true, false},
      {&typeid(int), true, true, false},
      {&typeid(unsigned int), true, true, false},
      {&typeid(long), true, true, false},
      {&typeid(unsigned long), true, true, false},
      {&typeid(long long), true, true, false},
      {&typeid(unsigned long long), true, true, false},
      {&typeid(float), true, false, true},
      {&typeid(double), true, false, true},
      {&typeid(date), false, false, false},
      {&typeid(time), false, false, false},
      {&typeid(datetime), false, false, false},
      {&typeid(std::wstring), true, false, false},
      {&typeid(std::wstring), true, false, false},
      {&typeid(std::wstring), true, false, false},
      {&typeid(binary), false, false, false},
      {&typeid(memo), false, false, false},
      {nullptr, false, false, false},  // an object names its own
      {&typeid(list), false, false, false},
      {&typeid(bundle), false, false, false},
  };
  static_assert(sizeof table / sizeof *table == static_cast<std::size_t>(kind::bundle) + 1);
  return table[static_cast<std::size_t>(k)];
}

void cell::set_long_text(var& v, std::wstring_view text) {
  auto* const block = new (take_block(text_block::bytes(text.size()))) text_block{text.size()};
  std::memcpy(block->units(), text.data(), text.size() * sizeof(wchar_t));
  set_pointer(v, kind::text, block);
}

namespace {

template <class T>
T& on_object(var& v, kind k) {
  if (cell::kind_of(v) != k) {
    T* const made = make<T>();
    v.clear();
    cell::set_pointer(v, k, made);
  }
  return *cell::pointer<T>(v);
}

template <class T>
T& on_container(var& v, kind k) {
  if (cell::kind_of(v) != k) {
    var made;
    cell::set_box(made, k, T());
    v = std::move(made);
  }
  return cell::pointer<boxed<T>>(v)->value;
}

}  // namespace

list& cell::on_list(var& v) { return on_container<list>(v, kind::list); }
bundle& cell::on_bundle(var& v) { return on_container<bundle>(v, kind::bundle); }
binary& cell::on_binary(var& v) { return on_object<binary>(v, kind::binary); }
memo& cell::on_memo(var& v) { return on_object<memo>(v, kind::memo); }

std::wstring& cell::on_string(var& v) {
  if (cell::kind_of(v) != kind::string_text) {
    auto* const made = is_text(v) ? make<std::wstring>(text(v)) : make<std::wstring>();
    v.clear();
    set_pointer(v, kind::string_text, made);
  }
  return *pointer<std::wstring>(v);
}

}  // namespace detail

// --- construction, assignment, destruction

namespace {

std::wstring_view view_or_empty(const wchar_t* text) {
  return text ? std::wstring_view(text) : std::wstring_view();
}

template <class T>
void set_lapse(var& v, kind k, const T& value) {
  cell::set_lapse(v, k, value.get_lapso(), static_cast<int>(value.get_huso_horario()));
}

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

}  // namespace

var::var(const binary& value) { cell::set_pointer(*this, kind::binary, detail::make<binary>(value)); }
var::var(const memo& value) { cell::set_pointer(*this, kind::memo, detail::make<memo>(value)); }
var::var(const date& value) { set_lapse(*this, kind::date, value); }
var::var(const time& value) { set_lapse(*this, kind::time, value); }
var::var(const datetime& value) { set_lapse(*this, kind::datetime, value); }
var::var(const std::wstring& value) { cell::set_text(*this, value); }
var::var(const wchar_t* value) { cell::set_text(*this, view_or_empty(value)); }
var::var(const std::string& value) { cell::set_text(*this, texto::to_utf_16(std::string_view(value))); }
var::var(const char* value) { cell::set_text(*this, texto::to_utf_16(value ? std::string_view(value) : "")); }
var::var(const char8_t* value) : var(reinterpret_cast<const char*>(value)) {}
var::var(const std::u8string& value) {
  cell::set_text(*this, texto::to_utf_16({reinterpret_cast<const char*>(value.data()), value.size()}));
}

var& var::operator=(const var& other) {
  if (this != &other) *this = var(other);
  return *this;
}

var& var::operator=(var&& other) noexcept {
  if (this == &other) return *this;
  const storage taken = other.data_;  // `other` may be inside the value that goes now
  other.data_.kind = kind::null;
  release();
  data_ = taken;
  return *this;
}

const var& var::operator=(const binary& value) { return *this = var(value); }
const var& var::operator=(const memo& value) { return *this = var(value); }
const var& var::operator=(const date& value) { return *this = var(value); }
const var& var::operator=(const time& value) { return *this = var(value); }
const var& var::operator=(const datetime& value) { return *this = var(value); }
const var& var::operator=(const std::wstring& value) { return *this = var(value); }
const var& var::operator=(const wchar_t* value) { return *this = var(value); }
const var& var::operator=(const std::string& value) { return *this = var(value); }
const var& var::operator=(const char* value) { return *this = var(value); }
const var& var::operator=(const char8_t* value) { return *this = var(value); }
const var& var::operator=(const std::u8string& value) { return *this = var(value); }

void var::copy(const var& other) { detail::copy_tree(*this, other); }

void var::destroy() noexcept {
  switch (data_.kind) {
    case kind::text: {
      auto* const block = cell::pointer<detail::text_block>(*this);
      return detail::give_block(block, detail::text_block::bytes(block->length));
    }
    case kind::string_text:
      return detail::unmake(cell::pointer<std::wstring>(*this));
    case kind::binary:
      return detail::unmake(cell::pointer<binary>(*this));
    case kind::memo:
      return detail::unmake(cell::pointer<memo>(*this));
    case kind::object:
      return cell::pointer<detail::object>(*this)->destroy();
    default:
      return detail::drop_tree(*this);
  }
}

// --- questions

namespace {

bool is_lapse_kind(kind k) noexcept { return k >= kind::date && k <= kind::datetime; }
bool is_integer_kind(kind k) noexcept { return detail::traits_of(k).integer; }
bool is_real_kind(kind k) noexcept { return detail::traits_of(k).decimal; }

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

/// Calls `use` with the text of a cell, without a copy where the cell holds text.
template <class Use>
auto with_text(const var& v, Use use) {
  if (cell::is_text(v)) return use(cell::text(v));
  const std::wstring text = v.to_string();
  return use(std::wstring_view(text));
}

}  // namespace

const std::type_info* var::get_type() const noexcept {
  if (data_.kind == kind::object) return &cell::pointer<detail::object>(*this)->type();
  return detail::traits_of(data_.kind).type;
}

var::operator const std::type_info*() const noexcept { return is_null() ? &typeid(var) : get_type(); }

bool var:: instanceof (const std::type_info& type) const noexcept {
  return !is_null() && std::strcmp(get_type()->name(), type.name()) == 0;
}

bool var::is_primitive() const noexcept { return detail::traits_of(data_.kind).primitive; }
bool var::is_number() const noexcept { return is_integer() || is_decimal(); }
bool var::is_integer() const noexcept { return is_integer_kind(data_.kind); }
bool var::is_decimal() const noexcept { return is_real_kind(data_.kind); }
bool var::is_lapse() const noexcept { return is_lapse_kind(data_.kind); }

bool var::is_charsquence() const noexcept {
  return cell::is_text(*this) || data_.kind == kind::binary || data_.kind == kind::memo;
}

bool var::empty() const {
  switch (data_.kind) {
    case kind::null:
      return true;
    case kind::binary:
    case kind::memo:
    case kind::object:
      return to_string().empty();
    default:
      return cell::is_text(*this) && cell::text(*this).empty();
  }
}

bool var::can_be_number() const {
  if (is_null() || is_lapse() || cell::is_container(*this)) return false;
  if (is_integer() || data_.kind == kind::boolean) return true;
  if (is_decimal()) return std::isfinite(cell::real(*this));
  return with_text(*this,
                   [](std::wstring_view text) { return texto::is_plain_number(texto::trimmed(text)); });
}

bool var::can_be_boolean() const {
  if (is_null() || is_lapse() || cell::is_container(*this)) return false;
  return with_text(*this, [](std::wstring_view text) { return read_truth(text) != truth::unknown; });
}

// --- text

namespace {

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

}  // namespace

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

void append_text(std::wstring& out, const var& v) {
  switch (cell::kind_of(v)) {
    case kind::null:
      return;
    case kind::boolean:
      return out.push_back(cell::integer(v) ? L'1' : L'0');
    case kind::wide_char:
      return out.push_back(static_cast<wchar_t>(cell::integer(v)));
    case kind::uxlong:
      return texto::append_unsigned(out, static_cast<unsigned long long>(cell::integer(v)));
    case kind::float_:
    case kind::double_:
      return texto::append_fixed(out, cell::real(v));
    case kind::date:
      return append_lapse(out, v, date::canonical);
    case kind::time:
      return append_lapse(out, v, time::canonical);
    case kind::datetime:
      return append_lapse(out, v, datetime::canonical);
    case kind::small_text:
    case kind::text:
    case kind::string_text:
      out += cell::text(v);
      return;
    case kind::binary:
      out += cell::pointer<binary>(v)->to_string();
      return;
    case kind::memo:
      out += cell::pointer<memo>(v)->to_string();
      return;
    case kind::object:
      out += cell::pointer<object>(v)->to_string();
      return;
    case kind::list:
      return append_text(out, cell::as_list(v));
    case kind::bundle:
      return append_text(out, cell::as_bundle(v));
    default:
      return texto::append_integer(out, cell::integer(v));
  }
}

}  // namespace detail

std::wstring var::to_string() const {
  std::wstring text;
  detail::append_text(text, *this);
  return text;
}

std::wostream& operator<<(std::wostream& out, const var& value) {
  return out << (value.is_null() ? std::wstring(L"null") : value.to_string());
}

// --- conversions

namespace {

void require_value(const var& v) {
  if (v.is_null()) throw exc::NullValue();
}

/// Truncates towards zero and saturates at 64 bits; NaN gives 0.
long long truncated(double value) noexcept {
  constexpr double limit = 9223372036854775808.0;  // 2^63
  if (std::isnan(value)) return 0;
  if (value >= limit) return std::numeric_limits<long long>::max();
  if (value < -limit) return std::numeric_limits<long long>::min();
  return static_cast<long long>(value);
}

long long text_to_integer(std::wstring_view text) {
  text = texto::trimmed(text);
  return texto::is_plain_number(text) ? texto::read_integer(text) : 0;
}

long long to_integer(const var& v) {
  require_value(v);
  const kind k = cell::kind_of(v);
  if (k <= kind::uxlong) return cell::integer(v);
  if (is_real_kind(k)) return truncated(cell::real(v));
  if (k == kind::date) return static_cast<long>(lapse_of<date>(v));
  if (k == kind::time) return static_cast<long>(lapse_of<time>(v));
  if (cell::is_text(v)) return text_to_integer(cell::text(v));
  throw std::bad_cast();
}

double to_double(const var& v) {
  require_value(v);
  const kind k = cell::kind_of(v);
  if (is_real_kind(k)) return cell::real(v);
  if (k == kind::uxlong) return static_cast<double>(static_cast<unsigned long long>(cell::integer(v)));
  if (k == kind::wide_char) throw std::bad_cast();
  if (k == kind::datetime) return static_cast<double>(cell::integer(v));
  if (!cell::is_text(v)) return static_cast<double>(to_integer(v));
  const std::wstring_view text = texto::trimmed(cell::text(v));
  return texto::is_plain_number(text) ? texto::read_double(text) : 0.0;
}

/// The plan that the three conversions to dates and times share.
template <class T, class FromNumber, class FromDatetime>
T to_lapse(const var& v, kind own, FromNumber from_number, FromDatetime from_datetime) {
  require_value(v);
  const kind k = cell::kind_of(v);
  if (k == own) return lapse_of<T>(v);
  if (k == kind::datetime) return from_datetime(lapse_of<datetime>(v));
  if (is_integer_kind(k)) return from_number(cell::integer(v));
  if (!cell::is_text(v)) throw std::bad_cast();
  const std::wstring_view text = cell::text(v);
  if (texto::is_plain_number(texto::trimmed(text))) return from_number(text_to_integer(text));
  T made(times::GMT);
  made = std::wstring(text);
  return made;
}

}  // namespace

var::operator short() const { return static_cast<short>(to_integer(*this)); }
var::operator unsigned short() const { return static_cast<unsigned short>(to_integer(*this)); }
var::operator int() const { return static_cast<int>(to_integer(*this)); }
var::operator unsigned int() const { return static_cast<unsigned int>(to_integer(*this)); }
var::operator long() const { return static_cast<long>(to_integer(*this)); }
var::operator unsigned long() const { return static_cast<unsigned long>(to_integer(*this)); }
var::operator long long() const { return to_integer(*this); }

var::operator unsigned long long() const {
  if (is_decimal() && cell::real(*this) >= 9223372036854775808.0) {
    const double value = cell::real(*this);
    return value < 18446744073709551616.0 ? static_cast<unsigned long long>(value)
                                          : std::numeric_limits<unsigned long long>::max();
  }
  return static_cast<unsigned long long>(to_integer(*this));
}

var::operator double() const { return to_double(*this); }

var::operator float() const {
  const double value = to_double(*this);
  constexpr auto limit = static_cast<double>(std::numeric_limits<float>::max());
  if (std::isfinite(value) && std::fabs(value) > limit)
    return std::copysign(std::numeric_limits<float>::infinity(),
                         static_cast<float>(std::copysign(1.0, value)));
  return static_cast<float>(value);
}

var::operator bool() const {
  require_value(*this);
  if (data_.kind == kind::boolean) return integer() != 0;
  if (is_integer() && (integer() == 0 || integer() == 1)) return integer() == 1;
  if (!cell::is_text(*this)) throw std::bad_cast();
  const std::wstring_view text = texto::trimmed(cell::text(*this));
  const truth answer = read_truth(text);
  if (answer == truth::unknown && !text.empty()) throw std::bad_cast();
  return answer == truth::yes;
}

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

var::operator date() const {
  return to_lapse<date>(
      *this, kind::date, [](long long n) { return date(n, times::GMT); },
      [](const datetime& d) { return date(d); });
}

var::operator time() const {
  return to_lapse<time>(
      *this, kind::time, [](long long n) { return time(n, times::GMT); },
      [](const datetime& d) { return time(d); });
}

var::operator datetime() const {
  return to_lapse<datetime>(
      *this, kind::datetime, [](long long n) { return datetime(n, times::GMT); },
      [](const datetime& d) { return d; });
}

// --- comparison

bool var::equals(const var& other) const {
  if (is_null() || other.is_null()) return is_null() && other.is_null();
  if (*get_type() != *other.get_type()) return false;
  if (cell::is_text(*this)) return cell::text(*this) == cell::text(other);
  if (is_decimal() && std::fabs(real() - other.real()) > most_apart) return false;
  return to_string() == other.to_string();
}

bool var::operator<(const var& other) const {
  return with_text(*this, [&other](std::wstring_view a) {
    return with_text(other, [a](std::wstring_view b) { return a < b; });
  });
}

}  // namespace ruvo
