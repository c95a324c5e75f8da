// SPDX-License-Identifier: BSL-1.0
#pragma once

// How many log entries were lost.

namespace ruvo::reg {

/// Counts an entry of a log that nobody took.
void lose_entry() noexcept;
/// How many there were in the process.
unsigned long long lost_entries() noexcept;
/// Shows their number to a debugger, once each time that it has grown.
void show_lost_entries() noexcept;

}  // namespace ruvo::reg
