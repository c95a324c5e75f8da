# SPDX-License-Identifier: BSL-1.0
# kesta_visualizers(<target> <file>): what links the target gets the file with it, for the debugger of Visual Studio: as a
# part of its project, or in its PDB where there is none.
function(kesta_visualizers target file)
  if(NOT MSVC)
    return()
  endif()
  if(CMAKE_GENERATOR MATCHES "Visual Studio")
    target_sources(${target} INTERFACE $<BUILD_INTERFACE:${file}>)
  else()
    target_link_options(${target} INTERFACE $<BUILD_INTERFACE:/NATVIS:${file}>)
  endif()
endfunction()
