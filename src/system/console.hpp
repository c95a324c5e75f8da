// SPDX-License-Identifier: BSL-1.0
#pragma once

// The console and the standard output.

#include <string_view>

namespace ruvo::platform {

/// Makes sure of a standard output: the one that the process has, else a console; false when there is none.
bool open_console() noexcept;
/// Gives back a console that open_console() made.
void close_console() noexcept;
/// Whether the standard output is a console.
bool is_terminal() noexcept;
/// The text as it is to a console, in UTF-8 to a file or a pipe; false when not all was written.
bool write_console(std::wstring_view text);
/// The same to the standard error.
bool write_error(std::wstring_view text);

}  // namespace ruvo::platform
