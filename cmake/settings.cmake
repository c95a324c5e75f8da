# SPDX-License-Identifier: BSL-1.0
# Compiler settings, in one place.

# All targets of the project, programs too.
function(kesta_settings target)
  target_compile_features(${target} PUBLIC cxx_std_20)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
  if(MSVC)
    # 4251, 4275: private standard members and std::exception as a base of exported classes; the DLL and its
    # users share one C++ runtime, so this is sound.
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8 /Zc:__cplusplus /wd4251 /wd4275
      $<$<BOOL:${KESTA_WERROR}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow
      -Wno-sign-conversion -Wnon-virtual-dtor -Wextra-semi -Wundef $<$<BOOL:${KESTA_WERROR}>:-Werror>>)
    # Index and null checks of the standard library, in release builds too: they cost nothing that can be measured.
    target_compile_definitions(${target} PRIVATE _GLIBCXX_ASSERTIONS)
  endif()
endfunction()

# The library in its two forms.
function(kesta_library_settings target)
  kesta_settings(${target})
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/src)
endfunction()

# kesta_unity(TARGET MOST): the sources of a folder are compiled MOST at a time, in half of the time that they take alone.
# Two of them that give one name to different things do not compile then. A name that hides one of another source is no
# matter.
function(kesta_unity target most)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    cmake_path(GET source PARENT_PATH folder)
    cmake_path(GET folder FILENAME group)
    if(source MATCHES "[.]cpp$" AND NOT group STREQUAL "base")  # whose encoders have constants of one name
      math(EXPR count_${group} "${count_${group}} + 1")
      math(EXPR part "(${count_${group}} - 1) / ${most}")
      set_source_files_properties(${source} TARGET_DIRECTORY ${target} PROPERTIES UNITY_GROUP ${group}_${part})
    endif()
  endforeach()
  target_compile_options(${target} PRIVATE -Wno-shadow)
endfunction()

# A program of the project, linked with `library`.
function(kesta_program target library)
  kesta_settings(${target})
  target_link_libraries(${target} PRIVATE ${library})
  get_target_property(sources ${target} SOURCES)
  foreach(source IN LISTS sources)
    get_source_file_property(generated ${source} GENERATED)
    if(MINGW AND source MATCHES "\\.cpp$" AND NOT generated)
      file(STRINGS ${source} wide_main REGEX "^int wmain\\(")
      if(wide_main)
        target_link_options(${target} PRIVATE -municode)
      endif()
    endif()
  endforeach()
endfunction()
