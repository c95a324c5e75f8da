// SPDX-License-Identifier: BSL-1.0

// The mark that says which programs this DLL serves.

#include <ruvo/api.hpp>

#if defined(KESTA_BUILDING)
void ruvo::abi::KESTA_DLL_FAMILY() {}
#endif
