// SPDX-License-Identifier: BSL-1.0
#include "support/system_files.hpp"

#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <windows.h>

namespace bench {

std::string read_with_system(const std::wstring& path) {
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
  LARGE_INTEGER size{};
  std::string out;
  if (file == INVALID_HANDLE_VALUE) return out;
  if (GetFileSizeEx(file, &size)) out.resize(static_cast<std::size_t>(size.QuadPart));
  DWORD got = 0;
  ReadFile(file, out.data(), static_cast<DWORD>(out.size()), &got, nullptr);
  CloseHandle(file);
  out.resize(got);
  return out;
}

std::wstring widen_with_system(const std::string& text) {
  const int size = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
  std::wstring out(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, out.data(), needed);
  return out;
}

std::wstring setting_with_system(const std::wstring& path, const std::wstring& section,
                                 const std::wstring& key) {
  WritePrivateProfileStringW(nullptr, nullptr, nullptr, path.c_str());  // forgets what it read before
  std::wstring out(256, L'\0');
  out.resize(GetPrivateProfileStringW(section.c_str(), key.c_str(), L"", out.data(),
                                      static_cast<DWORD>(out.size()), path.c_str()));
  return out;
}

}  // namespace bench
