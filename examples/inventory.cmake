# SPDX-License-Identifier: BSL-1.0
# Makes a small tree, runs the inventory over it in the ways that its arguments offer, and reads what it wrote with
# CMake's own JSON parser. Of the files' fingerprints the values are known.

file(REMOVE_RECURSE ${work})
file(WRITE ${work}/tree/foobar.txt foobar)  # FNV-1a of 64 bits has published values
file(WRITE ${work}/tree/vacío.txt "")
file(WRITE ${work}/tree/sub/a.txt a)
string(REPEAT "0123456789" 300000 long)
file(WRITE ${work}/tree/sub/largo.txt ${long})
foreach(n RANGE 1 300)
  file(WRITE ${work}/many/${n}.txt ${n})
endforeach()

# Runs it, checks the exit code, and that both documents have as many files as the JSON says.
function(inventory folder code)
  execute_process(COMMAND ${emulator} ${program} ${folder} out.json out.xml ${ARGN}
    WORKING_DIRECTORY ${work} RESULT_VARIABLE result OUTPUT_VARIABLE shown)
  if(NOT result EQUAL code OR shown MATCHES "\r\\[")
    message(FATAL_ERROR "${folder}: ended with ${result} instead of ${code}, or drew a bar:\n${shown}")
  endif()
  file(READ ${work}/out.json json)
  file(READ ${work}/out.xml xml)
  string(JSON files GET ${json} inventario ficheros)
  string(JSON entries LENGTH ${json} inventario entradas)
  string(REGEX MATCHALL "<fichero>" elements "${xml}")
  list(LENGTH elements elements)
  if(NOT elements EQUAL files)
    message(FATAL_ERROR "${folder}: ${files} files in JSON, ${elements} in XML")
  endif()
  string(JSON complete GET ${json} inventario completo)
  foreach(name IN ITEMS json xml files entries complete)
    set(${name} "${${name}}" PARENT_SCOPE)
  endforeach()
endfunction()

function(expect what is wanted)
  if(NOT is STREQUAL wanted)
    message(FATAL_ERROR "${what}: ${is} instead of ${wanted}")
  endif()
endfunction()

inventory(tree 0)
expect("entries" ${entries} 4)
expect("complete" ${complete} ON)
set(index 0)
foreach(known IN ITEMS foobar.txt|6|85944171f73967e8 sub/a.txt|1|af63dc4c8601ec8c
                       sub/largo.txt|3000000|9dd2c3a7a9039ca5 vacío.txt|0|cbf29ce484222325)
  string(JSON entry GET ${json} inventario entradas ${index} fichero)
  string(JSON path GET ${entry} ruta)
  string(JSON bytes GET ${entry} bytes)
  string(JSON hash GET ${entry} fnv1a)
  expect("entry ${index}" "${path}|${bytes}|${hash}" "${known}")
  if(NOT xml MATCHES "<ruta>${path}</ruta>[^a-z]*<bytes>${bytes}</bytes>[^a-z]*<fnv1a>${hash}</fnv1a>")
    message(FATAL_ERROR "${path} is not the same in XML")
  endif()
  math(EXPR index "${index} + 1")
endforeach()

inventory(nowhere 1)
string(JSON failure GET ${json} inventario entradas 0 carpeta fallo)
if(NOT failure MATCHES "nowhere" OR NOT xml MATCHES "<fallo>[^<]*nowhere")
  message(FATAL_ERROR "a folder that is missing: ${failure}")
endif()

inventory(many 3 --cancel-after 5)
expect("complete after cancelling" ${complete} OFF)
if(files LESS 5 OR files EQUAL 300 OR NOT entries EQUAL files)
  message(FATAL_ERROR "canceled after 5 files with ${files}, ${entries} entries")
endif()

inventory(many 0 --cancel-after 301)
expect("files" ${files} 300)
