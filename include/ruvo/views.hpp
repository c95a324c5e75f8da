// SPDX-License-Identifier: BSL-1.0
#pragma once

// Values as the types of C++ see them: what is inside without a copy, exact readings that may give nothing,
// the keys and the order of a bundle as ranges, a natural order for sorting, records written in braces.
//
//   for (const ruvo::xvar& line : order.get_list(L"lines"))
//     if (const ruvo::bundle* fields = ruvo::as_bundle(line)) total += ruvo::find_as<double>(*fields,
//     L"price").value_or(0);

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/time.hpp>
#include <ruvo/var.hpp>
#include <ruvo/xvar.hpp>

#include <compare>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <optional>
#include <ranges>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

// --- what is inside

/// Whether the value holds a bundle, or a list.
KESTA_API bool is_bundle(const var& value) noexcept;
KESTA_API bool is_list(const var& value) noexcept;

/// The object that the value holds, without a copy, or null when it holds anything else. It is valid until
/// the value is changed, moved or destroyed.
KESTA_API const bundle* as_bundle(const var& value) noexcept;
KESTA_API bundle* as_bundle(var& value) noexcept;
KESTA_API const list* as_list(const var& value) noexcept;
KESTA_API list* as_list(var& value) noexcept;
KESTA_API const binary* as_binary(const var& value) noexcept;
KESTA_API const memo* as_memo(const var& value) noexcept;
/// The units of a text or a memo, which are valid as long as that; nothing for any other kind.
KESTA_API std::optional<std::wstring_view> as_text(const var& value) noexcept;

/// Refused: what a temporary holds goes with it.
void as_bundle(const var&& value) = delete;
void as_list(const var&& value) = delete;
void as_binary(const var&& value) = delete;
void as_memo(const var&& value) = delete;
void as_text(const var&& value) = delete;

// --- exact readings

namespace detail {

// True is success; on failure `out` may be anything. Nothing but std::bad_alloc is thrown.
KESTA_API bool read_form(bool& out, const var& value);
KESTA_API bool read_form(double& out, const var& value);
KESTA_API bool read_form(decimal& out, const var& value);
KESTA_API bool read_form(std::wstring& out, const var& value);
KESTA_API bool read_form(std::string& out, const var& value);
KESTA_API bool read_form(memo& out, const var& value);
KESTA_API bool read_form(binary& out, const var& value);
KESTA_API bool read_form(date& out, const var& value);
KESTA_API bool read_form(time& out, const var& value);
KESTA_API bool read_form(datetime& out, const var& value);
KESTA_API bool read_integer_form(long long& out, const var& value, long long least, long long most);
KESTA_API bool read_integer_form(unsigned long long& out, const var& value, unsigned long long most);

/// What the report of a failed reading says was expected, in Spanish.
KESTA_API std::wstring noun_of_integers(long long least, unsigned long long most);

/// An integer that is a number: neither a truth value nor a character.
template <class Number>
concept is_integer_number = std::integral<Number> && !std::same_as<Number, bool> && !is_character<Number>;

}  // namespace detail

/// How a type is read from a value, exactly, and written to one. It has three static functions:
///
///     static bool read(Type& out, const var& value);    // true is success; `out` may be anything otherwise
///     static void write(xvar& out, const Type& value);  // `out` is null before
///     static std::wstring expected();                   // what read() takes, for people: L"fecha"
///
/// The library has it for what is listed at value_as(). A program may add its own types.
template <class Type>
struct value_form;

/// A type with a value_form.
template <class Type>
concept has_value_form = requires(Type& out, const var& value) {
  { value_form<Type>::read(out, value) } -> std::same_as<bool>;
};

/// The value as a type, or nothing where it is not exactly one, by its value_form:
///
/// - bool: truth values, the integers 0 and 1, the words of var::can_be_boolean().
/// - integers of any size: integers in their range, float, double and decimal without a fraction, and
///   texts that are such a number (blanks at the ends do not count, nor do zeros behind a point). No truth
///   values.
/// - double: any number, the nearest double to its digits; float the same, if it holds it.
/// - decimal: integers and decimals; texts of a number in fixed notation that it holds (blanks at the ends do
///   not count); float and double by the shortest text that reads back to them. A double of more than 15
///   digits is none, for digits may be lost in it: what documents say in more is read as a text, or with
///   json_read_options::decimals.
/// - std::wstring, std::string (UTF-8) and memo: texts, memos, characters and integers, by their digits. A
///   float, double, decimal or date has several texts, and is none.
/// - binary: binaries, and texts in Base64.
/// - date: dates; texts `29-02-2024` and `2024-02-29`; the number 20240229, as a text too. time: times;
///   `09:30:05`, `09:30:05Z`; 93005. datetime: instants; `29-02-2024 09:30:05`, `2024-02-29T09:30:05`, behind
///   which `Z` or an offset may stand, and before that a fraction, which is cut; integers, the seconds since
///   1970. What is read from a text or number has the mode UTC, and stands in it where no offset is said. The
///   day must exist in its month, unlike in the conversions of var.
/// - bundle, list, var, xvar: a copy. lapse: the seconds since 1970, an integer. wchar_t: a text of one unit.
///
/// Null is none of them but a var. Throws nothing but std::bad_alloc.
template <has_value_form Type>
std::optional<Type> value_as(const var& value) {
  Type made{};
  if (!value_form<Type>::read(made, value)) return std::nullopt;
  return made;
}

/// value_as() of what is at the path; nothing without an entry. Any path of bundle::get_ptr().
template <has_value_form Type, class Path>
std::optional<Type> find_as(const bundle& in, const Path& path, char separator = '.') {
  const xvar* const found = in.get_ptr(path, separator);
  return found ? value_as<Type>(*found) : std::nullopt;
}

namespace detail {

template <class Type>
inline constexpr const wchar_t* noun_of_form = L"texto";
template <>
inline constexpr const wchar_t* noun_of_form<bool> = L"valor lógico";
template <>
inline constexpr const wchar_t* noun_of_form<decimal> = L"número decimal exacto";
template <>
inline constexpr const wchar_t* noun_of_form<binary> = L"binario, o texto en Base64";
template <>
inline constexpr const wchar_t* noun_of_form<date> = L"fecha";
template <>
inline constexpr const wchar_t* noun_of_form<time> = L"hora";
template <>
inline constexpr const wchar_t* noun_of_form<datetime> = L"fecha con hora";
template <>
inline constexpr const wchar_t* noun_of_form<bundle> = L"bundle";
template <>
inline constexpr const wchar_t* noun_of_form<list> = L"lista";

/// A value_form of what the library reads itself.
template <class Type>
struct plain_form {
  static bool read(Type& out, const var& value) { return read_form(out, value); }
  static void write(xvar& out, const Type& value) { out = value; }
  static std::wstring expected() { return noun_of_form<Type>; }
};

template <class Number>
struct integer_form {
  using limits = std::numeric_limits<Number>;
  using widest = std::conditional_t<std::is_signed_v<Number>, long long, unsigned long long>;

  static bool read(Number& out, const var& value) {
    widest wide = 0;
    if constexpr (std::is_signed_v<Number>) {
      if (!read_integer_form(wide, value, (limits::min)(), (limits::max)())) return false;
    } else {
      if (!read_integer_form(wide, value, (limits::max)())) return false;
    }
    out = static_cast<Number>(wide);
    return true;
  }
  /// As the kind that the type is; `signed char` and `unsigned char` as int.
  static void write(xvar& out, Number value) {
    if constexpr (sizeof value == 1)
      out = static_cast<int>(value);
    else
      out = value;
  }
  static std::wstring expected() { return noun_of_integers((limits::min)(), (limits::max)()); }
};

template <class Number>
struct real_form {
  static bool read(Number& out, const var& value) {
    double wide = 0;
    if (!read_form(wide, value)) return false;
    constexpr auto most = static_cast<double>((std::numeric_limits<Number>::max)());
    constexpr double infinite = std::numeric_limits<double>::infinity();
    if ((wide > most && wide < infinite) || (wide < -most && wide > -infinite)) return false;
    out = static_cast<Number>(wide);
    return true;
  }
  static void write(xvar& out, Number value) { out = value; }
  static std::wstring expected() { return L"número"; }
};

/// A text of one unit, or what a wchar_t made.
struct character_form {
  static bool read(wchar_t& out, const var& value) {
    std::wstring text;
    if (!read_form(text, value) || text.size() != 1) return false;
    out = text.front();
    return true;
  }
  static void write(xvar& out, wchar_t value) { out = value; }
  static std::wstring expected() { return L"carácter"; }
};

/// A lapse is no value of a var: its seconds are.
struct lapse_form {
  static bool read(lapse& out, const var& value) {
    using limits = std::numeric_limits<long long>;
    long long seconds = 0;
    if (!read_integer_form(seconds, value, (limits::min)(), (limits::max)())) return false;
    out.set_lapso(seconds);
    return true;
  }
  static void write(xvar& out, const lapse& value) { out = value.get_lapso(); }
  static std::wstring expected() { return L"segundos"; }
};

inline const bundle* held_in(const var& value, std::type_identity<bundle>) { return as_bundle(value); }
inline const list* held_in(const var& value, std::type_identity<list>) { return as_list(value); }

template <class Container>
struct container_form {
  static bool read(Container& out, const var& value) {
    const Container* const held = held_in(value, std::type_identity<Container>());
    if (held) out = *held;
    return held != nullptr;
  }
  static void write(xvar& out, const Container& value) { out = xvar(value); }
  static std::wstring expected() { return noun_of_form<Container>; }
};

/// Null too; qualities do not come along.
template <class Any>
struct any_form {
  static bool read(Any& out, const var& value) {
    out = Any(value);
    return true;
  }
  static void write(xvar& out, const Any& value) { out = value; }
  static std::wstring expected() { return L"valor"; }
};

}  // namespace detail

/// As value_as() says.
template <>
struct value_form<bool> : detail::plain_form<bool> {};
template <detail::is_integer_number Number>
struct value_form<Number> : detail::integer_form<Number> {};
template <>
struct value_form<float> : detail::real_form<float> {};
template <>
struct value_form<double> : detail::real_form<double> {};
template <>
struct value_form<decimal> : detail::plain_form<decimal> {};
template <>
struct value_form<std::wstring> : detail::plain_form<std::wstring> {};
template <>
struct value_form<std::string> : detail::plain_form<std::string> {};
template <>
struct value_form<memo> : detail::plain_form<memo> {};
template <>
struct value_form<wchar_t> : detail::character_form {};
template <>
struct value_form<binary> : detail::plain_form<binary> {};
template <>
struct value_form<date> : detail::plain_form<date> {};
template <>
struct value_form<time> : detail::plain_form<time> {};
template <>
struct value_form<datetime> : detail::plain_form<datetime> {};
template <>
struct value_form<lapse> : detail::lapse_form {};
template <>
struct value_form<bundle> : detail::container_form<bundle> {};
template <>
struct value_form<list> : detail::container_form<list> {};
template <std::derived_from<var> Any>
struct value_form<Any> : detail::any_form<Any> {};

// --- bundles as ranges

namespace detail {

/// The entries of a bundle in the order of insertion, or what `Show` makes of each.
template <class Show>
class entry_range {
 public:
  /// Valid as long as the bundle has the same entries.
  class iterator {
   public:
    using iterator_category = std::bidirectional_iterator_tag;
    using reference = decltype(Show()(std::declval<const bundle::entry&>()));
    using value_type = std::remove_cvref_t<reference>;
    using difference_type = std::ptrdiff_t;
    using pointer = void;

    iterator() noexcept = default;
    iterator(const bundle* of, std::size_t at) noexcept : of_(of), at_(at) {}

    reference operator*() const { return Show()(*(*of_)[at_]); }
    iterator& operator++() noexcept {
      ++at_;
      return *this;
    }
    iterator operator++(int) noexcept { return {of_, at_++}; }
    iterator& operator--() noexcept {
      --at_;
      return *this;
    }
    iterator operator--(int) noexcept { return {of_, at_--}; }
    bool operator==(const iterator& other) const noexcept { return at_ == other.at_; }

   private:
    const bundle* of_ = nullptr;
    std::size_t at_ = 0;
  };

  entry_range() noexcept = default;
  explicit entry_range(const bundle& of) noexcept : of_(&of) {}

  iterator begin() const noexcept { return {of_, 0}; }
  iterator end() const noexcept { return {of_, size()}; }
  std::size_t size() const noexcept { return of_ ? of_->size() : 0; }
  bool empty() const noexcept { return size() == 0; }

 private:
  const bundle* of_ = nullptr;
};

struct whole_entry {
  const bundle::entry& operator()(const bundle::entry& each) const noexcept { return each; }
};
struct entry_key {
  const std::wstring& operator()(const bundle::entry& each) const noexcept { return each.first; }
};
struct entry_spelling {
  const std::wstring& operator()(const bundle::entry& each) const noexcept { return each.spelling(); }
};
struct entry_value {
  const xvar& operator()(const bundle::entry& each) const noexcept { return each.second; }
};

}  // namespace detail

/// Views of a bundle in the order of insertion: its entries, its folded keys, the keys as they were spelled,
/// its values. They can be piped into those of std::views, and are valid as long as the bundle has the same
/// entries; each step takes constant time.
inline detail::entry_range<detail::whole_entry> entries_of(const bundle& of) noexcept {
  return detail::entry_range<detail::whole_entry>(of);
}
inline detail::entry_range<detail::entry_key> keys_of(const bundle& of) noexcept {
  return detail::entry_range<detail::entry_key>(of);
}
inline detail::entry_range<detail::entry_spelling> spellings_of(const bundle& of) noexcept {
  return detail::entry_range<detail::entry_spelling>(of);
}
inline detail::entry_range<detail::entry_value> values_of(const bundle& of) noexcept {
  return detail::entry_range<detail::entry_value>(of);
}
/// Refused: the entries of a temporary go with it.
void entries_of(const bundle&& of) = delete;
void keys_of(const bundle&& of) = delete;
void spellings_of(const bundle&& of) = delete;
void values_of(const bundle&& of) = delete;

// --- order

namespace detail {

/// A text of any type that a var takes, as keys and paths are.
template <class Text>
concept is_key = std::constructible_from<var, const Text&> && !std::is_arithmetic_v<Text>;

}  // namespace detail

/// The order in which people sort: null, truth values, numbers by their size (whatever their kinds), dates,
/// times and instants by theirs, texts and memos by code unit, all others by their texts. NaN comes behind
/// the other numbers. Unlike the `<` of var, which compares texts, 9 comes before 10.
KESTA_API std::weak_ordering natural_order(const var& a, const var& b);

/// For list::sort() and the algorithms: compares the values that two bundles have at a path, in natural
/// order. What is no bundle, and a bundle without the entry, has null there.
class by_member {
 public:
  /// Any path of bundle::get_ptr(); with `descending` the greatest comes first.
  template <detail::is_key Path>
  explicit by_member(const Path& path, bool descending = false, char separator = '.')
      : path_(var(path).to_string()), separator_(separator), descending_(descending) {}

  /// Whether `a` comes before `b`.
  bool operator()(const xvar& a, const xvar& b) const {
    const std::weak_ordering order = natural_order(member_of(a), member_of(b));
    return descending_ ? order > 0 : order < 0;
  }

 private:
  const xvar& member_of(const xvar& of) const {
    static const xvar none;
    const bundle* const held = as_bundle(of);
    const xvar* const found = held ? held->get_ptr(path_, separator_) : nullptr;
    return found ? *found : none;
  }

  std::wstring path_;
  char separator_;
  bool descending_;
};

// --- records in braces

/// What bundle_of() takes: a key, wide or narrow, and a value, or the members of a bundle in braces.
class bundle_member {
 public:
  /// An entry with a value.
  template <detail::is_key Key, class Value>
  requires std::constructible_from<xvar, Value&&> bundle_member(const Key& key, Value&& value)
      : key_(var(key).to_string()), value_(static_cast<Value&&>(value)) {}
  /// An entry with a bundle.
  template <detail::is_key Key>
  bundle_member(const Key& key, std::initializer_list<bundle_member> members);

  /// Puts the entry into a bundle, which takes the value.
  void give_to(bundle& to) const { to[key_] = std::move(value_); }

 private:
  std::wstring key_;
  mutable xvar value_;  // given to the bundle: the elements of a list in braces are const
};

/// A bundle with these entries, as its own constructor makes it, with bundles inside written the same way:
///
///     ruvo::bundle_of({{"id", 1207}, {"client", {{"name", L"Ana"}, {"vip", true}}}, {"lines",
///     ruvo::list{1}}});
///
/// Braces are always bundles: a list is written as one.
inline bundle bundle_of(std::initializer_list<bundle_member> members) {
  bundle made;
  made.reserve(members.size());
  for (const bundle_member& each : members) each.give_to(made);
  return made;
}

template <detail::is_key Key>
bundle_member::bundle_member(const Key& key, std::initializer_list<bundle_member> members)
    : key_(var(key).to_string()), value_(bundle_of(members)) {}

}  // namespace ruvo

namespace std::ranges {

// The views of a bundle are views, whose iterators outlive them. The reference is of namespace ruvo alone.
#ifndef KESTA_REFERENCE
template <class Show>
inline constexpr bool enable_view<ruvo::detail::entry_range<Show>> = true;
template <class Show>
inline constexpr bool enable_borrowed_range<ruvo::detail::entry_range<Show>> = true;
#endif

}  // namespace std::ranges

#include <ruvo/names_back.hpp>
