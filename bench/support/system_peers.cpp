// SPDX-License-Identifier: BSL-1.0
#include "support/system_peers.hpp"

#include <windows.h>

namespace bench {

std::wstring system_to_utf_16(const std::string& text) {
  const int size = static_cast<int>(text.size());
  std::wstring out(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)),
                   L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, out.data(), static_cast<int>(out.size()));
  return out;
}

std::string system_to_utf_8(const std::wstring& text) {
  const int size = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), size, out.data(), needed, nullptr, nullptr);
  return out;
}

void system_to_lowercase(std::wstring& text) { CharLowerBuffW(text.data(), static_cast<DWORD>(text.size())); }

}  // namespace bench
