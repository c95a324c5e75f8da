// SPDX-License-Identifier: BSL-1.0
#pragma once

// The kinds of values, a row each: what is the same for all cells of a kind.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/time.hpp>
#include <ruvo/var.hpp>

#include <cstddef>
#include <string>
#include <typeinfo>

#include "values/cell.hpp"

namespace ruvo::detail {

/// What a value is to a conversion: kinds of one family convert alike.
enum class family : unsigned char {
  nothing,
  truth,
  character,
  integer,
  real,
  exact,
  date,
  time,
  datetime,
  text,
  prose,  // a text in an object of its own
  object,
  container
};

using type_question =
    const std::type_info* (*)() noexcept;  // as not all compilers take a typeid for a constant
template <class T>
const std::type_info* type_named() noexcept {
  return &typeid(T);
}
inline const std::type_info* no_type() noexcept { return nullptr; }

struct kind_traits {
  kind of;
  family in;
  bool primitive;
  type_question type;   // null for a null cell, and for an object, which names its own
  const wchar_t* noun;  // in Spanish, with its article
};

inline constexpr kind_traits kinds[] = {
    {kind::null, family::nothing, false, no_type, L"nulo"},
    {kind::boolean, family::truth, true, type_named<bool>, L"un valor lógico"},
    {kind::wide_char, family::character, false, type_named<wchar_t>, L"un carácter"},
    {kind::short_, family::integer, false, type_named<short>, L"un número entero"},
    {kind::ushort, family::integer, true, type_named<unsigned short>, L"un número entero"},
    {kind::int_, family::integer, true, type_named<int>, L"un número entero"},
    {kind::uint, family::integer, true, type_named<unsigned int>, L"un número entero"},
    {kind::long_, family::integer, true, type_named<long>, L"un número entero"},
    {kind::ulong, family::integer, true, type_named<unsigned long>, L"un número entero"},
    {kind::xlong, family::integer, true, type_named<long long>, L"un número entero"},
    {kind::uxlong, family::integer, true, type_named<unsigned long long>, L"un número entero"},
    {kind::float_, family::real, true, type_named<float>, L"un número decimal"},
    {kind::double_, family::real, true, type_named<double>, L"un número decimal"},
    {kind::date, family::date, false, type_named<date>, L"una fecha"},
    {kind::time, family::time, false, type_named<time>, L"una hora"},
    {kind::datetime, family::datetime, false, type_named<datetime>, L"una fecha con hora"},
    {kind::small_text, family::text, true, type_named<std::wstring>, L"un texto"},
    {kind::text, family::text, true, type_named<std::wstring>, L"un texto"},
    {kind::string_text, family::text, true, type_named<std::wstring>, L"un texto"},
    {kind::binary, family::prose, false, type_named<binary>, L"un binario"},
    {kind::memo, family::prose, false, type_named<memo>, L"un memo"},
    {kind::decimal, family::exact, true, type_named<ruvo::decimal>, L"un número decimal exacto"},
    {kind::object, family::object, false, no_type, L"un objeto"},
    {kind::list, family::container, false, type_named<list>, L"una lista"},
    {kind::bundle, family::container, false, type_named<bundle>, L"un bundle"},
};

static_assert(
    [] {
      std::size_t row = 0;
      for (const kind_traits& one : kinds)
        if (static_cast<std::size_t>(one.of) != row++) return false;
      return row == static_cast<std::size_t>(kind::bundle) + 1;
    }(),
    "a row for each kind, in the order of the kinds");

constexpr const kind_traits& traits_of(kind k) noexcept { return kinds[static_cast<std::size_t>(k)]; }

inline const kind_traits& traits_of(const var& v) noexcept { return traits_of(cell::kind_of(v)); }
inline family family_of(const var& v) noexcept { return traits_of(v).in; }

}  // namespace ruvo::detail
