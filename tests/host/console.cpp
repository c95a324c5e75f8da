// SPDX-License-Identifier: BSL-1.0
#include "system/console.hpp"

#include <cstdio>
#include <string>

#include <unistd.h>

#include "base/utf.hpp"

namespace ruvo::platform {

namespace {

bool write_text(std::FILE* out, std::wstring_view text) {
  const std::string bytes = texto::to_utf_8(text);
  return std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
}

}  // namespace

bool open_console() noexcept { return true; }
void close_console() noexcept {}

bool is_terminal() noexcept { return isatty(STDOUT_FILENO) != 0; }

bool write_console(std::wstring_view text) { return write_text(stdout, text); }
bool write_error(std::wstring_view text) { return write_text(stderr, text); }

}  // namespace ruvo::platform
