// SPDX-License-Identifier: BSL-1.0
#pragma once

// Fences: what would compile through a conversion to bool, char or a number and can only be a mistake is
// refused. Values that are meant so are cast: `static_cast<long>(day) + 1`.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>

#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {

/// A type of characters, signs of which stand between apostrophes.
template <class C>
concept is_character = std::same_as<C, char> || std::same_as<C, wchar_t> || std::same_as<C, char8_t> ||
    std::same_as<C, char16_t> || std::same_as<C, char32_t>;

/// A number that nobody takes for a character. `signed char` and `unsigned char` may be either.
template <class N>
concept is_plain_number = std::is_arithmetic_v<N> && !is_character<N> && !std::same_as<N, signed char> &&
                          !std::same_as<N, unsigned char>;

/// A pointer that no text is read from: it would become a bool.
template <class P>
concept is_pointer_without_text = (std::is_pointer_v<P> && !std::convertible_to<P, const char*> &&
                                   !std::convertible_to<P, const wchar_t*> &&
                                   !std::convertible_to<P, const char8_t*>) ||
                                  std::is_member_pointer_v<P>;

/// A view of a text, exactly: what converts to one goes where its other conversions lead.
template <class View>
concept is_text_view = std::same_as<View, std::wstring_view> || std::same_as<View, std::string_view> ||
    std::same_as<View, std::u8string_view>;

template <class P>
concept is_pointer_to_characters =
    std::is_pointer_v<P> && is_character<std::remove_cv_t<std::remove_pointer_t<P>>>;

/// What converts to a number, so that adding it to a pointer moves the pointer.
template <class C>
concept is_value_with_number = std::derived_from<C, var> || std::derived_from<C, lapse> ||
    std::derived_from<C, color> || std::derived_from<C, exception>;

/// The number of a date or a time of day holds its fields, 20240229 or 123456: it is neither days nor
/// seconds.
template <class C>
concept is_packed_calendar = std::derived_from<C, date> || std::derived_from<C, time>;

/// What somebody moves a date or a time of day by as if it were days or seconds.
template <class N>
concept is_step_of_calendar = std::is_arithmetic_v<N> || std::is_enum_v<N>;

template <class A, class B>
concept is_packed_calendar_arithmetic = (is_packed_calendar<A> &&
                                         (std::derived_from<B, lapse> || is_step_of_calendar<B>)) ||
                                        (is_packed_calendar<B> &&
                                         (std::derived_from<A, lapse> || is_step_of_calendar<A>));

/// An integer of 64 bits before a time of day may hold the day: `day * 1000000LL + hour` is yyyymmddhhmmss.
template <class A, class B>
concept is_day_before_time = std::integral<A> && sizeof(A) == 8 && std::derived_from<B, time>;

}  // namespace detail

/// Refused: `L"Total: " + value` moves the pointer by the value's number. Make one of them a text,
/// `L"Total: " + value.to_string()`, or the value a number.
template <detail::is_pointer_to_characters P, detail::is_value_with_number C>
void operator+(P text, const C& value) = delete;
template <detail::is_pointer_to_characters P, detail::is_value_with_number C>
void operator+(const C& value, P text) = delete;
template <detail::is_pointer_to_characters P, detail::is_value_with_number C>
void operator-(P text, const C& value) = delete;
template <detail::is_pointer_to_characters P, detail::is_value_with_number C>
void operator+=(P& text, const C& value) = delete;
template <detail::is_pointer_to_characters P, detail::is_value_with_number C>
void operator-=(P& text, const C& value) = delete;

/// Refused: the numbers of dates and times of day hold fields, so that 1 March - 29 February is 72. Moves
/// are made by `+=`, `-=` and add(), differences by dates::diff_days, times::diff_minutes and their like.
template <class A, class B>
requires(detail::is_packed_calendar_arithmetic<A, B> && !detail::is_day_before_time<A, B>) void operator+(
    const A& a, const B& b) = delete;
template <class A, class B>
requires detail::is_packed_calendar_arithmetic<A, B>
void operator-(const A& a, const B& b) = delete;

}  // namespace ruvo

#include <ruvo/names_back.hpp>
