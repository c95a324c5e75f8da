// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::xvar, a var with named attributes (qualities).

#include <ruvo/fwd.hpp>
#include <ruvo/texto/exact_view.hpp>
#include <ruvo/var.hpp>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <utility>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {

/// A class with a conversion to xvar of its own.
template <class T>
concept converts_to_xvar = requires(T&& value) {
  static_cast<T&&>(value).operator xvar();
};

}  // namespace detail

/// Orders keys without regard to the case of A-Z, by code unit.
struct KESTA_API keylowercase {
  using is_transparent = void;  ///< Maps find views, too.

  /// Whether `a` comes before `b`.
  bool operator()(const std::wstring& a, const std::wstring& b) const noexcept;
  bool operator()(const std::wstring& a, texto::wide_view b) const noexcept;
  bool operator()(texto::wide_view a, const std::wstring& b) const noexcept;
};

/// A var with qualities, which are named vars. The value is used exactly as a var; the qualities travel with
/// it, for example as the attributes of a markup element. An xvar without qualities pays one pointer for
/// them.
///
/// Keys ignore the case of A-Z and keep the spelling first inserted. Narrow keys are UTF-8.
class KESTA_API xvar : public var {
 public:
  /// Qualities in the order of their keys: a std::map that has its memory from where values have theirs.
  class qualities_map : public std::map<std::wstring, var, keylowercase,
                                        detail::room_allocator<std::pair<const std::wstring, var>>> {
   public:
    using plain_map = std::map<std::wstring, var, keylowercase>;

    using map::map;
    qualities_map() = default;
    /// Copies of the pairs.
    qualities_map(const plain_map& other) : map(other.begin(), other.end()) {}
    /// A copy. Explicit, as a reference to a plain map would be one to a copy, without a word.
    explicit operator plain_map() const { return {begin(), end()}; }

    template <std::same_as<plain_map> P>
    friend bool operator==(const qualities_map& a, const P& b) {
      return std::equal(a.begin(), a.end(), b.begin(), b.end());
    }
  };
  using iterator = qualities_map::iterator;
  using const_iterator = qualities_map::const_iterator;
  using size_type = qualities_map::size_type;

  /// Holds nothing, without qualities.
  xvar() noexcept = default;
  xvar(const xvar& other) : var(other) {
    if (other.qualities_) copy_qualities(other);
  }
  xvar(xvar&& other) noexcept : var(static_cast<var&&>(other)), qualities_(other.qualities_) {
    other.qualities_ = nullptr;
  }
  /// The value, without qualities.
  xvar(const var& value) : var(value) {}
  xvar(var&& value) noexcept : var(std::move(value)) {}
  ~xvar() override {
    if (qualities_) drop_qualities();
  }

  /// Holds the value as a var does, without qualities.
  xvar(bool value) noexcept : var(value) {}
  xvar(wchar_t value) noexcept : var(value) {}
  xvar(short value) noexcept : var(value) {}
  xvar(unsigned short value) noexcept : var(value) {}
  xvar(int value) noexcept : var(value) {}
  xvar(unsigned int value) noexcept : var(value) {}
  xvar(long value) noexcept : var(value) {}
  xvar(unsigned long value) noexcept : var(value) {}
  xvar(long long value) noexcept : var(value) {}
  xvar(unsigned long long value) noexcept : var(value) {}
  xvar(float value) noexcept : var(value) {}
  xvar(double value) noexcept : var(value) {}
  xvar(const binary& value) : var(value) {}
  xvar(const memo& value) : var(value) {}
  xvar(const decimal& value) : var(value) {}
  xvar(const date& value) : var(value) {}
  xvar(const time& value) : var(value) {}
  xvar(const datetime& value) : var(value) {}
  xvar(const std::wstring& value) : var(value) {}
  xvar(const wchar_t* value) : var(value) {}
  xvar(const std::string& value) : var(value) {}
  xvar(const char* value) : var(value) {}
  xvar(const char8_t* value) : var(value) {}
  xvar(const std::u8string& value) : var(value) {}
  template <detail::is_text_view View>
  xvar(View value) : var(value) {}
  /// Refused: the pointer would become a bool.
  template <detail::is_pointer_without_text P>
  xvar(P pointer) = delete;
  /// From a class that converts to xvar, whatever else it converts to.
  template <detail::converts_to_xvar T>
  explicit xvar(T&& value)  // NOLINT(bugprone-forwarding-reference-overload): an xvar does not convert so
      : xvar(static_cast<T&&>(value).operator xvar()) {}

  /// Replaces the value and merges the qualities: those of `other` are assigned to this object's, those that
  /// `other` lacks stay.
  /// @quirk The merge is what callers rely on; clear() first drops the old qualities.
  xvar& operator=(const xvar& other);
  /// The same outcome; the value is moved, the qualities are copied.
  xvar& operator=(xvar&& other);
  /// Exchanges values and qualities; neither may be inside the other. Constant time.
  /// @quirk `std::swap(a, b)` assigns, and so mixes the qualities; `a.swap(b)`, `swap(a, b)` and
  /// `std::ranges::swap(a, b)` do not.
  void swap(xvar& other) noexcept;
  friend void swap(xvar& a, xvar& b) noexcept { a.swap(b); }
  /// Replaces the value, keeps the qualities.
  xvar& operator=(const var& value);
  xvar& operator=(var&& value) noexcept;
  const xvar& operator=(bool value) noexcept { return assign(value); }
  const xvar& operator=(wchar_t value) noexcept { return assign(value); }
  const xvar& operator=(short value) noexcept { return assign(value); }
  const xvar& operator=(unsigned short value) noexcept { return assign(value); }
  const xvar& operator=(int value) noexcept { return assign(value); }
  const xvar& operator=(unsigned int value) noexcept { return assign(value); }
  const xvar& operator=(long value) noexcept { return assign(value); }
  const xvar& operator=(unsigned long value) noexcept { return assign(value); }
  const xvar& operator=(long long value) noexcept { return assign(value); }
  const xvar& operator=(unsigned long long value) noexcept { return assign(value); }
  const xvar& operator=(float value) noexcept { return assign(value); }
  const xvar& operator=(double value) noexcept { return assign(value); }
  const xvar& operator=(const binary& value) { return assign(value); }
  const xvar& operator=(const memo& value) { return assign(value); }
  const xvar& operator=(const decimal& value) { return assign(value); }
  const xvar& operator=(const date& value) { return assign(value); }
  const xvar& operator=(const time& value) { return assign(value); }
  const xvar& operator=(const datetime& value) { return assign(value); }
  const xvar& operator=(const std::wstring& value) { return assign(value); }
  const xvar& operator=(const wchar_t* value) { return assign(value); }
  const xvar& operator=(const std::string& value) { return assign(value); }
  const xvar& operator=(const char* value) { return assign(value); }
  const xvar& operator=(const char8_t* value) { return assign(value); }
  const xvar& operator=(const std::u8string& value) { return assign(value); }
  template <detail::is_text_view View>
  const xvar& operator=(View value) {
    return assign(value);
  }
  /// Refused: the pointer would become a bool.
  template <detail::is_pointer_without_text P>
  const xvar& operator=(P pointer) = delete;
  /// From a class that converts to xvar: replaces the value and merges the qualities.
  template <detail::converts_to_xvar T>
  xvar& operator=(T&& value) {
    return *this = static_cast<T&&>(value).operator xvar();
  }

  /// The quality, inserted with a null value when missing.
  var& operator[](const std::wstring& key);
  var& operator[](const std::string& key);
  var& operator[](const wchar_t* key);
  var& operator[](const char* key);

  /// The quality; a missing key throws std::out_of_range ("invalid map<K, T> key").
  const var& at(const std::wstring& key) const;
  const var& at(const std::string& key) const;
  /// The quality; a missing key throws exc::OutOfRange (raw 0xEBB80007).
  const var& get_quality(const std::wstring& key) const;
  const var& get_quality(const std::string& key) const;

  /// Whether there is a quality with the key.
  bool has_quality(const std::wstring& key) const;
  bool has_quality(const std::string& key) const;
  /// The number of qualities with the key, 0 or 1.
  size_type count(const std::wstring& key) const;
  size_type count(const std::string& key) const;
  /// The quality with the key, or end().
  iterator find(const std::wstring& key);
  iterator find(const std::string& key);
  const_iterator find(const std::wstring& key) const;
  const_iterator find(const std::string& key) const;
  /// The number of qualities removed, 0 or 1.
  size_type erase(const std::wstring& key);
  size_type erase(const std::string& key);
  /// As erase(), without a result.
  void quality_remove(const std::wstring& key);
  void quality_remove(const std::string& key);

  /// The same with a std::wstring_view, std::string_view or std::u8string_view. A wide one is copied for a
  /// quality that is made, and for what is thrown.
  var& operator[](texto::either_view key);
  const var& at(texto::either_view key) const;
  const var& get_quality(texto::either_view key) const;
  bool has_quality(texto::either_view key) const { return find(key) != end(); }
  size_type count(texto::either_view key) const { return has_quality(key) ? 1 : 0; }
  iterator find(texto::either_view key);
  const_iterator find(texto::either_view key) const { return const_cast<xvar*>(this)->find(key); }
  size_type erase(texto::either_view key);
  void quality_remove(texto::either_view key) { erase(key); }

  /// Assigns the qualities to this object's; those that `qualities` lacks stay.
  void add_qualities(const qualities_map& qualities);
  /// All qualities; a shared empty map when there are none.
  const qualities_map& get_qualities() const noexcept;
  /// The map for writing; made on first use.
  qualities_map& hack_qualities();

  /// The qualities in the order of their keys.
  iterator begin() noexcept;
  iterator end() noexcept;
  const_iterator begin() const noexcept { return get_qualities().begin(); }
  const_iterator end() const noexcept { return get_qualities().end(); }
  const_iterator cbegin() const noexcept { return begin(); }
  const_iterator cend() const noexcept { return end(); }

  /// The number of qualities.
  /// @quirk size(), empty() and clear() speak of the qualities, not of the value (use var::empty and
  /// var::clear for that).
  size_type size() const noexcept { return get_qualities().size(); }
  /// The number of qualities.
  size_type qualities_size() const noexcept { return size(); }
  /// How many qualities an implementation of std::map can hold.
  size_type max_size() const noexcept { return get_qualities().max_size(); }
  /// Whether there are no qualities.
  bool empty() const noexcept { return size() == 0; }
  /// Whether there are qualities.
  bool is_qualified() const noexcept { return !empty(); }
  /// Removes all qualities; the value stays.
  void clear() noexcept;
  void clear_qualities() noexcept { clear(); }

 private:
  friend struct detail::cell;

  template <class T>
  const xvar& assign(const T& value) {
    var::operator=(value);
    return *this;
  }
  void copy_qualities(const xvar& other);
  void drop_qualities() noexcept;

  qualities_map* qualities_ = nullptr;  // owned; null until the first quality
};

}  // namespace ruvo

#include <ruvo/names_back.hpp>
