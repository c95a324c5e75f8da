# Install, build the consumer from the installed package, run it; then look at what was installed.

set(prefix ${work}/prefix)
file(REMOVE_RECURSE ${work})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ECHO STDOUT COMMAND_ERROR_IS_FATAL ANY)
endfunction()

set(toolchain_argument "")
if(toolchain)
  set(toolchain_argument -D CMAKE_TOOLCHAIN_FILE=${toolchain})
endif()

run(${CMAKE_COMMAND} --install ${build} --config ${config} --prefix ${prefix})
run(${CMAKE_COMMAND} -S ${source} -B ${work}/build -G ${generator} ${toolchain_argument}
  -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_BUILD_TYPE=${config})
run(${CMAKE_COMMAND} --build ${work}/build --config ${config})
run(${CMAKE_CTEST_COMMAND} --test-dir ${work}/build -C ${config} --output-on-failure --no-tests=error)

file(GLOB top RELATIVE ${prefix} ${prefix}/*)
file(GLOB headers RELATIVE ${prefix}/include ${prefix}/include/*)
if(NOT top STREQUAL "bin;include;lib" OR NOT headers STREQUAL "ruvo")
  message(FATAL_ERROR "unexpected folders in the package: ${top}; include: ${headers}")
endif()
