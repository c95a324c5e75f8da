// SPDX-License-Identifier: BSL-1.0
#pragma once

// A failure in short: "BadFormat 7", with the position, or "BadArgument name".

#include <ruvo/exc.hpp>
#include <ruvo/reading.hpp>

#include <string>

inline std::wstring shown_failure(const ruvo::exception& failure) {
  constexpr unsigned long bad_format = 0xEBB8000A, bad_argument = 0xEBB8000F;
  const std::wstring message = failure.get_mensaje();
  if (failure.get_raw_code() == bad_format)
    return L"BadFormat " + std::to_wstring(ruvo::serializer::failure_position(failure));
  if (failure.get_raw_code() == bad_argument)
    return L"BadArgument " + message.substr(message.find(L": ") + 2);
  return failure.WRONG() ? message : L"";
}
