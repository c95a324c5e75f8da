// SPDX-License-Identifier: BSL-1.0
#pragma once

// The library's only way to the system's headers.

#ifndef NOMINMAX
#  define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#  define WIN32_LEAN_AND_MEAN
#endif
#ifndef _WIN32_WINNT
#  define _WIN32_WINNT 0x0601
#endif

#include <windows.h>

// COM, the texts of security identifiers and the system's own calls, which the lean headers leave out.
#include <objbase.h>
#include <sddl.h>
#include <winternl.h>
