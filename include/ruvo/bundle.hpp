// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::bundle, the keyed record: named values, addressed by key or by path.

#include <ruvo/texto/exact_view.hpp>
#include <ruvo/xvar.hpp>

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {
class bundle_store;
struct bundle_access;
}  // namespace detail

/// A set of named xvar that ignores the case of its keys, iterates in the order of the folded keys and
/// remembers the order in which they were first inserted, and how they were spelled then. An entry's spelling
/// goes along with copies and moves; nothing but the writers of standard formats looks at it. It costs no
/// memory where it is the key itself.
///
/// operator[], at, find, count and erase fold A-Z; the path operations fold the path with
/// texto::to_lowercase, which also knows accented letters, and split it at the separator. Narrow keys and
/// paths are UTF-8.
/// @quirk An entry whose key holds the separator, or a capital letter outside A-Z, is reached by operator[]
/// and its like, and by no path.
///
/// References to entries stay valid until the entry is erased or the bundle is assigned or destroyed; moves
/// keep them. Look-up and insertion take logarithmic time, erase linear time. The first erase from a bundle
/// that a reader made takes memory, as an insertion does, and changes nothing where that throws.
class KESTA_API bundle {
 public:
  /// A folded key and its value; to be used like a std::pair.
  struct KESTA_API entry {
    /// A copy that lives by itself: it shares the key and has a value of its own.
    entry(const entry& other);

    entry& operator=(const entry&) = delete;
    ~entry();

    /// Copies of both: so a bundle fills a std::map, and a loop may ask for pairs.
    operator std::pair<const std::wstring, xvar>() const { return {first, second}; }
    operator std::pair<std::wstring, xvar>() const { return {first, second}; }

    /// The key as it was written when it first came in; valid as long as the entry.
    const std::wstring& spelling() const noexcept;

    const std::wstring& first;  ///< The key; valid as long as the entry.
    xvar second;                ///< The value.

   private:
    friend class detail::bundle_store;
    explicit entry(const std::wstring& key) noexcept : first(key) {}
    entry(const std::wstring& key, xvar&& value) noexcept : first(key), second(std::move(value)) {}
  };

  /// A bidirectional iterator in the order of the folded keys; valid as long as its entry.
  template <class E>
  class basic_iterator {
   public:
    using iterator_category = std::bidirectional_iterator_tag;
    using value_type = entry;
    using difference_type = std::ptrdiff_t;
    using pointer = E*;
    using reference = E&;

    /// Equal to end().
    basic_iterator() noexcept = default;
    /// From iterator to const_iterator.
    operator basic_iterator<const E>() const noexcept requires(!std::is_const_v<E>) {
      return {store_, at_, rank_};
    }

    /// The entry; not for end().
    E& operator*() const noexcept { return *at_; }
    E* operator->() const noexcept { return at_; }
    /// To the entry behind, or before: before end() is the last one.
    basic_iterator& operator++() noexcept {
      at_ = step(store_, at_, rank_, true);
      return *this;
    }
    basic_iterator& operator--() noexcept {
      at_ = step(store_, at_, rank_, false);
      return *this;
    }
    basic_iterator operator++(int) noexcept {
      auto before = *this;
      ++*this;
      return before;
    }
    basic_iterator operator--(int) noexcept {
      auto before = *this;
      --*this;
      return before;
    }
    /// Whether both stand on the same entry; the end() of one bundle equals that of another.
    bool operator==(const basic_iterator& other) const noexcept { return at_ == other.at_; }

   private:
    friend class bundle;
    template <class>
    friend class basic_iterator;
    basic_iterator(const detail::bundle_store* store, entry* at, std::size_t rank) noexcept
        : store_(store), at_(at), rank_(rank) {}

    const detail::bundle_store* store_ = nullptr;
    entry* at_ = nullptr;   // null at the end
    std::size_t rank_ = 0;  // where the entry was last seen in the order
  };
  using iterator = basic_iterator<entry>;
  using const_iterator = basic_iterator<const entry>;
  using value_type = entry;
  using size_type = std::size_t;
  using allocator_type = std::allocator<entry>;

  /// Without entries.
  bundle() noexcept;
  bundle(const bundle& other);
  bundle(bundle&& other) noexcept;
  /// The entries in this order. A key that repeats keeps its first position and gets the last value.
  bundle(std::initializer_list<std::pair<std::wstring, xvar>> values);
  virtual ~bundle();
  bundle& operator=(const bundle& other);
  bundle& operator=(bundle&& other) noexcept;
  /// Takes the bundle that `value` holds; any other kind leaves this bundle empty.
  bundle& operator=(const xvar& value);
  /// Takes the bundle form of an object that has one.
  template <class T>
  requires requires(const T& value) { value.operator bundle(); }
  bundle& operator=(const T& value) { return *this = value.operator bundle(); }

  /// An xvar that holds a copy of this bundle, or takes it over from an rvalue.
  operator xvar() const&;
  operator xvar() &&;

  /// The entry's value, inserted with a null value when missing.
  xvar& operator[](const std::wstring& key);
  xvar& operator[](const std::string& key);
  xvar& operator[](const wchar_t* key);
  xvar& operator[](const char* key);
  /// A missing key throws std::out_of_range ("invalid map<K, T> key").
  const xvar& operator[](const std::wstring& key) const { return at(key); }
  const xvar& operator[](const std::string& key) const { return at(key); }
  const xvar& operator[](const wchar_t* key) const;
  const xvar& operator[](const char* key) const;
  const xvar& at(const std::wstring& key) const;
  const xvar& at(const std::string& key) const;

  /// The entry of the n-th key in insertion order, counted from 0; end() beyond the last.
  template <std::integral N>
  iterator operator[](N n) noexcept {
    return nth(static_cast<unsigned long long>(n));
  }
  template <std::integral N>
  const_iterator operator[](N n) const noexcept {
    return const_cast<bundle*>(this)->nth(static_cast<unsigned long long>(n));
  }

  /// The spelling of the n-th key in insertion order. Throws std::out_of_range beyond the last.
  const std::wstring& spelling(size_type n) const;

  /// The entry with the key, or end().
  iterator find(const std::wstring& key);
  iterator find(const std::string& key);
  const_iterator find(const std::wstring& key) const;
  const_iterator find(const std::string& key) const;
  /// The number of entries with the key, 0 or 1.
  size_type count(const std::wstring& key) const;
  size_type count(const std::string& key) const;
  /// The number of entries removed, 0 or 1; positions behind the entry move up by one.
  size_type erase(const std::wstring& key);
  size_type erase(const std::string& key);
  /// The iterator behind the removed entry.
  iterator erase(const_iterator where);
  /// Removes all entries.
  void clear() noexcept;
  /// Whether there are no entries.
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }
  /// The number of entries; those of nested bundles do not count.
  size_type size() const noexcept;
  /// Makes room for `count` entries in one block. Throws std::length_error beyond 2^32 - 1 entries.
  void reserve(size_type count);

  /// The entries in the order of the folded keys. For the order of insertion see operator[] with a number.
  iterator begin() noexcept;
  iterator end() noexcept { return {store_, nullptr, size()}; }
  const_iterator begin() const noexcept { return const_cast<bundle*>(this)->begin(); }
  const_iterator end() const noexcept { return const_cast<bundle*>(this)->end(); }
  const_iterator cbegin() const noexcept { return begin(); }
  const_iterator cend() const noexcept { return end(); }
  /// A default one: the entries have memory of the library.
  allocator_type get_allocator() const noexcept { return {}; }

  /// The entry's value at the path, or null when it is missing. A path goes on behind a bundle only, never
  /// into a list.
  const xvar* get_ptr(const std::wstring& path, char separator = '.') const;
  const xvar* get_ptr(const std::string& path, char separator = '.') const;
  /// The entry's value at the path.
  /// @quirk A missing one throws an empty std::exception_ptr by value, which is no std::exception. The path
  /// is in exc::NullValue, which catches it.
  const xvar& get(const std::wstring& path, char separator = '.') const;
  const xvar& get(const std::string& path, char separator = '.') const;
  /// Whether there is an entry at the path; its value may be null.
  bool has(const std::wstring& path, char separator = '.') const;
  bool has(const std::string& path, char separator = '.') const;
  /// In Spanish, what the getters find at the path: which part of it is missing, null or no bundle; or what
  /// kind of value is there, as what it reads, and which type (long long, long, short, float) it does not
  /// fit, so that one sees why a fallback was given. Where the path leads nowhere, names the key on its
  /// way that only operator[] reaches: one with the separator inside, or with a capital that paths fold and
  /// keys do not. For people to read; empty when memory fails.
  std::wstring explain(const std::wstring& path, char separator = '.') const noexcept;
  std::wstring explain(const std::string& path, char separator = '.') const noexcept;

  /// The entry at the path, for writing. Missing entries and bundles on the way are made; an entry on the way
  /// that holds anything but a bundle is replaced by a new one.
  xvar& hack(const std::wstring& path, char separator = '.');
  xvar& hack(const std::string& path, char separator = '.');
  xvar* hack_ptr(const std::wstring& path, char separator = '.');
  xvar* hack_ptr(const std::string& path, char separator = '.');
  /// hack() and assign; as with every assignment to an xvar, qualities that the entry had already stay. Gives
  /// the entry's value.
  xvar& putOn(const std::wstring& path, const xvar& value, char separator = '.');
  xvar& putOn(const std::string& path, const xvar& value, char separator = '.');

  /// hack(), then the entry is made to hold an empty value of the kind unless it holds one of that kind
  /// already; gives the object inside, for writing. hack_string_on() keeps the text that is there.
  bundle& hack_bundle_on(const std::wstring& path, char separator = '.');
  bundle& hack_bundle_on(const std::string& path, char separator = '.');
  list& hack_list_on(const std::wstring& path, char separator = '.');
  list& hack_list_on(const std::string& path, char separator = '.');
  memo& hack_memo_on(const std::wstring& path, char separator = '.');
  memo& hack_memo_on(const std::string& path, char separator = '.');
  std::wstring& hack_string_on(const std::wstring& path, char separator = '.');
  std::wstring& hack_string_on(const std::string& path, char separator = '.');
  binary& hack_binary_on(const std::wstring& path, char separator = '.');
  binary& hack_binary_on(const std::string& path, char separator = '.');
  /// As hack_binary_on; a missing or empty binary becomes `initial`.
  binary& hack_nc_binary_on(const std::wstring& path, const binary& initial, char separator = '.');
  binary& hack_nc_binary_on(const std::string& path, const binary& initial, char separator = '.');
  binary& hack_nc_binary_on(const std::wstring& path, char separator, const binary& initial) {
    return hack_nc_binary_on(path, initial, separator);
  }
  binary& hack_nc_binary_on(const std::string& path, char separator, const binary& initial) {
    return hack_nc_binary_on(path, initial, separator);
  }

  /// The value at the path converted, or the fallback when it is missing, null, fails can_be_number() or does
  /// not convert. They never throw for what they find. get_uxlong reads an unsigned value.
  /// @quirk The separator stands before the fallback here, and behind it in get_nc_X and get_boolean.
  long get_long(const std::wstring& path, char separator = '.', long fallback = 0) const;
  long get_long(const std::string& path, char separator = '.', long fallback = 0) const;
  unsigned long get_ulong(const std::wstring& path, char separator = '.', unsigned long fallback = 0) const;
  unsigned long get_ulong(const std::string& path, char separator = '.', unsigned long fallback = 0) const;
  short get_short(const std::wstring& path, char separator = '.', short fallback = 0) const;
  short get_short(const std::string& path, char separator = '.', short fallback = 0) const;
  long long get_xlong(const std::wstring& path, char separator = '.', long long fallback = 0) const;
  long long get_xlong(const std::string& path, char separator = '.', long long fallback = 0) const;
  long long get_uxlong(const std::wstring& path, char separator = '.', long long fallback = 0) const;
  long long get_uxlong(const std::string& path, char separator = '.', long long fallback = 0) const;
  double get_double(const std::wstring& path, char separator = '.', double fallback = 0) const;
  double get_double(const std::string& path, char separator = '.', double fallback = 0) const;
  float get_float(const std::wstring& path, char separator = '.', float fallback = 0) const;
  float get_float(const std::string& path, char separator = '.', float fallback = 0) const;

  /// As get_X, and the fallback also when the converted value is 0.
  /// @quirk A 0 that is there, also 0.0, counts as missing.
  /// @quirk The fallback stands before the separator, so that `get_nc_long(path, '/')` gives 47 for what is
  /// missing and looks along '.': a character is a number.
  long get_nc_long(const std::wstring& path, long fallback = 0, char separator = '.') const;
  long get_nc_long(const std::string& path, long fallback = 0, char separator = '.') const;
  unsigned long get_nc_ulong(const std::wstring& path, unsigned long fallback = 0,
                             char separator = '.') const;
  unsigned long get_nc_ulong(const std::string& path, unsigned long fallback = 0, char separator = '.') const;
  short get_nc_short(const std::wstring& path, short fallback = 0, char separator = '.') const;
  short get_nc_short(const std::string& path, short fallback = 0, char separator = '.') const;
  long long get_nc_xlong(const std::wstring& path, long long fallback = 0, char separator = '.') const;
  long long get_nc_xlong(const std::string& path, long long fallback = 0, char separator = '.') const;
  long long get_nc_uxlong(const std::wstring& path, long long fallback = 0, char separator = '.') const;
  long long get_nc_uxlong(const std::string& path, long long fallback = 0, char separator = '.') const;
  double get_nc_double(const std::wstring& path, double fallback = 0, char separator = '.') const;
  double get_nc_double(const std::string& path, double fallback = 0, char separator = '.') const;
  float get_nc_float(const std::wstring& path, float fallback = 0, char separator = '.') const;
  float get_nc_float(const std::string& path, float fallback = 0, char separator = '.') const;
  /// The truth value at the path; the fallback when it is missing, null or fails can_be_boolean().
  bool get_boolean(const std::wstring& path, bool fallback = false, char separator = '.') const;
  bool get_boolean(const std::string& path, bool fallback = false, char separator = '.') const;
  /// The text of the value at the path; the fallback when it is missing or null.
  std::wstring get_string(const std::wstring& path, char separator = '.',
                          const std::wstring& fallback = {}) const;
  std::wstring get_string(const std::string& path, char separator = '.',
                          const std::wstring& fallback = {}) const;
  /// As get_string, and the fallback also for an empty text.
  std::wstring get_nc_string(const std::wstring& path, const std::wstring& fallback = {},
                             char separator = '.') const;
  std::wstring get_nc_string(const std::string& path, const std::wstring& fallback = {},
                             char separator = '.') const;

  /// Refused: a number where the separator stands, as in `get_long(L"iva", 21)`. The separator comes before
  /// the fallback of get_X, `get_long(L"iva", '.', 21)`, and behind that of get_nc_X and get_boolean.
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_long(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_ulong(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_short(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_xlong(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_uxlong(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_double(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_float(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_plain_number N, detail::is_character... C>
  void get_string(const P& path, N fallback, C... separator) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_long(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_ulong(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_short(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_xlong(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_uxlong(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_double(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number N>
  void get_nc_float(const P& path, C separator, N fallback) const = delete;
  template <class P, detail::is_character C, detail::is_plain_number... N>
  void get_boolean(const P& path, C separator, N... fallback) const = delete;

  /// The object that the entry at the path holds; it lives as long as the entry holds it. Without one:
  /// `fallback`, or a shared empty object that lives as long as the library.
  const binary& get_binary(const std::wstring& path, const binary& fallback, char separator = '.') const;
  const binary& get_binary(const std::string& path, const binary& fallback, char separator = '.') const;
  const memo& get_memo(const std::wstring& path, const memo& fallback, char separator = '.') const;
  const memo& get_memo(const std::string& path, const memo& fallback, char separator = '.') const;
  const binary& get_binary(const std::wstring& path, char separator, const binary& fallback) const {
    return get_binary(path, fallback, separator);
  }
  const binary& get_binary(const std::string& path, char separator, const binary& fallback) const {
    return get_binary(path, fallback, separator);
  }
  const memo& get_memo(const std::wstring& path, char separator, const memo& fallback) const {
    return get_memo(path, fallback, separator);
  }
  const memo& get_memo(const std::string& path, char separator, const memo& fallback) const {
    return get_memo(path, fallback, separator);
  }
  const bundle& get_bundle(const std::wstring& path, char separator = '.') const;
  const bundle& get_bundle(const std::string& path, char separator = '.') const;
  const list& get_list(const std::wstring& path, char separator = '.') const;
  const list& get_list(const std::string& path, char separator = '.') const;
  /// As get_bundle() and get_list(); `fallback` when there is no such object or it is empty.
  const bundle& get_nc_bundle(const std::wstring& path, const bundle& fallback, char separator = '.') const;
  const bundle& get_nc_bundle(const std::string& path, const bundle& fallback, char separator = '.') const;
  const list& get_nc_list(const std::wstring& path, const list& fallback, char separator = '.') const;
  const list& get_nc_list(const std::string& path, const list& fallback, char separator = '.') const;

  // --- keys and paths that are views

  /// The same with a std::wstring_view, std::string_view or std::u8string_view. A wide one is not copied,
  /// other than by what writes.
  xvar& operator[](texto::either_view key);
  const xvar& operator[](texto::either_view key) const { return at(key); }
  const xvar& at(texto::either_view key) const;
  iterator find(texto::either_view key);
  const_iterator find(texto::either_view key) const { return const_cast<bundle*>(this)->find(key); }
  size_type count(texto::either_view key) const { return find(key) == end() ? 0 : 1; }
  size_type erase(texto::either_view key);
  const xvar* get_ptr(texto::either_view path, char separator = '.') const;
  const xvar& get(texto::either_view path, char separator = '.') const;
  bool has(texto::either_view path, char separator = '.') const {
    return get_ptr(path, separator) != nullptr;
  }
  std::wstring explain(texto::either_view path, char separator = '.') const noexcept;
  xvar& hack(texto::either_view path, char separator = '.');
  xvar* hack_ptr(texto::either_view path, char separator = '.') { return &hack(path, separator); }
  xvar& putOn(texto::either_view path, const xvar& value, char separator = '.');
  bundle& hack_bundle_on(texto::either_view path, char separator = '.');
  list& hack_list_on(texto::either_view path, char separator = '.');
  memo& hack_memo_on(texto::either_view path, char separator = '.');
  std::wstring& hack_string_on(texto::either_view path, char separator = '.');
  binary& hack_binary_on(texto::either_view path, char separator = '.');
  binary& hack_nc_binary_on(texto::either_view path, const binary& initial, char separator = '.');
  binary& hack_nc_binary_on(texto::either_view path, char separator, const binary& initial) {
    return hack_nc_binary_on(path, initial, separator);
  }
  long get_long(texto::either_view path, char separator = '.', long fallback = 0) const;
  unsigned long get_ulong(texto::either_view path, char separator = '.', unsigned long fallback = 0) const;
  short get_short(texto::either_view path, char separator = '.', short fallback = 0) const;
  long long get_xlong(texto::either_view path, char separator = '.', long long fallback = 0) const;
  long long get_uxlong(texto::either_view path, char separator = '.', long long fallback = 0) const;
  double get_double(texto::either_view path, char separator = '.', double fallback = 0) const;
  float get_float(texto::either_view path, char separator = '.', float fallback = 0) const;
  long get_nc_long(texto::either_view path, long fallback = 0, char separator = '.') const;
  unsigned long get_nc_ulong(texto::either_view path, unsigned long fallback = 0, char separator = '.') const;
  short get_nc_short(texto::either_view path, short fallback = 0, char separator = '.') const;
  long long get_nc_xlong(texto::either_view path, long long fallback = 0, char separator = '.') const;
  long long get_nc_uxlong(texto::either_view path, long long fallback = 0, char separator = '.') const;
  double get_nc_double(texto::either_view path, double fallback = 0, char separator = '.') const;
  float get_nc_float(texto::either_view path, float fallback = 0, char separator = '.') const;
  bool get_boolean(texto::either_view path, bool fallback = false, char separator = '.') const;
  std::wstring get_string(texto::either_view path, char separator = '.',
                          const std::wstring& fallback = {}) const;
  std::wstring get_nc_string(texto::either_view path, const std::wstring& fallback = {},
                             char separator = '.') const;
  const binary& get_binary(texto::either_view path, const binary& fallback, char separator = '.') const;
  const memo& get_memo(texto::either_view path, const memo& fallback, char separator = '.') const;
  const binary& get_binary(texto::either_view path, char separator, const binary& fallback) const {
    return get_binary(path, fallback, separator);
  }
  const memo& get_memo(texto::either_view path, char separator, const memo& fallback) const {
    return get_memo(path, fallback, separator);
  }
  const bundle& get_bundle(texto::either_view path, char separator = '.') const;
  const list& get_list(texto::either_view path, char separator = '.') const;
  const bundle& get_nc_bundle(texto::either_view path, const bundle& fallback, char separator = '.') const;
  const list& get_nc_list(texto::either_view path, const list& fallback, char separator = '.') const;

  /// "{" "key":value pairs joined by ", " "}", in key order: texts quoted with quotes escaped, null as "".
  /// @quirk A blank follows the comma, which in the text of a list has none.
  std::wstring to_string() const;

  /// Compares by to_string().
  /// @quirk In the texts neither the order of insertion nor qualities count, other than in lists, whose text
  /// has the qualities of the elements; and keys are not escaped, so that one key can pass for two.
  bool operator==(const bundle& other) const;
  bool operator<(const bundle& other) const;

 private:
  friend struct detail::bundle_access;

  iterator nth(unsigned long long n) noexcept;
  /// The entry before or after `at` (the last one before a null `at`), or null.
  static entry* step(const detail::bundle_store* store, const entry* at, std::size_t& rank,
                     bool forward) noexcept;

  detail::bundle_store* store_ = nullptr;  // owned; null until the first entry
};

KESTA_API std::wostream& operator<<(std::wostream& out, const bundle& value);

/// The shared empty values to which the getters of a bundle refer when there is nothing to refer to.
struct KESTA_API xvar_dummies {
  /// Holds an empty value of the type, for bundle, list, binary, memo and std::wstring; null for any other.
  /// Lives as long as the library; may be read by all threads at once.
  static const xvar& of(const std::type_info& type);
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
