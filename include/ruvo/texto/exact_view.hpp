// SPDX-License-Identifier: BSL-1.0
#pragma once

// Views of texts as functions take them that have a form for views.
//
// Such a form takes a std::wstring_view, say, and nothing else. What could become a view, a literal for
// instance, goes where it went without that form, so that no call has two meanings.

#include <concepts>
#include <cstddef>
#include <string_view>

namespace ruvo::texto {

/// A view of these characters.
template <class Unit>
class exact_view : public std::basic_string_view<Unit> {
 public:
  /// Shows what the view shows.
  template <std::same_as<std::basic_string_view<Unit>> View>
  constexpr exact_view(View text) noexcept : std::basic_string_view<Unit>(text) {}
};
using wide_view = exact_view<wchar_t>;
using narrow_view = exact_view<char>;

/// A wide view, or one of UTF-8, as keys and paths may be.
class either_view {
 public:
  /// Shows what the view shows.
  template <std::same_as<std::wstring_view> View>
  constexpr either_view(View text) noexcept : wide_(text.data()), size_(text.size()) {}
  template <std::same_as<std::string_view> View>
  constexpr either_view(View text) noexcept : narrow_(text.data()), size_(text.size()) {}
  template <std::same_as<std::u8string_view> View>
  either_view(View text) noexcept : narrow_(reinterpret_cast<const char*>(text.data())), size_(text.size()) {}

  /// Whether there is no wide one.
  constexpr bool is_narrow() const noexcept { return narrow_ != nullptr; }
  /// The one that is there; the other one is empty.
  constexpr std::wstring_view wide() const noexcept { return {wide_, wide_ ? size_ : 0}; }
  constexpr std::string_view narrow() const noexcept { return {narrow_, narrow_ ? size_ : 0}; }

 private:
  const wchar_t* wide_ = nullptr;
  const char* narrow_ = nullptr;
  std::size_t size_;
};

}  // namespace ruvo::texto
