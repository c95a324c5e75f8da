// SPDX-License-Identifier: BSL-1.0

// What the processor has, asked once when the module is loaded.

#include "base/simd.hpp"

#ifdef KESTA_X64

#  if defined(_MSC_VER) && !defined(__clang__)
#    include <intrin.h>
#  else
#    include <cpuid.h>
#  endif

namespace ruvo::texto {

namespace {

/// The registers A to D that the processor answers with; zeros for a question that it does not know.
struct answer {
  explicit answer(unsigned question) noexcept {
#  if defined(_MSC_VER) && !defined(__clang__)
    int known[4], found[4] = {};
    __cpuid(known, 0);
    if (question <= static_cast<unsigned>(known[0])) __cpuidex(found, static_cast<int>(question), 0);
    for (int at = 0; at < 4; ++at) registers[at] = static_cast<unsigned>(found[at]);
#  else
    __get_cpuid_count(question, 0, &registers[0], &registers[1], &registers[2], &registers[3]);
#  endif
  }
  bool has(int which, int bit) const noexcept { return (registers[which] >> bit & 1) != 0; }

  unsigned registers[4] = {};
};

bool ask_for_ssse3() noexcept { return answer(1).has(2, 9); }
bool ask_for_sha() noexcept { return ask_for_ssse3() && answer(1).has(2, 19) && answer(7).has(1, 29); }

}  // namespace

bool has_ssse3 = ask_for_ssse3();
bool has_sha = ask_for_sha();

}  // namespace ruvo::texto

#endif
