# SPDX-License-Identifier: BSL-1.0
# Cross-compiling for Windows x86-64 with Debian's mingw-w64 (posix threads); programs, those of ctest too, run under
# Wine. Stands in kesta's sources, and in its package beside the CMake files for users' projects.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(kesta_triple x86_64-w64-mingw32)
find_program(CMAKE_CXX_COMPILER NAMES ${kesta_triple}-g++-posix REQUIRED)
find_program(CMAKE_C_COMPILER NAMES ${kesta_triple}-gcc-posix REQUIRED)
find_program(CMAKE_RC_COMPILER NAMES ${kesta_triple}-windres REQUIRED)

set(CMAKE_FIND_ROOT_PATH /usr/${kesta_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)  # a package installed under CMAKE_PREFIX_PATH is found

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
