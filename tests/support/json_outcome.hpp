// SPDX-License-Identifier: BSL-1.0
#pragma once

// Both ways of reading JSON.

#include <ruvo/serializer.hpp>

#include "support/both_ways.hpp"

struct json_ways : both_ways<ruvo::serializer::json, ruvo::serializer::json_reader, true> {
  json_ways() : both_ways([](const ruvo::bundle& store) { return store.to_string(); }) {}
};
