// SPDX-License-Identifier: BSL-1.0
#pragma once

// How the members of structs are read from values and written to them, by their types: a part of
// <ruvo/fields.hpp>, with nothing for programs to call.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fields/rows.hpp>
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
/// A new entry with this key, which is missing, for its value.
KESTA_API xvar& new_member(bundle& in, std::wstring_view key);
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
    write_member(new_member(out, row.key), member);
  };
  std::apply([&](const auto&... row) { (put(row), ...); }, rows_of<Struct>::all);
}

template <class Map>
void write_map(bundle& out, const Map& from) {
  for (const auto& [key, value] : from) {
    if (member_at(out, key)) refuse_to_write(key);
    write_member(new_member(out, key), value);
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

}  // namespace ruvo

#include <ruvo/names_back.hpp>
