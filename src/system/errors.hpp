// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the system says of failures. Nothing in this room throws for a refusal of the system; the results say
// so.

#include <string>

namespace ruvo::platform {

/// The system's text for an error number, in one line and with its blanks; empty when it has none.
std::wstring system_message(unsigned long number);
/// The calling thread's last error number.
unsigned long last_error() noexcept;

/// Shows a line to a debugger.
void debug_line(const std::wstring& text) noexcept;

}  // namespace ruvo::platform
