// SPDX-License-Identifier: BSL-1.0
#pragma once

// The kinds of values, a row each: what is the same for all cells of a kind.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
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
  date,
  time,
  datetime,
  text,
  prose,  // a text in an object of its own
  object,
  container
};

struct kind_traits {
  kind of;
  const std::type_info* type;  // null for a null cell, and for an object, which names its own
  family in;
  bool primitive;
  const wchar_t* noun;  // in Spanish, with its article
};

inline constexpr kind_traits kinds[] = {
    {kind::null, nullptr, family::nothing, false, L"nulo"},
    {kind::boolean, &typeid(bool), family::truth, true, L"un valor lógico"},
    {kind::wide_char, &typeid(wchar_t), family::character, false, L"un carácter"},
    {kind::short_, &typeid(short), family::integer, false, L"un número entero"},
    {kind::ushort, &typeid(unsigned short), family::integer, true, L"un número entero"},
    {kind::int_, &typeid(int), family::integer, true, L"un número entero"},
    {kind::uint, &typeid(unsigned int), family::integer, true, L"un número entero"},
    {kind::long_, &typeid(long), family::integer, true, L"un número entero"},
    {kind::ulong, &typeid(unsigned long), family::integer, true, L"un número entero"},
    {kind::xlong, &typeid(long long), family::integer, true, L"un número entero"},
    {kind::uxlong, &typeid(unsigned long long), family::integer, true, L"un número entero"},
    {kind::float_, &typeid(float), family::real, true, L"un número decimal"},
    {kind::double_, &typeid(double), family::real, true, L"un número decimal"},
    {kind::date, &typeid(date), family::date, false, L"una fecha"},
    {kind::time, &typeid(time), family::time, false, L"una hora"},
    {kind::datetime, &typeid(datetime), family::datetime, false, L"una fecha con hora"},
    {kind::small_text, &typeid(std::wstring), family::text, true, L"un texto"},
    {kind::text, &typeid(std::wstring), family::text, true, L"un texto"},
    {kind::string_text, &typeid(std::wstring), family::text, true, L"un texto"},
    {kind::binary, &typeid(binary), family::prose, false, L"un binario"},
    {kind::memo, &typeid(memo), family::prose, false, L"un memo"},
    {kind::object, nullptr, family::object, false, L"un objeto"},
    {kind::list, &typeid(list), family::container, false, L"una lista"},
    {kind::bundle, &typeid(bundle), family::container, false, L"un bundle"},
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
