// SPDX-License-Identifier: BSL-1.0
#include "system/errors.hpp"

namespace ruvo::platform {

std::wstring system_message(unsigned long number) {
  return number == 2 ? L"No such file. " : number == 5 ? L"Access denied. " : L"";
}

unsigned long last_error() noexcept { return 0; }

void debug_line(const std::wstring&) noexcept {}

}  // namespace ruvo::platform
