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
#include <ruvo/iserializer.hpp>
#include <ruvo/list.hpp>
#include <ruvo/views.hpp>
#include <ruvo/xvar.hpp>

#include <array>
#include <concepts>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
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

// --- reading and writing

namespace detail {

/// The elements below one value, and one for each level on the stack above.
struct field_place {
  const field_place* above = nullptr;
  std::wstring_view key{};
  std::size_t index = 0;  // of an element, where there is no key
  std::size_t depth = 0;

  field_place inside(std::wstring_view name) const noexcept { return {this, name, 0, depth + 1}; }
  field_place inside(std::size_t n) const noexcept { return {this, {}, n, depth + 1}; }
};

/// The value of the key, or null.
KESTA_API const xvar* member_at(const bundle& in, std::wstring_view key);
/// Makes a null value hold an empty one.
KESTA_API bundle& new_bundle_in(xvar& value);
KESTA_API list& new_list_in(xvar& value);

/// What a reading has beside the values: it collects the problems.
class KESTA_API field_reading {
 public:
  field_reading(field_report& report, const field_options& options) noexcept;
  field_reading(const field_reading&) = delete;
  field_reading& operator=(const field_reading&) = delete;
  ~field_reading() = default;

  bool from_xml() const noexcept { return options_.from_xml; }
  bool refuses_unknown() const noexcept { return options_.refuse_unknown; }
  /// Notes a problem; without a value it is missing. False, for the caller to return.
  bool refuse(const field_place& at, const std::wstring& expected, const xvar* found);
  /// Whether the place is not too deep for the stack, which is a problem otherwise.
  bool goes_deeper(const field_place& at);
  /// Notes the entries that are none of the keys; whether there are none.
  bool has_only(const bundle& in, const std::wstring_view* keys, std::size_t count, const field_place& at);

  // Of what comes from XML.

  /// The value inside an element `item`, or the value.
  static const xvar& row_of(const xvar& value);
  /// The members of a list of bundles with one each: a name that repeats has a list.
  static bool gather(bundle& out, const list& from);
  /// The attribute as a value, in `room`; null where there is none.
  static const xvar* attribute_of(const xvar* holder, std::wstring_view key, xvar& room);

 private:
  bool note(field_problem problem);

  field_report* report_;
  field_options options_;
};

[[noreturn]] KESTA_API void refuse_to_write(std::wstring_view name);

// True is success; a failure is copied to `err`.
/// What the format throws is a failure, too.
KESTA_API bool read_document(bundle& out, iserializer& format, const std::wstring& text, exception& err);
KESTA_API bool read_xml_root(xvar& root, std::wstring_view text, exception& err);
KESTA_API bool write_xml(std::wstring& out, const std::wstring& root, const bundle& from, exception& err);

template <class Type>
struct is_vector : std::false_type {};
template <class Element, class Room>
struct is_vector<std::vector<Element, Room>> : std::true_type {};
template <class Type>
struct is_array : std::false_type {};
template <class Element, std::size_t count>
struct is_array<std::array<Element, count>> : std::true_type {};
template <class Type>
struct is_map : std::false_type {};
template <class Value, class Less, class Room>
struct is_map<std::map<std::wstring, Value, Less, Room>> : std::true_type {};
/// What has one value or none.
template <class Type>
struct is_holder : std::false_type {};
template <class Value>
struct is_holder<std::optional<Value>> : std::true_type {};
template <class Value>
struct is_holder<std::unique_ptr<Value>> : std::true_type {};

/// For which an empty text is a value, and no value that is missing.
template <class Type>
concept is_text_member = std::same_as<Type, std::wstring> || std::same_as<Type, std::string> ||
    std::same_as<Type, memo> || std::same_as<Type, binary> || std::derived_from<Type, var>;

/// Whether the value is missing for a member of this type.
template <class Type>
bool is_nothing(const xvar& value) noexcept {
  if constexpr (std::derived_from<Type, var>) {
    return false;
  } else if constexpr (is_text_member<Type>) {
    return value.is_null();
  } else {
    const auto text = as_text(value);
    return value.is_null() || (text && text->empty());
  }
}
/// A holder has nothing where what it holds would have nothing.
template <class Holder>
concept holds_text = is_holder<Holder>::value && requires(Holder& of) {
  requires is_text_member<std::remove_cvref_t<decltype(*of)>>;
};

template <class Type>
std::wstring expected_of() {
  if constexpr (is_holder<Type>::value) {
    return expected_of<std::remove_cvref_t<decltype(*std::declval<Type&>())>>();
  } else if constexpr (is_array<Type>::value) {
    return L"lista de " + std::to_wstring(std::tuple_size_v<Type>) + L" elementos";
  } else if constexpr (is_vector<Type>::value) {
    return L"lista";
  } else if constexpr (has_names<Type>) {
    std::wstring out = L"uno de";
    const wchar_t* mark = L": ";
    for (const auto& row : kesta_names(fields_of<Type>())) {
      out.append(mark).append(row.name);
      mark = L", ";
    }
    return out;
  } else if constexpr (has_value_form<Type>) {
    return value_form<Type>::expected();
  } else {
    return L"bundle";
  }
}

constexpr bool is_same_key(std::wstring_view a, std::wstring_view b) noexcept {
  const auto folded = [](wchar_t c) { return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + 32) : c; };
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i)
    if (folded(a[i]) != folded(b[i])) return false;
  return true;
}

template <class Rows>
constexpr auto keys_of_rows(const Rows& rows) noexcept {
  return std::apply(
      [](const auto&... row) { return std::array<std::wstring_view, sizeof...(row)>{row.key...}; }, rows);
}
template <std::size_t count>
constexpr bool all_differ(const std::array<std::wstring_view, count>& keys) noexcept {
  for (std::size_t i = 0; i < count; ++i)
    for (std::size_t j = 0; j < i; ++j)
      if (is_same_key(keys[i], keys[j])) return false;
  return true;
}

/// The rows of a struct.
template <has_fields Struct>
struct rows_of {
  static constexpr auto all = kesta_fields(fields_of<Struct>());
  static constexpr auto keys = keys_of_rows(all);
  static_assert(all_differ(keys), "two fields of one struct have keys that a bundle takes for one");
};

template <class Type>
bool read_member(Type& out, const xvar& value, const field_place& at, field_reading& by);

template <has_fields Struct, class Owner, class Member>
bool read_row(Struct& out, const field_row<Owner, Member>& row, const bundle& from, const xvar* holder,
              const field_place& at, field_reading& by) {
  const xvar* found = member_at(from, row.key);
  xvar room;
  if (!found && by.from_xml()) found = field_reading::attribute_of(holder, row.key, room);
  Member& member = out.*(row.at);
  if (found && !is_nothing<Member>(*found)) return read_member(member, *found, at.inside(row.key), by);
  if constexpr (holds_text<Member>) {
    if (found && !found->is_null()) return read_member(member, *found, at.inside(row.key), by);
  }
  if (row.may_be_missing) return true;
  if constexpr (is_holder<Member>::value) {
    member.reset();
    return true;
  } else if constexpr (is_vector<Member>::value || is_map<Member>::value) {
    member.clear();
    return true;
  } else {
    if constexpr (has_fields<Member>) {
      if (found && by.from_xml()) return read_member(member, *found, at.inside(row.key), by);
    }
    return by.refuse(at.inside(row.key), expected_of<Member>(), found);
  }
}

template <has_fields Struct>
bool read_struct(Struct& out, const bundle& from, const xvar* holder, const field_place& at,
                 field_reading& by) {
  using rows = rows_of<Struct>;
  bool all = true;
  std::apply([&](const auto&... row) { ((all = read_row(out, row, from, holder, at, by) && all), ...); },
             rows::all);
  if (!by.refuses_unknown()) return all;
  return by.has_only(from, rows::keys.data(), rows::keys.size(), at) && all;
}

/// A struct inside a value.
template <has_fields Struct>
bool read_inner(Struct& out, const xvar& value, const field_place& at, field_reading& by) {
  if (const bundle* const held = as_bundle(value)) return read_struct(out, *held, &value, at, by);
  if (by.from_xml()) {
    bundle gathered;
    const list* const parts = as_list(value);
    const auto text = as_text(value);
    if ((text && text->empty()) || (parts && field_reading::gather(gathered, *parts)))
      return read_struct(out, gathered, &value, at, by);
  }
  return by.refuse(at, L"bundle", &value);
}

/// Calls `each` for the elements of a list, or for the value, which stands for a list of one.
template <class Each>
bool read_elements(const xvar& value, const field_place& at, field_reading& by, Each each) {
  const list* const held = as_list(value);
  if (!held) return each(by.from_xml() ? by.row_of(value) : value, at.inside(std::size_t{0}));
  bool all = true;
  std::size_t n = 0;
  for (const xvar& element : *held) {
    if (!each(by.from_xml() ? by.row_of(element) : element, at.inside(n))) all = false;
    ++n;
  }
  return all;
}

template <class Vector>
bool read_vector(Vector& out, const xvar& value, const field_place& at, field_reading& by) {
  out.clear();
  if (is_nothing<Vector>(value)) return true;
  if (const list* const held = as_list(value)) out.reserve(held->size());
  return read_elements(value, at, by, [&](const xvar& element, const field_place& here) {
    typename Vector::value_type made{};
    if (!read_member(made, element, here, by)) return false;
    out.push_back(std::move(made));
    return true;
  });
}

template <class Array>
bool read_array(Array& out, const xvar& value, const field_place& at, field_reading& by) {
  const list* const held = as_list(value);
  if ((held ? held->size() : 1) != out.size()) return by.refuse(at, expected_of<Array>(), &value);
  std::size_t n = 0;
  return read_elements(value, at, by, [&](const xvar& element, const field_place& here) {
    return read_member(out[n++], element, here, by);
  });
}

template <class Map>
bool read_map(Map& out, const xvar& value, const field_place& at, field_reading& by) {
  const bundle* const held = as_bundle(value);
  if (!held) return by.refuse(at, L"bundle", &value);
  out.clear();
  bool all = true;
  for (const bundle::entry& entry : entries_of(*held)) {
    const std::wstring& key = entry.spelling();
    if (!read_member(out[key], entry.second, at.inside(key), by)) all = false;
  }
  return all;
}

template <class Enum>
bool read_name(Enum& out, const xvar& value, const field_place& at, field_reading& by) {
  if (const auto text = as_text(value)) {
    for (const auto& row : kesta_names(fields_of<Enum>())) {
      if (row.name != *text) continue;
      out = row.value;
      return true;
    }
  }
  return by.refuse(at, expected_of<Enum>(), &value);
}

template <class Holder>
bool read_held(Holder& out, const xvar& value, const field_place& at, field_reading& by) {
  using held = std::remove_cvref_t<decltype(*out)>;
  out.reset();
  if (value.is_null() || is_nothing<held>(value)) return true;
  if constexpr (requires { out.emplace(); })
    out.emplace();
  else
    out = std::make_unique<held>();
  if (read_member(*out, value, at, by)) return true;
  out.reset();
  return false;
}

/// True is success, as of all that read here.
template <class Type>
bool read_member(Type& out, const xvar& value, const field_place& at, field_reading& by) {
  static_assert(is_holder<Type>::value || is_vector<Type>::value || is_array<Type>::value ||
                    is_map<Type>::value || has_fields<Type> || has_names<Type> || has_value_form<Type>,
                "the type has neither KESTA_FIELDS nor KESTA_NAMES nor a ruvo::value_form");
  if constexpr (std::same_as<Type, xvar>) {
    out = xvar();
    out.clear();
    out = value;  // with its qualities
    return true;
  } else if constexpr (has_value_form<Type>) {
    return value_form<Type>::read(out, value) || by.refuse(at, expected_of<Type>(), &value);
  } else if constexpr (has_names<Type>) {
    return read_name(out, value, at, by);
  } else {
    if (!by.goes_deeper(at)) return false;
    if constexpr (is_holder<Type>::value) {
      return read_held(out, value, at, by);
    } else if constexpr (is_vector<Type>::value) {
      return read_vector(out, value, at, by);
    } else if constexpr (is_array<Type>::value) {
      return read_array(out, value, at, by);
    } else if constexpr (is_map<Type>::value) {
      return read_map(out, value, at, by);
    } else {
      return read_inner(out, value, at, by);
    }
  }
}

template <class Type>
void write_member(xvar& out, const Type& value);

template <has_fields Struct>
void write_struct(bundle& out, const Struct& from) {
  out.reserve(rows_of<Struct>::keys.size());
  const auto put = [&](const auto& row) {
    const auto& member = from.*(row.at);
    if constexpr (is_holder<std::remove_cvref_t<decltype(member)>>::value) {
      if (!member) return;
    }
    write_member(out[row.key], member);
  };
  std::apply([&](const auto&... row) { (put(row), ...); }, rows_of<Struct>::all);
}

template <class Map>
void write_map(bundle& out, const Map& from) {
  for (const auto& [key, value] : from) {
    if (member_at(out, key)) refuse_to_write(key);
    write_member(out[std::wstring_view(key)], value);
  }
}

template <class Enum>
void write_name(xvar& out, Enum value) {
  for (const auto& row : kesta_names(fields_of<Enum>())) {
    if (row.value != value) continue;
    out = row.name;
    return;
  }
  refuse_to_write(expected_of<Enum>());
}

/// Writes to a null value.
template <class Type>
void write_member(xvar& out, const Type& value) {
  if constexpr (has_value_form<Type>) {
    value_form<Type>::write(out, value);
  } else if constexpr (has_names<Type>) {
    write_name(out, value);
  } else if constexpr (is_holder<Type>::value) {
    if (value) write_member(out, *value);
  } else if constexpr (is_vector<Type>::value || is_array<Type>::value) {
    list& elements = new_list_in(out);
    elements.reserve(value.size());
    for (const auto& element : value) write_member(elements.on_back(), element);
  } else if constexpr (is_map<Type>::value) {
    write_map(new_bundle_in(out), value);
  } else {
    write_struct(new_bundle_in(out), value);
  }
}

}  // namespace detail

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

// Calls what(type, name) for each name. Visual Studio's older preprocessor takes __VA_ARGS__ for one argument of a
// macro that is called with it, until KESTA_EXPAND looks at the call once more.
#define KESTA_EXPAND(code) code
#define KESTA_EACH_1(what, type, name) what(type, name)
#define KESTA_EACH_2(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_1(what, type, __VA_ARGS__))
#define KESTA_EACH_3(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_2(what, type, __VA_ARGS__))
#define KESTA_EACH_4(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_3(what, type, __VA_ARGS__))
#define KESTA_EACH_5(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_4(what, type, __VA_ARGS__))
#define KESTA_EACH_6(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_5(what, type, __VA_ARGS__))
#define KESTA_EACH_7(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_6(what, type, __VA_ARGS__))
#define KESTA_EACH_8(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_7(what, type, __VA_ARGS__))
#define KESTA_EACH_9(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_8(what, type, __VA_ARGS__))
#define KESTA_EACH_10(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_9(what, type, __VA_ARGS__))
#define KESTA_EACH_11(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_10(what, type, __VA_ARGS__))
#define KESTA_EACH_12(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_11(what, type, __VA_ARGS__))
#define KESTA_EACH_13(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_12(what, type, __VA_ARGS__))
#define KESTA_EACH_14(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_13(what, type, __VA_ARGS__))
#define KESTA_EACH_15(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_14(what, type, __VA_ARGS__))
#define KESTA_EACH_16(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_15(what, type, __VA_ARGS__))
#define KESTA_EACH_17(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_16(what, type, __VA_ARGS__))
#define KESTA_EACH_18(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_17(what, type, __VA_ARGS__))
#define KESTA_EACH_19(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_18(what, type, __VA_ARGS__))
#define KESTA_EACH_20(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_19(what, type, __VA_ARGS__))
#define KESTA_EACH_21(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_20(what, type, __VA_ARGS__))
#define KESTA_EACH_22(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_21(what, type, __VA_ARGS__))
#define KESTA_EACH_23(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_22(what, type, __VA_ARGS__))
#define KESTA_EACH_24(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_23(what, type, __VA_ARGS__))
#define KESTA_EACH_25(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_24(what, type, __VA_ARGS__))
#define KESTA_EACH_26(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_25(what, type, __VA_ARGS__))
#define KESTA_EACH_27(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_26(what, type, __VA_ARGS__))
#define KESTA_EACH_28(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_27(what, type, __VA_ARGS__))
#define KESTA_EACH_29(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_28(what, type, __VA_ARGS__))
#define KESTA_EACH_30(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_29(what, type, __VA_ARGS__))
#define KESTA_EACH_31(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_30(what, type, __VA_ARGS__))
#define KESTA_EACH_32(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_31(what, type, __VA_ARGS__))
#define KESTA_EACH_33(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_32(what, type, __VA_ARGS__))
#define KESTA_EACH_34(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_33(what, type, __VA_ARGS__))
#define KESTA_EACH_35(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_34(what, type, __VA_ARGS__))
#define KESTA_EACH_36(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_35(what, type, __VA_ARGS__))
#define KESTA_EACH_37(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_36(what, type, __VA_ARGS__))
#define KESTA_EACH_38(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_37(what, type, __VA_ARGS__))
#define KESTA_EACH_39(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_38(what, type, __VA_ARGS__))
#define KESTA_EACH_40(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_39(what, type, __VA_ARGS__))
#define KESTA_EACH_41(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_40(what, type, __VA_ARGS__))
#define KESTA_EACH_42(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_41(what, type, __VA_ARGS__))
#define KESTA_EACH_43(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_42(what, type, __VA_ARGS__))
#define KESTA_EACH_44(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_43(what, type, __VA_ARGS__))
#define KESTA_EACH_45(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_44(what, type, __VA_ARGS__))
#define KESTA_EACH_46(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_45(what, type, __VA_ARGS__))
#define KESTA_EACH_47(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_46(what, type, __VA_ARGS__))
#define KESTA_EACH_48(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_47(what, type, __VA_ARGS__))
#define KESTA_EACH_49(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_48(what, type, __VA_ARGS__))
#define KESTA_EACH_50(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_49(what, type, __VA_ARGS__))
#define KESTA_EACH_51(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_50(what, type, __VA_ARGS__))
#define KESTA_EACH_52(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_51(what, type, __VA_ARGS__))
#define KESTA_EACH_53(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_52(what, type, __VA_ARGS__))
#define KESTA_EACH_54(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_53(what, type, __VA_ARGS__))
#define KESTA_EACH_55(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_54(what, type, __VA_ARGS__))
#define KESTA_EACH_56(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_55(what, type, __VA_ARGS__))
#define KESTA_EACH_57(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_56(what, type, __VA_ARGS__))
#define KESTA_EACH_58(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_57(what, type, __VA_ARGS__))
#define KESTA_EACH_59(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_58(what, type, __VA_ARGS__))
#define KESTA_EACH_60(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_59(what, type, __VA_ARGS__))
#define KESTA_EACH_61(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_60(what, type, __VA_ARGS__))
#define KESTA_EACH_62(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_61(what, type, __VA_ARGS__))
#define KESTA_EACH_63(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_62(what, type, __VA_ARGS__))
#define KESTA_EACH_64(what, type, name, ...) what(type, name), KESTA_EXPAND(KESTA_EACH_63(what, type, __VA_ARGS__))
#define KESTA_EACH_PICK(a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, a11, a12, a13, a14, a15, a16, a17, a18, a19, a20, a21, a22, a23, a24, a25, a26, a27, a28, a29, a30, a31, a32, a33, a34, a35, a36, a37, a38, a39, a40, a41, a42, a43, a44, a45, a46, a47, a48, a49, a50, a51, a52, a53, a54, a55, a56, a57, a58, a59, a60, a61, a62, a63, a64, chosen, ...) chosen
#define KESTA_EACH(what, type, ...) KESTA_EXPAND(KESTA_EXPAND(KESTA_EACH_PICK(__VA_ARGS__, KESTA_EACH_64, KESTA_EACH_63, KESTA_EACH_62, KESTA_EACH_61, KESTA_EACH_60, KESTA_EACH_59, KESTA_EACH_58, KESTA_EACH_57, KESTA_EACH_56, KESTA_EACH_55, KESTA_EACH_54, KESTA_EACH_53, KESTA_EACH_52, KESTA_EACH_51, KESTA_EACH_50, KESTA_EACH_49, KESTA_EACH_48, KESTA_EACH_47, KESTA_EACH_46, KESTA_EACH_45, KESTA_EACH_44, KESTA_EACH_43, KESTA_EACH_42, KESTA_EACH_41, KESTA_EACH_40, KESTA_EACH_39, KESTA_EACH_38, KESTA_EACH_37, KESTA_EACH_36, KESTA_EACH_35, KESTA_EACH_34, KESTA_EACH_33, KESTA_EACH_32, KESTA_EACH_31, KESTA_EACH_30, KESTA_EACH_29, KESTA_EACH_28, KESTA_EACH_27, KESTA_EACH_26, KESTA_EACH_25, KESTA_EACH_24, KESTA_EACH_23, KESTA_EACH_22, KESTA_EACH_21, KESTA_EACH_20, KESTA_EACH_19, KESTA_EACH_18, KESTA_EACH_17, KESTA_EACH_16, KESTA_EACH_15, KESTA_EACH_14, KESTA_EACH_13, KESTA_EACH_12, KESTA_EACH_11, KESTA_EACH_10, KESTA_EACH_9, KESTA_EACH_8, KESTA_EACH_7, KESTA_EACH_6, KESTA_EACH_5, KESTA_EACH_4, KESTA_EACH_3, KESTA_EACH_2, KESTA_EACH_1, none))(what, type, __VA_ARGS__))
// clang-format on

#include <ruvo/names_back.hpp>
