// SPDX-License-Identifier: BSL-1.0
#pragma once

// The classes of the catalogue, made.

#include <ruvo/exc.hpp>
#include <ruvo/exc_table.hpp>
#include <ruvo/file.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <map>
#include <string>
#include <type_traits>
#include <typeindex>
#include <typeinfo>
#include <vector>

struct system_texts : ruvo::exception {
  using ruvo::exception::winerror_message;
};

struct class_sample {
  ruvo::exception error;
  std::type_index type;
  std::wstring prefix;  // what its text begins with in the message table and on the page
};

/// A failure of the row, made with 31 and 5 where it is made with something; the rows with a constructor of
/// their own aside.
template <class Class, ruvo::detail::error_shape Shape>
void add_sample(std::vector<class_sample>& all, const ruvo::detail::error_row& row) {
  using enum ruvo::detail::error_shape;
  const std::wstring subject = L"31", prefix = std::wstring(row.name) + L": ";
  const auto add = [&](const ruvo::exception& error, const std::wstring& before = L"") {
    all.push_back({error, typeid(Class), before});
  };
  if constexpr (Shape == place) {
    std::wstring text(row.text);
    ruvo::texto::safe_replace(text, L"%1", subject);
    add(ruvo::exception(row.code(), text));
  } else if constexpr (Shape == path) {
    add(Class(ruvo::file(subject)));
  } else if constexpr (Shape == named) {
    add(Class(subject));
  } else if constexpr (Shape == knot) {
    add(Class(31, 5));
  } else if constexpr (Shape == message) {
    add(Class(subject), prefix);
  } else if constexpr (Shape == windows) {
    add(Class(subject, 5), prefix);
  } else if constexpr (std::is_default_constructible_v<Class>) {
    add(Class());
  } else if constexpr (std::is_same_v<ruvo::exc::fileUnsafePath, Class> ||
                       std::is_base_of_v<ruvo::exc::JSONException, Class> ||
                       std::is_base_of_v<ruvo::exc::XMLException, Class> ||
                       (Shape == own && std::is_base_of_v<ruvo::exc::DecimalException, Class>)) {
    // Of a position, of what stands there, or of both.
    if constexpr (std::is_constructible_v<Class, unsigned long long, std::wstring>) {
      add(Class(31, std::wstring(L"5")));
    } else if constexpr (std::is_constructible_v<Class, std::wstring, std::wstring>) {
      add(Class(subject, std::wstring(L"5")));
    } else {
      add(Class(31));
    }
  } else if constexpr (std::is_constructible_v<Class, unsigned long, std::wstring>) {
    if (Shape == own) add(Class(row.number, subject), prefix);
  }
}

/// Every class of the catalogue, made with 31 and 5 where it is made with something.
inline std::vector<class_sample> every_class() {
  using namespace ruvo::exc;
  using Incorrect = ruvo::exception;
  std::vector<class_sample> all;
  const ruvo::detail::error_row* row = ruvo::detail::errors;
#define KESTA_ERROR(name, base, range, number, shape, text) \
  add_sample<name, ruvo::detail::error_shape::shape>(all, *row++);
#include <ruvo/exc_catalogue.hpp>
  const auto add = [&](const auto& error) { all.push_back({error, typeid(error), L""}); };
  add(UnCatch(nullptr));
  add(UnKnown(nullptr));
  add(RunTime(std::wstring()));
  add(systemErrorCode(31));
  add(applicationAlreadyRegistered(0x31));
  add(actionNotFound(L"31"));
  return all;
}

/// The codes of the catalogue and what is said of each, a text for each class, in order.
inline std::map<unsigned long, std::vector<std::wstring>> catalogue_messages() {
  std::map<unsigned long, std::vector<std::wstring>> expected;
  for (const auto& [error, type, prefix] : every_class()) {
    expected[error.get_raw_code()].push_back(prefix + error.get_mensaje());
  }
  for (auto& [code, messages] : expected) std::ranges::sort(messages);
  return expected;
}
