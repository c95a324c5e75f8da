// SPDX-License-Identifier: BSL-1.0
#pragma once

// Programs that are started to be measured, and the memory of the own one.

#include <string>

namespace bench {

/// Starts the program NAME.exe beside this one (or this one again when the name is empty), waits for its end
/// and gives what it wrote to its standard output. Throws std::runtime_error when it failed.
std::string output_of(const std::string& name, const std::string& arguments = "");

/// Megabytes of memory that this process has in use.
struct memory_use {
  double now, most;
};
memory_use own_memory();

}  // namespace bench
