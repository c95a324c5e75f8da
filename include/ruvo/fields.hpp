// SPDX-License-Identifier: BSL-1.0
#pragma once

// Structs and bundles: what the members of a struct are called is said once, and then it is read from a
// bundle, from JSON, XML, forms and any other format, and written to them, with one report of all that is
// missing or wrong.
//
//   struct cliente {
//     std::wstring nombre;
//     std::optional<std::wstring> nif;
//     ruvo::date alta;
//   };
//   KESTA_FIELDS(cliente, nombre, nif, alta)
//
//   cliente uno;
//   ruvo::field_report report;
//   if (!ruvo::read_fields(uno, document, report)) std::wcerr << ruvo::to_string(report);
//   document = ruvo::to_bundle(uno);

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fields/each.hpp>
#include <ruvo/fields/members.hpp>
#include <ruvo/fields/rows.hpp>
#include <ruvo/iserializer.hpp>
#include <ruvo/xvar.hpp>

#include <array>
#include <string>
#include <string_view>
#include <tuple>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

// --- reading and writing

/// Reads the struct from a bundle: an entry for each field, found by its key. True is success; `report` is
/// replaced. On failure the fields that are right have their values, the others are unspecified.
///
/// Members may be all that value_as() reads (integers with a check of their range), enums with KESTA_NAMES
/// by name, structs with fields, and std::optional, std::unique_ptr, std::vector, std::array and std::map
/// with keys of std::wstring, of any of them. An entry that is missing or null, or an empty text where no
/// text is asked for, is a problem, but for these:
///
/// - std::optional and std::unique_ptr are then empty, and so are std::vector and std::map, for forms and XML
///   have no other way to say so. A value that is no list is a vector of one, as forms and XML write that.
/// - fields that are or_default() keep what they have.
///
/// Values nest to 200 levels, of structs and lists together. Throws nothing but std::bad_alloc and what
/// members throw.
template <has_fields Struct>
bool read_fields(Struct& out, const bundle& from, field_report& report, const field_options& options = {}) {
  report = {};
  detail::field_reading by(report, options);
  return detail::read_struct(out, from, nullptr, detail::field_place(), by);
}

/// The same of a text, by any format: the two of JSON, forms, INI. A text that cannot be read is
/// field_report::failure.
template <has_fields Struct>
bool read_fields(Struct& out, iserializer& format, const std::wstring& text, field_report& report,
                 const field_options& options = {}) {
  bundle document;
  report = {};
  return detail::read_document(document, format, text, report.failure) &&
         read_fields(out, document, report, options);
}

/// A new struct; throws as_failure() of the report.
template <has_fields Struct>
Struct from_bundle(const bundle& from, const field_options& options = {}) {
  Struct made{};
  field_report report;
  if (!read_fields(made, from, report, options)) as_failure(report).raise();
  return made;
}

/// The fields in their order, with their keys as they are spelled. An std::optional or std::unique_ptr
/// without a value has no entry. Throws exc::BadArgument for an enumerator without a name and for keys of a
/// std::map that a bundle takes for one.
template <has_fields Struct>
bundle to_bundle(const Struct& from) {
  bundle made;
  detail::write_struct(made, from);
  return made;
}

/// The same as a text, by any format. True is success; a failure of the format is copied to `err`. Forms take
/// no structs inside of structs.
template <has_fields Struct>
bool write_fields(std::wstring& out, iserializer& format, const Struct& from, exception& err) {
  return !format.serialize(out, to_bundle(from), &err);
}

/// The struct as a well-formed XML document, whose root element has the name; elements of lists are `item`.
/// True is success; a failure is copied to `err`, as write_well_formed_xml() gives it.
template <has_fields Struct>
bool write_xml_fields(std::wstring& out, const std::wstring& root, const Struct& from, exception& err) {
  return detail::write_xml(out, root, to_bundle(from), err);
}

/// Reads the struct from the root element, whatever its name, of a well-formed document, which may be the
/// work of others: see field_options::from_xml.
template <has_fields Struct>
bool read_xml_fields(Struct& out, std::wstring_view text, field_report& report, field_options options = {}) {
  xvar root;
  report = {};
  options.from_xml = true;
  if (!detail::read_xml_root(root, text, report.failure)) return false;
  detail::field_reading by(report, options);
  return detail::read_inner(out, root, detail::field_place(), by);
}

}  // namespace ruvo

// --- macros

/// For a struct outside of it, in its namespace: its members are fields with keys that are their names, and
/// must be there. Up to 64 members. What has other keys or defaults is written by hand:
///
///     constexpr auto kesta_fields(ruvo::fields_of<cliente>) {
///       return std::make_tuple(ruvo::field(L"Nombre", &cliente::nombre),
///                              ruvo::field(L"riesgo", &cliente::riesgo).or_default());
///     }
#define KESTA_FIELDS(type, ...)                                               \
  [[maybe_unused]] constexpr auto kesta_fields(::ruvo::fields_of<type>) {     \
    return ::std::make_tuple(KESTA_EACH(KESTA_FIELD_ROW, type, __VA_ARGS__)); \
  }
/// The same with fields that may be missing: they keep what the struct has.
#define KESTA_FIELDS_OR_DEFAULT(type, ...)                                      \
  [[maybe_unused]] constexpr auto kesta_fields(::ruvo::fields_of<type>) {       \
    return ::std::make_tuple(KESTA_EACH(KESTA_DEFAULT_ROW, type, __VA_ARGS__)); \
  }
/// For an enum: its enumerators have the names that they have in the program.
#define KESTA_NAMES(type, ...)                                                                       \
  [[maybe_unused]] constexpr auto kesta_names(::ruvo::fields_of<type>) {                             \
    return ::std::to_array<::ruvo::enum_row<type>>({KESTA_EACH(KESTA_ENUM_ROW, type, __VA_ARGS__)}); \
  }

// clang-format off
#define KESTA_FIELD_ROW(type, name) ::ruvo::field(L"" #name, &type::name)
#define KESTA_DEFAULT_ROW(type, name) ::ruvo::field(L"" #name, &type::name).or_default()
#define KESTA_ENUM_ROW(type, name) {L"" #name, type::name}
// clang-format on

#include <ruvo/names_back.hpp>
