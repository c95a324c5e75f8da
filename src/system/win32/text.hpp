// SPDX-License-Identifier: BSL-1.0
#pragma once

// Texts that the system makes.

#include <memory>
#include <string>

#include "system/win32/win32.hpp"

namespace ruvo::platform {

/// One that the system allocated.
using local_text = std::unique_ptr<wchar_t, decltype(&LocalFree)>;

/// One that a call writes into the room it is given: call(room, size) gives the text's length, or, as long as
/// the room is too small, a size to try next that is not below the present one. Empty when the call gives 0.
template <class Call>
std::wstring text_from(Call call) {
  std::wstring out(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = call(out.data(), static_cast<DWORD>(out.size()));
    const bool fits = length < out.size();
    out.resize(length);
    if (fits) return out;
  }
}

}  // namespace ruvo::platform
