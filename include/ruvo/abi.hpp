// SPDX-License-Identifier: BSL-1.0
#pragma once

// A program and kesta.dll share classes, so both come from one family of compilers with one C++ runtime.
//
// The DLL exports a function whose name is that of its family, and this header makes each module that uses
// the DLL refer to the function of its own. Where they differ the linker misses that name; with another DLL
// in place, Windows does when the program starts. It costs a pointer a module.

#if !defined(KESTA_STATIC)

#  include <memory>  // brings the macros by which the standard library and its threads are recognised

#  if !defined(_WIN64)
#    error "kesta.dll serves 64-bit Windows programs only"
#  endif

#  if defined(_MSC_VER) && defined(_DEBUG)
#    define KESTA_DLL_FAMILY kesta_dll_serves_msvc_debug_v2
#    define KESTA_DLL_FAMILY_TEXT "kesta_dll_serves_msvc_debug_v2"
#  elif defined(_MSC_VER)
#    define KESTA_DLL_FAMILY kesta_dll_serves_msvc_release_v2
#    define KESTA_DLL_FAMILY_TEXT "kesta_dll_serves_msvc_release_v2"
#  elif defined(_LIBCPP_VERSION)
#    define KESTA_DLL_FAMILY kesta_dll_serves_mingw_with_libcxx_v2
#  elif !defined(__GLIBCXX__)
#    error "kesta.dll: this C++ standard library is not known"
#  elif defined(_GLIBCXX_DEBUG)
#    define KESTA_DLL_FAMILY kesta_dll_serves_mingw_gcc_with_glibcxx_debug_v2
#  elif !_GLIBCXX_USE_CXX11_ABI
#    define KESTA_DLL_FAMILY kesta_dll_serves_mingw_gcc_with_old_strings_v2
#  elif !defined(_GLIBCXX_GCC_GTHR_POSIX_H)
#    error "kesta.dll needs mingw-w64 with posix threads: on Debian, x86_64-w64-mingw32-g++-posix"
#  else
#    define KESTA_DLL_FAMILY kesta_dll_serves_mingw_gcc_posix_v2
#  endif

namespace ruvo::abi {

#  if defined(KESTA_BUILDING)
__declspec(dllexport) void KESTA_DLL_FAMILY();
#  elif defined(_MSC_VER)
void KESTA_DLL_FAMILY();
#    pragma comment(linker, "/include:?" KESTA_DLL_FAMILY_TEXT "@abi@ruvo@@YAXXZ")
#  else
// Without dllimport: the address of the import library's stub is a constant, so nothing runs at start.
void KESTA_DLL_FAMILY();
[[gnu::used]] inline void (*const family_of_this_module)() = &KESTA_DLL_FAMILY;
#  endif

}  // namespace ruvo::abi

#endif
