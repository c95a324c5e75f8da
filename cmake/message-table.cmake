# SPDX-License-Identifier: BSL-1.0
# ${errors_bin}: the catalogue of errors as a message table, made by the message compiler of the toolchain.
# kesta.rc puts it into kesta.dll.
set(errors_mc ${PROJECT_BINARY_DIR}/errors.mc)
set(errors_bin ${PROJECT_BINARY_DIR}/errors.bin)

# Customer bit in all codes, Unicode in the table; .bin and a header, of which nobody has use, into the build folder.
set(flags -c -U -h ${PROJECT_BINARY_DIR} -r ${PROJECT_BINARY_DIR})
if(MINGW)
  find_program(KESTA_MC NAMES ${kesta_triple}-windmc windmc REQUIRED DOC "Message compiler")
  set(compile COMMAND ${KESTA_MC} ${flags} -C 65001 ${errors_mc})
else()
  # mc reads UTF-16, which CMake does not write. It is in the path that Visual Studio builds with.
  set(errors_utf_16 ${PROJECT_BINARY_DIR}/errors-utf-16.mc)
  set(compile
    COMMAND powershell -NoProfile -Command
      "[IO.File]::WriteAllText('${errors_utf_16}', [IO.File]::ReadAllText('${errors_mc}'), [Text.Encoding]::Unicode)"
    COMMAND mc ${flags} -u ${errors_utf_16})
endif()

add_custom_command(OUTPUT ${errors_bin}
  COMMAND ${CMAKE_COMMAND} -D catalogue=${PROJECT_SOURCE_DIR}/include/ruvo/exc_catalogue.hpp -D mc=${errors_mc}
    -P ${PROJECT_SOURCE_DIR}/cmake/errors.cmake
  ${compile}
  DEPENDS include/ruvo/exc_catalogue.hpp cmake/errors.cmake
  BYPRODUCTS ${errors_mc} COMMENT "Making the message table" VERBATIM)
set_source_files_properties(${PROJECT_BINARY_DIR}/kesta.rc PROPERTIES OBJECT_DEPENDS ${errors_bin})
