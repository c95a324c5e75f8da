// SPDX-License-Identifier: BSL-1.0
#pragma once

// Failures on their way to who wants to know of them, and their details. Making one may fail for lack of
// memory; the failure then goes without it.

#include <ruvo/exc.hpp>

#include <string>
#include <string_view>
#include <utility>

namespace ruvo::detail {

/// Gives `failure` the detail that `make` returns.
template <class Failure, class Make>
void add_detail(Failure& failure, Make make) noexcept {
  try {
    failure.set_detail(make());
  } catch (...) {  // no memory: the failure itself is what matters
  }
}

/// The failure with the detail that `make` returns.
template <class Failure, class Make>
Failure about(Failure failure, Make make) noexcept {
  add_detail(failure, std::move(make));
  return failure;
}

/// Runs the body and copies its failure, if it is one of the library's own, to `err`; true is success.
template <class Body>
bool succeeds(exception& err, const Body& body) {
  try {
    body();
    return true;
  } catch (const exception& failure) {
    failure.copy_on(err);
    return false;
  }
}

/// A text between quotation marks, a long one cut.
std::wstring quoted(std::wstring_view text);

/// What the exception says that is being handled, its detail included; of one that says nothing, nothing.
std::wstring in_flight();

/// The detail of an exception, if it has one.
std::wstring detail_of(const std::exception& error);
std::wstring detail_of(const std::exception_ptr& error);

/// Gives the failure the detail of its cause and, of a text that could not be read, the position.
void take_after(exception& failure, const std::exception& cause) noexcept;
void take_after(exception& failure, const std::exception_ptr& cause) noexcept;

/// The text and, where it does not say it already, the detail in brackets.
std::wstring with_detail(std::wstring text, const std::wstring& detail);

exc::MissingElement missing_key(std::wstring_view key);
exc::MissingElement missing_index(unsigned long long index, unsigned long long size);
/// A calendar failure about a number; `what` says what the number is.
exc::CalendarException not_in_calendar(const wchar_t* what, long long value);
exc::NullValue no_entry(std::wstring_view path);

}  // namespace ruvo::detail
