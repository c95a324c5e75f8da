# SPDX-License-Identifier: BSL-1.0
# Runs kesta-error on codes of every kind, and compares its exit code and lines with what is known of them.
#
#   cmake -D program=FILE -D emulator=FILE -P kesta-error.cmake

# code(NAME LINES...): adds to the codes that the next start tells. The lines are regular expressions, in the order in
# which they come in the part of the output that is the code's.
function(code name)
  set(names ${names} "${name}" PARENT_SCOPE)
  list(JOIN ARGN "\n([^\n]*\n)*" lines)
  set(lines_${name} "${lines}" PARENT_SCOPE)
endfunction()

# started(ARGUMENTS...): sets result, shown and errors. Under Wine a start ends with 1 now and then before the program
# begins, and says nothing, which the program itself never does: then once more.
function(started)
  foreach(attempt RANGE 1)
    execute_process(COMMAND ${emulator} ${program} ${ARGN}
      RESULT_VARIABLE result OUTPUT_VARIABLE shown ERROR_VARIABLE errors ENCODING UTF-8)
    if(NOT "${result}${shown}${errors}" STREQUAL "1")
      break()
    endif()
  endforeach()
  set(result ${result} PARENT_SCOPE)
  foreach(text IN ITEMS shown errors)
    string(REPLACE "\r\n" "\n" ${text} "${${text}}")
    set(${text} "${${text}}" PARENT_SCOPE)
  endforeach()
endfunction()

# told(EXIT_CODE): starts the program with the codes so far.
function(told exit_code)
  started(${names})
  if(NOT result EQUAL exit_code)
    message(SEND_ERROR "kesta-error ${names}: ended with ${result}, wanted ${exit_code}\n${errors}")
  endif()
  string(REPLACE "\n\n" "\n;" parts "${shown}")
  foreach(name part IN ZIP_LISTS names parts)
    if(NOT "\n${part}" MATCHES "\n${lines_${name}}\n")
      message(SEND_ERROR "kesta-error ${name}: wanted\n${lines_${name}}\n\n${part}")
    endif()
  endforeach()
  set(names "" PARENT_SCOPE)
endfunction()

# The same code in its spellings; all parts of it.
foreach(spelling IN ITEMS 0xEBB903E9 0Xebb903e9 EBB903E9 ebb903e9 3954770921 -340196375 1.1)
  code(${spelling} "RAW: 0xEBB903E9 \\(3954770921\\)" "CODE: 1" "RANGE: 1 \\(FileException\\)"
    "FACILITY: 3001" "CUSTOMER: 1" "SEVERITY: 3" "CLASS: fileNotFound : FileException"
    "MESSAGE: Archivo o directorio no encontrado: %1")
endforeach()

# One row of each kind of message.
code(0.4 "RANGE: 0" "FACILITY: 3000" "CLASS: NullPointer : ruvo::exception"
  "MESSAGE: Puntero nulo. Notifique este problema. Reinicie el programa.")
code(0.14 "CLASS: EmptyArgument : ruvo::exception" "MESSAGE: Argumento vacío: %1")
code(0.1 "SEVERITY: 3\nMESSAGE: Error indeterminado")
code(3.1 "CLASS: CalendarException : kesta::exception" "MESSAGE: Error indeterminado de calendario")
code(11.1 "CLASS: UnKnowInterface : InterfaceException" "MESSAGE: Módulo %1 desconocido")
code(7.2 "CLASS: xmlCachePointer : XMLException" "MESSAGE: .* caracter:%1 en el nudo:%2")
code(14.3 "CLASS: invocaError : dotnetException" "MESSAGE: invocaError: %1")
code(4.6 "CLASS: winregRead : winregistryException" "MESSAGE: winregRead: %1 \\(%2: %3\\)")

# Two classes with one code; success; the system's codes, whose text is in the user's language.
code(6.2 "CLASS: jsonEmptyKey : JSONException" "CLASS: jsonFalseKnot : JSONException")
code(13.2 "CLASS: actionNotFound : kesta::exception" "CLASS: xmlLoadException : xmlException")
code(5.0 "RANGE: 5 \\(ZipException\\)" "SEVERITY: 3\nMESSAGE: correcto: el número es 0")
code(2 "RAW: 0x00000002 \\(2\\)" "FACILITY: 0" "CUSTOMER: 0" "SEVERITY: 0" "SYSTEM: [^\n]+")
code(0x80070005 "FACILITY: 7" "SEVERITY: 2" "SYSTEM: [^\n]+")
told(0)

# Codes of the library that no class has; eight digits are decimal; what the system does not know.
code(1.999 "CODE: 999" "RANGE: 1 \\(FileException\\)" "SEVERITY: 3\nMESSAGE: ninguna clase tiene este código")
code(15.1 "RANGE: 15" "SEVERITY: 3\nMESSAGE: ninguna clase tiene este código")
code(80070005 "RAW: 0x04C5C575 \\(80070005\\)")
code(0xFFFFFFFF "RAW: 0xFFFFFFFF \\(4294967295\\)" "SYSTEM: el sistema no conoce este código")
code(0.4 "CODE: 4")
told(1)

# What is no code is named, each in its turn; a code beside it is told.
set(bad x 0x 0x123456789 4294967296 -2147483649 - +1 1. .1 1.1.1 1.1000 66.0 65.999 " 1" 12a BB903E9 EBB903E9A
  1EBB903G 99999999999999999999)
foreach(arguments IN ITEMS "" "${bad}")
  set(codes "")
  if(arguments)
    set(codes 1.1)
  endif()
  started(${arguments} ${codes})
  list(TRANSFORM arguments REPLACE "(.+)" "kesta-error: '\\1' no es un VALOR\n" OUTPUT_VARIABLE wanted)
  list(JOIN wanted "" wanted)
  string(FIND "${errors}" "${wanted}uso: kesta-error VALOR" at)
  string(REGEX REPLACE "^.*RANGE: ([0-9]+).*$" "\\1.1" told "${shown}")
  if(NOT result EQUAL 2 OR NOT at EQUAL 0 OR NOT "${told}" STREQUAL "${codes}")
    message(SEND_ERROR "kesta-error ${arguments} ${codes}: ended with ${result}\n${shown}\n${errors}")
  endif()
endforeach()
