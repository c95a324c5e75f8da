#pragma once

// What reading a JSON text gives: the store, and the error or the exception of a store that refuses. The
// reader has a fast way for whole texts and the state machine for single characters; both must give the same.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/serializer.hpp>

#include <stdexcept>
#include <string>

namespace json_outcome {

struct outcome {
  std::wstring store, report;
  bool operator==(const outcome&) const = default;
};

inline std::wstring widened(const char* text) { return {text, text + std::char_traits<char>::length(text)}; }

inline outcome read_at_once(ruvo::serializer::json& j, const std::wstring& text) {
  ruvo::bundle b;
  ruvo::exception error;
  outcome o;
  try {
    j.deserialize(b, text, &error);
    o.report = static_cast<std::wstring>(error);
  } catch (const std::logic_error& e) {
    o.report = widened(e.what());
  }
  o.store = b.to_string();
  return o;
}

inline outcome read_by_character(const std::wstring& text) {
  ruvo::serializer::json_reader reader;
  ruvo::bundle b;
  ruvo::exception error;
  outcome o;
  reader.reset();
  reader.set_store(b);
  try {
    for (const wchar_t c : text) reader.next_character(c, error);
    o.report = static_cast<std::wstring>(error);
  } catch (const std::logic_error& e) {
    o.report = widened(e.what());
  }
  o.store = b.to_string();
  return o;
}

}  // namespace json_outcome
