// SPDX-License-Identifier: BSL-1.0

// The tables of functions that are found late.

#include "system/win32/late.hpp"

namespace ruvo::platform::late {

HMODULE library(const wchar_t* name) noexcept {
  const HMODULE found = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  // An older system does not know where to search; it takes these libraries from its own folder alone.
  return found || GetLastError() != ERROR_INVALID_PARAMETER ? found : LoadLibraryW(name);
}

const security_calls& security() noexcept {
  static const security_calls calls;
  return calls;
}

const com_calls& com() noexcept {
  static const com_calls calls;
  return calls;
}

}  // namespace ruvo::platform::late
