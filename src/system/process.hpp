// SPDX-License-Identifier: BSL-1.0
#pragma once

// This process, its threads and the system that it runs on.

#include <string>

namespace ruvo::platform {

unsigned long thread_id() noexcept;
unsigned long process_id() noexcept;
/// Whether the process ends and this is its last thread: what the others had locked stays so.
bool is_process_ending() noexcept;

/// Makes the calling thread a single-threaded apartment; one that already is something is left as it is.
void init_com() noexcept;

/// False when the variable does not exist.
bool environment_variable(const std::wstring& name, std::wstring& value);

struct system_facts {
  unsigned long major = 0, minor = 0, build = 0;  // of the system itself, whatever the program was made for
  std::wstring service_pack;
  bool workstation = false;
  bool console_program = false;  // this process
};
/// False when the system does not say.
bool read_system_facts(system_facts& out);

/// The file of a module, or of the program for a null handle; empty when the system does not say.
std::wstring module_path(void* module);

}  // namespace ruvo::platform
