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

std::wstring_view system_to_utf_16(std::wstring& buffer, const std::string& text) {
  if (buffer.size() < text.size()) buffer.resize(text.size());
  const int room = static_cast<int>(buffer.size());
  const int made =
      MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), buffer.data(), room);
  return {buffer.data(), static_cast<std::size_t>(made)};
}

std::string_view system_to_utf_8(std::string& buffer, const std::wstring& text) {
  if (buffer.size() < 3 * text.size()) buffer.resize(3 * text.size());
  const int room = static_cast<int>(buffer.size());
  const int made = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), buffer.data(),
                                       room, nullptr, nullptr);
  return {buffer.data(), static_cast<std::size_t>(made)};
}

void system_to_lowercase(std::wstring& text) { CharLowerBuffW(text.data(), static_cast<DWORD>(text.size())); }

}  // namespace bench
