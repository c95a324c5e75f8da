// SPDX-License-Identifier: BSL-1.0

// A cell: what it holds, how it is made and destroyed, its questions and its text.

#include <ruvo/binary.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/time.hpp>
#include <ruvo/var.hpp>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "base/ascii.hpp"
#include "base/key_units.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "values/cell.hpp"
#include "values/kinds.hpp"
#include "values/object.hpp"

namespace ruvo {

using detail::cell;
using detail::family;
using detail::family_of;
using detail::kind;
using detail::traits_of;

// --- what a cell holds

namespace detail {

wchar_t* cell::set_text_room(var& v, std::size_t length) {
  static_assert(std::endian::native == std::endian::little && offsetof(var::storage, bytes) == 2);
  auto* const units = static_cast<wchar_t*>(take_block(text_bytes(length)));
  set_pointer(v, kind::text, units);
  std::memcpy(v.data_.bytes, &length, var::word);  // no memory is longer
  return units;
}

void cell::set_long_text(var& v, std::wstring_view text) {
  std::memcpy(set_text_room(v, text.size()), text.data(), text.size() * sizeof(wchar_t));
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
    cell::set_box<T>(made);
    v = std::move(made);
  }
  return *cell::pointer<T>(v);
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

template <class T>
void set_lapse(var& v, kind k, const T& value) {
  cell::set_lapse(v, k, value.get_lapso(), static_cast<int>(value.get_huso_horario()));
}

}  // namespace

var::var(const binary& value) { cell::set_pointer(*this, kind::binary, detail::make<binary>(value)); }
var::var(const memo& value) { cell::set_pointer(*this, kind::memo, detail::make<memo>(value)); }
var::var(const decimal& value) { cell::set_pointer(*this, kind::decimal, detail::make<decimal>(value)); }
var::var(const date& value) { set_lapse(*this, kind::date, value); }
var::var(const time& value) { set_lapse(*this, kind::time, value); }
var::var(const datetime& value) { set_lapse(*this, kind::datetime, value); }
var::var(const std::wstring& value) { cell::set_text(*this, value); }
var::var(const wchar_t* value) { cell::set_text(*this, texto::view_of(value)); }
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
const var& var::operator=(const decimal& value) { return *this = var(value); }
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
void var::take_text(std::wstring_view text) { cell::set_text(*this, text); }
void var::take_text(std::string_view utf8) { cell::set_text(*this, texto::to_utf_16(utf8)); }

void var::destroy() noexcept {
  switch (data_.kind) {
    case kind::text:
      return detail::give_block(cell::pointer<wchar_t>(*this), cell::text_bytes(cell::text_length(*this)));
    case kind::string_text:
      return detail::unmake(cell::pointer<std::wstring>(*this));
    case kind::binary:
      return detail::unmake(cell::pointer<binary>(*this));
    case kind::memo:
      return detail::unmake(cell::pointer<memo>(*this));
    case kind::decimal:
      return detail::unmake(cell::pointer<decimal>(*this));
    case kind::object:
      return cell::pointer<detail::object>(*this)->destroy();
    default:
      return detail::drop_tree(*this);
  }
}

// --- questions

const std::type_info* var::get_type() const noexcept {
  if (data_.kind == kind::object) return &cell::pointer<detail::object>(*this)->type();
  return traits_of(*this).type();
}

var::operator const std::type_info*() const noexcept { return is_null() ? &typeid(var) : get_type(); }

bool var:: instanceof (const std::type_info& type) const noexcept {
  return !is_null() && std::strcmp(get_type()->name(), type.name()) == 0;
}

bool var::is_primitive() const noexcept { return traits_of(*this).primitive; }
bool var::is_number() const noexcept { return is_integer() || is_decimal(); }
bool var::is_integer() const noexcept { return family_of(*this) == family::integer; }
bool var::is_decimal() const noexcept {
  return family_of(*this) == family::real || family_of(*this) == family::exact;
}
bool var::is_lapse() const noexcept { return data_.kind >= kind::date && data_.kind <= kind::datetime; }

bool var::is_charsquence() const noexcept {
  return family_of(*this) == family::text || family_of(*this) == family::prose;
}

bool var::empty() const {
  switch (family_of(*this)) {
    case family::nothing:
      return true;
    case family::text:
      return cell::text(*this).empty();
    case family::prose:
    case family::object:
      return to_string().empty();
    default:
      return false;
  }
}

// --- text

namespace detail {

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
    case kind::decimal:
      out += cell::pointer<ruvo::decimal>(v)->to_string();
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

namespace {

// Numbers make their text in its size at once.

std::wstring real_text(double value) {
  wchar_t text[texto::most_fixed_units];
  const wchar_t* end = texto::print_fixed(text, value);
  if (!end) end = texto::print_any_fixed(text, value);
  return {text, static_cast<std::size_t>(end - text)};
}

std::wstring integer_text(long long value, bool is_unsigned) {
  wchar_t text[texto::most_number_units];
  const wchar_t* const end = is_unsigned ? texto::print_unsigned(text, static_cast<unsigned long long>(value))
                                         : texto::print_integer(text, value);
  return {text, static_cast<std::size_t>(end - text)};
}

}  // namespace

std::wstring var::to_string() const {
  if (family_of(*this) == family::real) return real_text(real());
  if (family_of(*this) == family::integer) return integer_text(integer(), data_.kind == kind::uxlong);
  std::wstring text;
  detail::append_text(text, *this);
  return text;
}

std::wostream& operator<<(std::wostream& out, const var& value) {
  return out << (value.is_null() ? std::wstring(L"null") : value.to_string());
}

// --- comparison

bool var::equals(const var& other) const {
  if (cell::is_text(*this) && cell::is_text(other))
    return detail::same_units(cell::text(*this), cell::text(other));
  if (is_null() || other.is_null()) return is_null() && other.is_null();
  if (*get_type() != *other.get_type()) return false;
  if (data_.kind == kind::decimal) return *cell::pointer<decimal>(*this) == *cell::pointer<decimal>(other);
  if (family_of(*this) == family::real && std::fabs(real() - other.real()) > most_apart) return false;
  return to_string() == other.to_string();
}

bool var::operator<(const var& other) const {
  return cell::with_text(*this, [&other](std::wstring_view a) {
    return cell::with_text(other, [a](std::wstring_view b) { return a < b; });
  });
}

}  // namespace ruvo
