// SPDX-License-Identifier: BSL-1.0

// The standard outputs, and a console where there is none.

#include "system/console.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <string>

#include "base/utf.hpp"
#include "system/win32/open.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

std::atomic<bool> made_console{false};

// A console takes some 32,000 units at once, and must not be given half a character.
bool write_units(HANDLE console, std::wstring_view text) noexcept {
  constexpr std::size_t most = 8192;
  while (!text.empty()) {
    std::size_t size = std::min(text.size(), most);
    if (size < text.size() && IS_HIGH_SURROGATE(text[size - 1])) --size;
    DWORD written = 0;
    if (!WriteConsoleW(console, text.data(), static_cast<DWORD>(size), &written, nullptr) || !written)
      return false;
    text.remove_prefix(written);
  }
  return true;
}

HANDLE standard(DWORD which) noexcept {
  const HANDLE out = GetStdHandle(which);
  return out == INVALID_HANDLE_VALUE ? nullptr : out;
}

HANDLE output() noexcept { return standard(STD_OUTPUT_HANDLE); }

bool is_console(HANDLE out) noexcept {
  DWORD mode;
  return GetConsoleMode(out, &mode) != 0;
}

bool write_text(HANDLE out, std::wstring_view text) {
  if (!out) return false;
  if (is_console(out)) return write_units(out, text);
  const std::string bytes = texto::to_utf_8(text);
  return write_all(out, bytes) == bytes.size();
}

}  // namespace

bool open_console() noexcept {
  if (output()) return true;
  if (!AttachConsole(ATTACH_PARENT_PROCESS) && !AllocConsole()) return false;
  made_console = true;
  return output() != nullptr;
}

void close_console() noexcept {
  if (made_console.exchange(false)) FreeConsole();
}

bool is_terminal() noexcept { return is_console(output()); }

bool write_console(std::wstring_view text) { return write_text(output(), text); }
bool write_error(std::wstring_view text) { return write_text(standard(STD_ERROR_HANDLE), text); }

}  // namespace ruvo::platform
