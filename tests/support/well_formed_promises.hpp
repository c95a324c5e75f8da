// SPDX-License-Identifier: BSL-1.0
#pragma once

// What holds for read_well_formed_xml on every text.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/well_formed_xml.hpp>

#include <cstddef>
#include <string>

namespace well_formed_promises {

using options = ruvo::serializer::xml_read_options;

inline options unlimited() {
  constexpr auto none = static_cast<std::size_t>(-1);
  options o;
  o.limits = {none, none, none, none, none, none};
  return o;
}

/// The position at which a text, or bytes, are refused; 0 when they are read.
template <class Text>
std::size_t refused_at(const Text& text, const options& how = unlimited()) {
  ruvo::bundle out;
  ruvo::exception error;
  if (!ruvo::serializer::read_well_formed_xml(out, text, &error, how)) return 0;
  return static_cast<std::size_t>(ruvo::serializer::failure_position(error));
}

/// Reads the text, or bytes; the promise that does not hold, or null.
template <class Text>
const char* broken(const Text& text, const options& how = unlimited()) {
  ruvo::bundle out = {{L"k", 1}, {L"l", 2}};
  ruvo::exception error;
  if (!ruvo::serializer::read_well_formed_xml(out, text, &error, how)) {
    if (error.WRONG()) return "success leaves the error alone";
    return out.size() == 1 ? nullptr : "a document has one member";
  }
  if (error.OK()) return "a failure is reported";
  if (out.to_string() != L"{\"k\":1, \"l\":2}") return "a failure leaves what was there";
  const std::size_t position = refused_at(text, how);
  if (position < 1 || position > text.size() + 1) return "the position is in the text";
  // Before that character nothing is wrong but that the text ends, unless the document was complete.
  const std::size_t cut_at = refused_at(text.substr(0, position - 1), how);
  return cut_at == 0 || cut_at == position ? nullptr : "the text can go on up to the position";
}

}  // namespace well_formed_promises
