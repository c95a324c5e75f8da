// SPDX-License-Identifier: BSL-1.0

// Error numbers, their texts, and lines for a debugger.

#include "system/errors.hpp"

#include "system/win32/text.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

std::wstring system_message(unsigned long number) {
  constexpr DWORD user_language = 0x0400;
  constexpr DWORD flags = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                          FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  wchar_t* made = nullptr;
  const DWORD length =
      FormatMessageW(flags, nullptr, number, user_language, reinterpret_cast<wchar_t*>(&made), 0, nullptr);
  const local_text owner(made, LocalFree);
  return made ? std::wstring(made, length) : std::wstring();
}

unsigned long last_error() noexcept { return GetLastError(); }

void debug_line(const std::wstring& text) noexcept { OutputDebugStringW(text.c_str()); }

}  // namespace ruvo::platform
