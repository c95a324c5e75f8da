#pragma once

namespace ruvo::reg {

/// Counts an entry of a log that nobody took.
void lose_entry() noexcept;
/// How many there were in the process.
unsigned long long lost_entries() noexcept;
/// Tells a debugger of them, once for each growth of their number.
void tell_of_lost_entries() noexcept;

}  // namespace ruvo::reg
