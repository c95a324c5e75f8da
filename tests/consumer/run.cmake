# SPDX-License-Identifier: BSL-1.0
# Install, build the consumer from the installed package, run its own ctest; then look at what was installed.

set(prefix ${work}/prefix)
file(REMOVE_RECURSE ${work})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

run(${CMAKE_COMMAND} --install ${build} --config ${config} --prefix ${prefix})
set(ENV{PKG_CONFIG_LIBDIR} ${prefix}/lib/pkgconfig)
set(options -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_BUILD_TYPE=${config})
if(cross)  # as the package's documents say: its own toolchain file, which knows how to run programs
  list(APPEND options --toolchain ${prefix}/lib/cmake/kesta/mingw-w64.cmake)
endif()
if(samples)
  list(APPEND options -D samples=${samples} -D support=${source}/../support -D gtest=${gtest}
    -D gtest_headers=${gtest_headers})
endif()
run(${CMAKE_COMMAND} -S ${source} -B ${work}/build -G ${generator} ${options})
run(${CMAKE_COMMAND} --build ${work}/build --config ${config})
run(${CMAKE_CTEST_COMMAND} --test-dir ${work}/build -C ${config} --output-on-failure --no-tests=error)

# The manifest is in the program.
file(GLOB_RECURSE program ${work}/build/consumer.exe)
file(STRINGS ${program} code_page REGEX "activeCodePage.*UTF-8")
if(NOT code_page)
  message(FATAL_ERROR "the program has no manifest that asks for UTF-8: ${program}")
endif()

# refused(TEXT COMMAND...): the command fails and says why.
function(refused text)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE said ERROR_VARIABLE said)
  string(REGEX REPLACE "[ \n]+" " " said "${said}")
  if(result EQUAL 0 OR NOT said MATCHES "${text}")
    message(FATAL_ERROR "not refused with '${text}' but (${result}): ${said}")
  endif()
endfunction()

# A project whose compiler is of another family is told so.
file(WRITE ${work}/other/CMakeLists.txt "cmake_minimum_required(VERSION 3.25)
project(other LANGUAGES NONE)
set(CMAKE_CXX_COMPILER_ID Other)
set(CMAKE_SIZEOF_VOID_P 8)
find_package(kesta 0.2 CONFIG REQUIRED PATHS ${prefix} NO_DEFAULT_PATH)
")
refused("serves programs for Windows built by .*compiler is 'Other'"
  ${CMAKE_COMMAND} -S ${work}/other -B ${work}/other/build -G ${generator})

# A program of another family is refused by the linker, and imports the name of its family, without which Windows does not start
# it. (Wine does.)
if(MINGW)
  file(WRITE ${work}/other.cpp "#include <ruvo/api.hpp>\nint main() {}\n")
  set(compile ${compiler} -std=c++20 -I${prefix}/include ${work}/other.cpp)
  set(library ${prefix}/lib/libkesta.dll.a)
  set(other_family kesta_dll_serves_mingw_gcc_with_glibcxx_debug)
  run(${compile} ${library} -o ${work}/build/same.exe)
  refused("undefined reference to .*${other_family}" ${compile} -D_GLIBCXX_DEBUG ${library} -o ${work}/other.exe)

  file(MAKE_DIRECTORY ${work}/start)
  file(WRITE ${work}/other_dll.cpp "#include <ruvo/api.hpp>\nvoid ruvo::abi::KESTA_DLL_FAMILY() {}\n")
  run(${compiler} -std=c++20 -shared -D_GLIBCXX_DEBUG -DKESTA_BUILDING -I${prefix}/include ${work}/other_dll.cpp
    -o ${work}/start/kesta.dll -Wl,--out-implib,${work}/start/libkesta.dll.a)
  run(${compile} -D_GLIBCXX_DEBUG ${work}/start/libkesta.dll.a -o ${work}/start/other.exe)
  execute_process(COMMAND ${objdump} -p ${work}/start/other.exe OUTPUT_VARIABLE imports COMMAND_ERROR_IS_FATAL ANY)
  if(NOT imports MATCHES "${other_family}")
    message(FATAL_ERROR "a program that refers to nothing of the DLL does not import its family")
  endif()
endif()

file(GLOB top RELATIVE ${prefix} ${prefix}/*)
file(GLOB headers RELATIVE ${prefix}/include ${prefix}/include/*)
file(GLOB shared RELATIVE ${prefix}/share ${prefix}/share/kesta/*)
if(NOT top STREQUAL "bin;include;lib;share" OR NOT headers STREQUAL "ruvo" OR NOT shared)
  message(FATAL_ERROR "unexpected folders in the package: ${top}; include: ${headers}; share: ${shared}")
endif()
