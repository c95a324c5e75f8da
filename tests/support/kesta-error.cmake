# Runs kesta-error on codes of every kind, and compares its exit code and lines with what is known of them.
#
#   cmake -D program=FILE -D emulator=FILE -P kesta-error.cmake

# kesta_error(EXIT_CODE ARGUMENTS LINES...): the lines are regular expressions, in the order in which they come.
# They stand in the output, or after bad arguments (2) among the errors, and the output is empty.
function(kesta_error exit_code arguments)
  separate_arguments(arguments UNIX_COMMAND "${arguments}")
  execute_process(COMMAND ${emulator} ${program} ${arguments}
    RESULT_VARIABLE result OUTPUT_VARIABLE shown ERROR_VARIABLE errors ENCODING UTF-8)
  if(exit_code EQUAL 2 AND "${shown}" STREQUAL "")
    set(shown "${errors}")
  elseif(exit_code EQUAL 2)
    message(SEND_ERROR "kesta-error ${arguments}: wrote ${shown}")
  endif()
  string(REPLACE "\r\n" "\n" shown "${shown}")
  list(JOIN ARGN "\n([^\n]*\n)*" wanted)
  if(NOT result EQUAL exit_code OR NOT "\n${shown}" MATCHES "\n${wanted}\n")
    message(SEND_ERROR "kesta-error ${arguments}: ended with ${result}, wanted ${exit_code} and\n${wanted}\n${shown}")
  endif()
endfunction()

# The same code in its spellings; all parts of it.
foreach(spelling IN ITEMS 0xEBB903E9 0Xebb903e9 EBB903E9 ebb903e9 3954770921 -340196375 1.1)
  kesta_error(0 ${spelling} "RAW: 0xEBB903E9 \\(3954770921\\)" "CODE: 1" "RANGE: 1 \\(FileException\\)"
    "FACILITY: 3001" "CUSTOMER: 1" "SEVERITY: 3" "CLASS: fileNotFound : FileException"
    "MESSAGE: Archivo o directorio no encontrado: %1")
endforeach()

# One row of each kind of message.
kesta_error(0 0.4 "RANGE: 0" "FACILITY: 3000" "CLASS: NullPointer : ruvo::exception"
  "MESSAGE: Puntero nulo. Notifique este problema. Reinicie el programa.")
kesta_error(0 0.14 "CLASS: EmptyArgument : ruvo::exception" "MESSAGE: Argumento vacío: %1")
kesta_error(0 0.1 "SEVERITY: 3\nMESSAGE: Error indeterminado")
kesta_error(0 3.1 "CLASS: CalendarException : kesta::exception" "MESSAGE: Error indeterminado de calendario")
kesta_error(0 11.1 "CLASS: UnKnowInterface : InterfaceException" "MESSAGE: Módulo %1 desconocido")
kesta_error(0 7.2 "CLASS: xmlCachePointer : XMLException" "MESSAGE: .* caracter:%1 en el nudo:%2")
kesta_error(0 14.3 "CLASS: invocaError : dotnetException" "MESSAGE: invocaError: %1")
kesta_error(0 4.6 "CLASS: winregRead : winregistryException" "MESSAGE: winregRead: %1 \\(%2: %3\\)")

# Two classes with one code; codes of the library that no class has; success.
kesta_error(0 6.2 "CLASS: jsonEmptyKey : JSONException" "CLASS: jsonFalseKnot : JSONException")
kesta_error(0 13.2 "CLASS: actionNotFound : kesta::exception" "CLASS: xmlLoadException : xmlException")
kesta_error(1 1.999 "CODE: 999" "RANGE: 1 \\(FileException\\)" "SEVERITY: 3\nMESSAGE: ninguna clase tiene este código")
kesta_error(1 15.1 "RANGE: 15" "SEVERITY: 3\nMESSAGE: ninguna clase tiene este código")
kesta_error(0 5.0 "RANGE: 5 \\(ZipException\\)" "SEVERITY: 3\nMESSAGE: correcto: el número es 0")

# Eight digits are decimal.
kesta_error(1 80070005 "RAW: 0x04C5C575 \\(80070005\\)")

# The system's codes: its text is in the user's language.
kesta_error(0 2 "RAW: 0x00000002 \\(2\\)" "FACILITY: 0" "CUSTOMER: 0" "SEVERITY: 0" "SYSTEM: [^\n]+")
kesta_error(0 0x80070005 "FACILITY: 7" "SEVERITY: 2" "SYSTEM: [^\n]+")
kesta_error(1 0xFFFFFFFF "RAW: 0xFFFFFFFF \\(4294967295\\)" "SYSTEM: el sistema no conoce este código")

foreach(bad IN ITEMS "" "1.1 1.2" x 0x 0x123456789 4294967296 -2147483649 - +1 1. .1 1.1.1 1.1000 66.0 65.999 "' 1'" 12a BB903E9 EBB903E9A 1EBB903G 99999999999999999999)
  kesta_error(2 "${bad}" "uso: kesta-error VALOR")
endforeach()
