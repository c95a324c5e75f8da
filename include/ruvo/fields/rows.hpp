// SPDX-License-Identifier: BSL-1.0
#pragma once

// What is said of a struct with fields, what a reading of it reports, and how it is read: parts of
// <ruvo/fields.hpp>.

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

// --- what a struct has

/// Names a type without an object of it: who has a struct of fields, or an enum with names, declares
/// `constexpr auto kesta_fields(ruvo::fields_of<Type>)` in the namespace of the type, or as its friend.
template <class Type>
struct fields_of {};

/// A member of a struct and the key of its entry.
template <class Struct, class Member>
struct field_row {
  std::wstring_view key;        ///< As it is written; A-Z count as a-z when it is read.
  Member Struct::*at;           ///< The member.
  bool may_be_missing = false;  ///< Whether the member keeps what it has where there is no entry, or null.

  /// The same for an entry that may be missing.
  constexpr field_row or_default() const noexcept { return {key, at, true}; }
};

/// A row of what kesta_fields() returns: `ruvo::field(L"Nombre", &cliente::nombre)`.
template <class Struct, class Member>
constexpr field_row<Struct, Member> field(std::wstring_view key, Member Struct::*at) noexcept {
  return {key, at};
}

/// The name of an enumerator.
template <class Enum>
struct enum_row {
  std::wstring_view name;  ///< Case counts.
  Enum value;              ///< The enumerator.
};

/// A struct with fields, and an enum whose enumerators have names.
template <class Type>
concept has_fields = std::is_class_v<Type> && requires {
  kesta_fields(fields_of<Type>());
};
template <class Type>
concept has_names = std::is_enum_v<Type> && requires {
  kesta_names(fields_of<Type>());
};

// --- reports

/// A value that is missing or wrong.
struct field_problem {
  std::wstring path{};      ///< `lineas[2].precio`: as in bundles, with the numbers of elements from 0.
  std::wstring expected{};  ///< In Spanish: "entero de 0 a 255".
  std::wstring found{};     ///< In Spanish, with the value: "un texto «doce»"; empty where it is missing.

  /// Whether all of it is the same.
  bool operator==(const field_problem& other) const = default;
};

/// All that was missing or wrong in a reading, in the order of the fields.
struct field_report {
  std::vector<field_problem> problems{};  ///< The first field_options::most of them.
  std::size_t more = 0;                   ///< How many there were besides.
  exception failure{};                    ///< Of the format, where the text could not be read at all.

  /// Whether nothing was.
  bool ok() const noexcept { return problems.empty() && more == 0 && failure.OK(); }
};

/// A line for each problem, in Spanish: "lineas[2].precio: se espera número y hay un texto «doce»"; empty
/// where there was none.
KESTA_API std::wstring to_string(const field_report& report);
/// An exc::BadFormat whose detail is to_string(); a success where there was no problem.
KESTA_API exception as_failure(const field_report& report);

/// How structs are read.
struct field_options {
  bool refuse_unknown = false;  ///< Whether entries that no field has are problems.
  std::size_t most = 100;       ///< Of problems in the report.
  /// Whether the bundle is what read_well_formed_xml() makes: rows may stand in elements `item`, a list of
  /// bundles of one member may be the members of one struct, of which some repeat, and attributes count as
  /// members where there is no element of their name.
  bool from_xml = false;
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
