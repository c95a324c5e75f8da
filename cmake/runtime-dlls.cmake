# SPDX-License-Identifier: BSL-1.0
# The GCC runtime that kesta.dll and its users share: stripped copies beside the programs and in the package.
# (install(RUNTIME_DEPENDENCIES) does not work when cross-compiling.)
set(kesta_runtime_dlls libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
set(copies "")
foreach(dll IN LISTS kesta_runtime_dlls)
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
    OUTPUT_VARIABLE original OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT IS_ABSOLUTE "${original}")  # the bare name comes back when nothing is found
    find_program(original_${dll} ${dll} NO_CACHE)
    set(original ${original_${dll}})
  endif()
  if(NOT EXISTS "${original}")
    message(FATAL_ERROR "${dll} not found beside ${CMAKE_CXX_COMPILER}")
  endif()
  file(REAL_PATH ${original} original)
  set(copy ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${dll})
  add_custom_command(OUTPUT ${copy}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}
    COMMAND ${CMAKE_STRIP} -o ${copy} ${original}
    DEPENDS ${original} COMMENT "Stripping ${dll}" VERBATIM)
  list(APPEND copies ${copy})
endforeach()
add_custom_target(kesta_runtime ALL DEPENDS ${copies})
add_dependencies(kesta kesta_runtime)
install(PROGRAMS ${copies} DESTINATION bin)
