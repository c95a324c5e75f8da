// SPDX-License-Identifier: BSL-1.0
#pragma once

#if defined(_MSVC_LANG) ? _MSVC_LANG < 202002L : __cplusplus < 202002L
#  error "kesta needs C++20: -std=c++20, or /std:c++20 for Visual Studio"
#  include <kesta/needs/C++20>  // there is none: what is missing stops a compiler, an #error does not
#endif

#include <ruvo/abi.hpp>

// The export macro of kesta.dll.
//
// KESTA_BUILDING is defined only while the DLL itself is compiled; KESTA_STATIC
// by programs that link the objects directly (the project's own checkers).
//
// Templates that the DLL instantiates carry KESTA_TEMPLATE_DECL where the header declares the instantiation
// and KESTA_TEMPLATE_DEF where a source makes it: GCC exports by the first, Visual Studio by the second.

#if defined(KESTA_STATIC)
#  define KESTA_API
#  define KESTA_TEMPLATE_DECL
#  define KESTA_TEMPLATE_DEF
#elif defined(KESTA_BUILDING)
#  define KESTA_API __declspec(dllexport)
#  if defined(_MSC_VER)
#    define KESTA_TEMPLATE_DECL
#    define KESTA_TEMPLATE_DEF __declspec(dllexport)
#  else
#    define KESTA_TEMPLATE_DECL __declspec(dllexport)
#    define KESTA_TEMPLATE_DEF
#  endif
#else
#  define KESTA_API __declspec(dllimport)
#  define KESTA_TEMPLATE_DECL __declspec(dllimport)
#  define KESTA_TEMPLATE_DEF
#endif
