// SPDX-License-Identifier: BSL-1.0
#include "support/message_table.hpp"

#ifdef _WIN32

#  ifndef NOMINMAX
#    define NOMINMAX
#  endif
#  include <windows.h>

namespace {

HMODULE library() { return GetModuleHandleA("kesta.dll"); }

}  // namespace

bool has_message_table() { return library() != nullptr; }

std::wstring table_message(unsigned long code, const wchar_t* const* inserts, unsigned long language) {
  const DWORD how = inserts ? FORMAT_MESSAGE_ARGUMENT_ARRAY : FORMAT_MESSAGE_IGNORE_INSERTS;
  wchar_t text[1000];
  const DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_HMODULE | how, library(), code, language, text,
                                      1000, reinterpret_cast<va_list*>(const_cast<wchar_t**>(inserts)));
  return std::wstring(text, length);
}

#else

bool has_message_table() { return false; }
std::wstring table_message(unsigned long, const wchar_t* const*, unsigned long) { return {}; }

#endif
