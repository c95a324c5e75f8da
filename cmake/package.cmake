# SPDX-License-Identifier: BSL-1.0
# What goes into the package beside the library, and the package as one archive: cpack in the build folder, or
# tools/package.
include(CMakePackageConfigHelpers)
set(kesta_package lib/cmake/kesta)
set(kesta_docs share/doc/kesta)

# --- documents
install(FILES README.md LICENSE DESTINATION ${kesta_docs})
install(DIRECTORY docs DESTINATION ${kesta_docs} FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN site EXCLUDE)

# --- the licences of zlib, which is in kesta.dll, and of the runtime DLLs: Debian's, or those that came with the compiler
# license(NAME FILE...): installs the first of the files that is there.
function(license name)
  foreach(file IN LISTS ARGN)
    if(EXISTS ${file})
      install(FILES ${file} DESTINATION ${kesta_docs}/licenses RENAME ${name})
      return()
    endif()
  endforeach()
  message(WARNING "the package will lack ${name}: none of ${ARGN} is there")
endfunction()

set(kesta_toolchain ${CMAKE_CXX_COMPILER_ID})  # the family and its version, for names
if(MINGW)
  set(debian /usr/share/doc)
  cmake_path(GET CMAKE_CXX_COMPILER PARENT_PATH with_compiler)
  set(with_compiler ${with_compiler}/../share/licenses)
  license(zlib.txt ${debian}/libz-mingw-w64-dev/copyright ${with_compiler}/zlib/LICENSE)
  license(gcc-runtime.txt ${debian}/gcc-mingw-w64-x86-64-posix-runtime/copyright ${with_compiler}/gcc-libs/RUNTIME.LIBRARY.EXCEPTION)
  license(winpthreads.txt ${debian}/mingw-w64-x86-64-dev/copyright ${with_compiler}/winpthreads/COPYING)
  license(GPL-3.txt /usr/share/common-licenses/GPL-3 ${with_compiler}/gcc-libs/COPYING3)

  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -v ERROR_VARIABLE version OUTPUT_QUIET)
  set(threads "")
  if(version MATCHES "Thread model: ([a-z0-9]+)")
    set(threads -${CMAKE_MATCH_1})
  endif()
  string(REGEX MATCH "^[0-9]+" major ${CMAKE_CXX_COMPILER_VERSION})
  string(REPLACE GNU gcc kesta_toolchain mingw-${CMAKE_CXX_COMPILER_ID}${major}${threads})
elseif(MSVC)
  set(kesta_toolchain msvc${MSVC_TOOLSET_VERSION})
endif()
if(CMAKE_BUILD_TYPE AND NOT CMAKE_BUILD_TYPE STREQUAL "Release")
  string(APPEND kesta_toolchain -${CMAKE_BUILD_TYPE})
endif()
string(TOLOWER ${kesta_toolchain} kesta_toolchain)

# --- for users' builds
set(kesta_compiler_id ${CMAKE_CXX_COMPILER_ID})
configure_package_config_file(cmake/kesta-config.cmake.in kesta-config.cmake INSTALL_DESTINATION ${kesta_package}
  NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(kesta-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/kesta-config.cmake ${PROJECT_BINARY_DIR}/kesta-config-version.cmake
  cmake/kesta-visualizers.cmake cmake/kesta-manifest.cmake packaging/app.manifest.in DESTINATION ${kesta_package})
if(MINGW AND CMAKE_HOST_UNIX)  # to cross-compile the program and to run it
  install(FILES cmake/mingw-w64.cmake DESTINATION ${kesta_package})
  install(PROGRAMS cmake/wine-run.sh DESTINATION ${kesta_package})
endif()
configure_file(packaging/kesta.pc.in kesta.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/kesta.pc DESTINATION lib/pkgconfig)

# --- the archive
if(PROJECT_IS_TOP_LEVEL)
  set(CPACK_GENERATOR ZIP)
  set(CPACK_PACKAGE_FILE_NAME kesta-${PROJECT_VERSION}-win64-${kesta_toolchain})
  set(CPACK_PACKAGE_CHECKSUM SHA256)
  set(CPACK_VERBATIM_VARIABLES ON)
  include(CPack)
endif()
