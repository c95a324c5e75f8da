// SPDX-License-Identifier: BSL-1.0

// What the processor has, asked once when the module is loaded.

#include "base/simd.hpp"

#ifdef KESTA_X64

#  if defined(_MSC_VER) && !defined(__clang__)
#    include <intrin.h>
#  endif

namespace ruvo::texto {

namespace {

bool ask_for_ssse3() noexcept {
#  if defined(_MSC_VER) && !defined(__clang__)
  int registers[4];
  __cpuid(registers, 1);
  return (registers[2] >> 9 & 1) != 0;
#  else
  __builtin_cpu_init();
  return __builtin_cpu_supports("ssse3") != 0;
#  endif
}

}  // namespace

bool has_ssse3 = ask_for_ssse3();

}  // namespace ruvo::texto

#endif
