// SPDX-License-Identifier: BSL-1.0
#pragma once

// The library's own access to the inside of a var: what a cell of each kind keeps, and how it is set.

#include <ruvo/bundle.hpp>
#include <ruvo/list.hpp>
#include <ruvo/var.hpp>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "memory/block_cache.hpp"

namespace ruvo::detail {

struct cell {
  static constexpr std::size_t small_offset = sizeof(wchar_t) == 2 ? 0 : 2;  // keeps the units aligned
  static constexpr std::size_t small_length = (14 - small_offset) / sizeof(wchar_t);

  static kind kind_of(const var& v) noexcept { return v.data_.kind; }
  static long long integer(const var& v) noexcept { return v.integer(); }
  static double real(const var& v) noexcept { return std::bit_cast<double>(v.integer()); }
  /// The time-zone mode of a date, time or datetime, whose seconds are the cell's integer.
  static int mode(const var& v) noexcept {
    int value;
    std::memcpy(&value, v.data_.bytes + 2, sizeof value);
    return value;
  }
  static bool is_text(const var& v) noexcept {
    return v.data_.kind >= kind::small_text && v.data_.kind <= kind::string_text;
  }
  static bool is_container(const var& v) noexcept { return v.data_.kind >= kind::list; }

  /// The object that a cell owns, for the kinds that own one.
  template <class T>
  static T* pointer(const var& v) noexcept {
    return reinterpret_cast<T*>(static_cast<std::intptr_t>(v.integer()));
  }
  static list& as_list(const var& v) noexcept { return *pointer<list>(v); }
  static bundle& as_bundle(const var& v) noexcept { return *pointer<bundle>(v); }
  static std::wstring_view text(const var& v) noexcept {
    if (v.data_.kind == kind::small_text) return {small_units(v), v.data_.length};
    if (v.data_.kind == kind::string_text) return *pointer<std::wstring>(v);
    return {pointer<wchar_t>(v), text_length(v)};
  }
  /// Of a kind::text, whose units lie in a block that holds nothing else.
  static std::size_t text_length(const var& v) noexcept {
    std::uint64_t head;
    std::memcpy(&head, &v.data_, sizeof head);
    return static_cast<std::size_t>(head >> 16);  // without the kind and what small texts use
  }
  static constexpr std::size_t text_bytes(std::size_t length) noexcept { return length * sizeof(wchar_t); }

  /// Calls `use` with the text of a cell, without a copy where the cell holds text.
  template <class Use>
  static auto with_text(const var& v, Use use) {
    if (is_text(v)) return use(text(v));
    const std::wstring made = v.to_string();
    return use(std::wstring_view(made));
  }

  // The setters below take a cell that owns nothing.
  static void set_text(var& v, std::wstring_view text) {
    if (text.size() <= small_length) {
      set_small_text(v, text);
    } else {
      set_long_text(v, text);
    }
  }
  static void set_small_text(var& v, std::wstring_view text) noexcept {
    v.data_.kind = kind::small_text;
    v.data_.length = static_cast<unsigned char>(text.size());
    if (!text.empty()) std::memcpy(v.data_.bytes + small_offset, text.data(), text.size() * sizeof(wchar_t));
  }
  /// The same from a room of 8 units, of which the last is not used; quicker, since its size is known.
  static void set_small_text(var& v, const wchar_t (&room)[8], std::size_t length) noexcept {
    v.data_.kind = kind::small_text;
    v.data_.length = static_cast<unsigned char>(length);
    std::memcpy(v.data_.bytes + small_offset, room, small_length * sizeof(wchar_t));
  }
  static void set_long_text(var& v, std::wstring_view text);
  /// Where the units of a text beyond small_length are to be written.
  static wchar_t* set_text_room(var& v, std::size_t length);
  static void set_lapse(var& v, kind kind, long long seconds, int mode) noexcept {
    v.set(kind, seconds);
    std::memcpy(v.data_.bytes + 2, &mode, sizeof mode);
  }
  template <class T>
  static void set_pointer(var& v, kind kind, T* owned) noexcept {
    v.set(kind, static_cast<long long>(reinterpret_cast<std::intptr_t>(owned)));
  }
  /// A container, made of the arguments.
  template <class T, class... Args>
  static T& set_box(var& v, Args&&... args) {
    T* const box = make<T>(static_cast<Args&&>(args)...);
    set_pointer(v, std::is_same_v<T, list> ? kind::list : kind::bundle, box);
    return *box;
  }
  static void set_integer(var& v, kind kind, long long value) noexcept { v.set(kind, value); }
  static void set_real(var& v, double value) noexcept { v.set(kind::double_, value); }
  static void forget(var& v) noexcept { v.data_.kind = kind::null; }

  /// Replaces what the cell holds by an empty value of the kind, unless it holds that kind; the value inside.
  static list& on_list(var& v);
  static bundle& on_bundle(var& v);
  static binary& on_binary(var& v);
  static memo& on_memo(var& v);
  static std::wstring& on_string(var& v);

  static const xvar::qualities_map* qualities(const xvar& v) noexcept { return v.qualities_; }
  static xvar::qualities_map*& qualities(xvar& v) noexcept { return v.qualities_; }

 private:
  static const wchar_t* small_units(const var& v) noexcept {
    return reinterpret_cast<const wchar_t*>(v.data_.bytes + small_offset);
  }
};

/// Appends the text of a cell: var::to_string without the string. Iterates, so nesting may be of any depth.
void append_text(std::wstring& out, const var& v);
void append_text(std::wstring& out, const list& l);
void append_text(std::wstring& out, const bundle& b);
/// The text of a date, time or datetime in a format; the digits of its seconds where it has no calendar form.
void append_lapse(std::wstring& out, const var& v, const std::string& format);
/// The number yyyymmdd of a date, or its seconds in the same way.
long long date_number(const var& v);

/// Copies the value and, for an xvar, the qualities into a cell that owns nothing, level by level.
void copy_tree(var& to, const var& from);
bundle_store* copy_store(const bundle_store& from);

/// Whether a text may lie in what a bundle holds, as one of its texts or keys. True as
/// well where looking would take longer than a copy of the text.
bool may_hold(const bundle& whole, std::wstring_view text);

/// Destroys what a cell of a container kind owns, level by level.
void drop_tree(var& v) noexcept;
/// The same for the store of a bundle, with the store, and for all elements of a list.
void drop_store(bundle_store* store) noexcept;
void drop_elements(list& in) noexcept;

}  // namespace ruvo::detail
