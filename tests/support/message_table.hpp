// SPDX-License-Identifier: BSL-1.0
#pragma once

// The messages that the system finds in kesta.dll.

#include <string>

/// Whether the library is a file of its own in this process.
bool has_message_table();

/// The message of a code, with `inserts` (three texts) filled in, or as it stands if that is null. Empty if
/// the library has none. In the language `language`; 0 is any.
std::wstring table_message(unsigned long code, const wchar_t* const* inserts, unsigned long language = 0);
