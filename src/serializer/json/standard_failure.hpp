// SPDX-License-Identifier: BSL-1.0
#pragma once

// What standard JSON is refused with.

#include <ruvo/exc.hpp>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "serializer/json/staging.hpp"

namespace ruvo::serializer {

/// Runs `body`, which reads; true on FAILURE, which is then copied to `*err` unless that is null.
/// `position()` is where the reader is. Only std::bad_alloc goes through.
template <class Body, class Position>
bool fails(exception* err, Body body, Position position) {
  try {
    body();
    return false;
  } catch (const exc::JSONException& refusal) {
    refusal.copy_on(err);
  } catch (const name_twice& twin) {
    exc::jsonTwinName(position(), twin.name).copy_on(err);
  } catch (const limit_reached& limit) {
    exc::jsonBeyondLimit(position(), limit.what).copy_on(err);
  } catch (const std::length_error&) {  // a size that the library itself does not take
    exc::jsonBeyondLimit(position(), L"memoria").copy_on(err);
  }
  return true;
}

}  // namespace ruvo::serializer
