// SPDX-License-Identifier: BSL-1.0

// Conversions by the system's code pages.

#include "system/code_page.hpp"

#include <cstddef>
#include <limits>

#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

constexpr std::size_t longest = static_cast<std::size_t>(std::numeric_limits<int>::max());

}  // namespace

std::wstring from_code_page(std::string_view text, unsigned int page) {
  if (text.empty() || text.size() > longest) return {};
  const int size = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(page, 0, text.data(), size, nullptr, 0);
  if (needed <= 0) return {};
  std::wstring out(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(page, 0, text.data(), size, out.data(), needed);
  return out;
}

std::string to_code_page(std::wstring_view text, unsigned int page) {
  if (text.empty() || text.size() > longest) return {};
  const int size = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(page, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  if (needed <= 0) return {};
  std::string out(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(page, 0, text.data(), size, out.data(), needed, nullptr, nullptr);
  return out;
}

}  // namespace ruvo::platform
