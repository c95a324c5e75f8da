#pragma once

// The export macro of kesta.dll.
//
// KESTA_BUILDING is defined only while the DLL itself is compiled; KESTA_STATIC
// by programs that link the objects directly (the project's own checkers).

#if defined(KESTA_STATIC)
#  define KESTA_API
#elif defined(KESTA_BUILDING)
#  define KESTA_API __declspec(dllexport)
#else
#  define KESTA_API __declspec(dllimport)
#endif
