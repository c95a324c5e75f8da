// The mark that tells which programs this DLL serves.

#include <ruvo/api.hpp>

#if defined(KESTA_BUILDING)
void ruvo::abi::KESTA_DLL_FAMILY() {}
#endif
