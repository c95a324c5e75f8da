// SPDX-License-Identifier: BSL-1.0
#pragma once

// Both ways of reading JSON.

#include <ruvo/serializer.hpp>
#include <ruvo/standard_json.hpp>

#include <string>

#include "support/both_ways.hpp"

struct json_ways : both_ways<ruvo::serializer::json, ruvo::serializer::json_reader, true> {
  json_ways() : both_ways(text_of) {}

 private:
  /// In order of insertion, with the spelling of the keys and the kinds of the values.
  static std::wstring text_of(const ruvo::bundle& store) {
    std::wstring out;
    return ruvo::serializer::write_standard_json(out, store) ? store.to_string() : out;
  }
};
