# SPDX-License-Identifier: BSL-1.0
# Reads the catalogue of errors and writes what is made from it.
#
#   cmake -D catalogue=include/ruvo/exc_catalogue.hpp [-D mc=FILE] [-D markdown=FILE [-D check=ON]] -P errors.cmake
#
# mc is the source of the message table (UTF-8). markdown is the page for readers, whose table is written anew below its
# head; with check it is compared instead.
cmake_minimum_required(VERSION 3.25)

# The customer bit is set by an option of the message compiler.
string(CONCAT source
  "SeverityNames=(Error=0x3)\n"
  "FacilityNames=(General=0xBB8 Modules=0xBB9)\n"
  "LanguageNames=(Spanish=0xC0A:errors)\n")
set(message_end "")
set(table "")
set(name "([A-Za-z_0-9:]+)")
set(digits "([0-9]+)")
set(code_before "")
file(STRINGS ${catalogue} rows REGEX "^KESTA_ERROR[(]" ENCODING UTF-8)
foreach(row IN LISTS rows)
  if(NOT row MATCHES "^KESTA_ERROR[(]${name}, ${name}, ${digits}, ${digits}, ${name}, L\"([^\"|\\]*)\"[)]$")
    message(FATAL_ERROR "${catalogue}: not understood: ${row}")
  endif()
  set(class "${CMAKE_MATCH_1}")
  set(base "${CMAKE_MATCH_2}")
  set(range "${CMAKE_MATCH_3}")
  set(number "${CMAKE_MATCH_4}")
  set(shape "${CMAKE_MATCH_5}")
  set(text "${CMAKE_MATCH_6}")
  if(text STREQUAL "")
    continue()  # a family that is no error of its own
  endif()
  set(facility Modules)
  set(high 0xEBB90000)
  if(base STREQUAL "ruvo::exception")
    set(facility General)
    set(high 0xEBB80000)
  endif()
  math(EXPR low "${range} * 1000 + ${number}" OUTPUT_FORMAT HEXADECIMAL)
  math(EXPR decimal "${high} | ${low}")
  math(EXPR code "${decimal}" OUTPUT_FORMAT HEXADECIMAL)
  string(TOUPPER "${code}" code)  # 0XEBB...
  string(REPLACE "X" "x" code "${code}")

  # Where a number has two messages, the text gives both. %0 leaves out the line end.
  if(code STREQUAL code_before)
    string(APPEND source " / ${text}")
  else()
    string(APPEND source "${message_end}\nMessageId=${low}\nSeverity=Error\nFacility=${facility}\n"
      "Language=Spanish\n${text}")
  endif()
  set(code_before ${code})
  set(message_end "%0\n.\n")

  if(class STREQUAL "Incorrect")
    set(class "exception::incorrect()")
  elseif(shape STREQUAL "place" AND base STREQUAL "kesta::exception")
    string(APPEND class "(${number})")
  endif()
  string(APPEND table "| `${class}` | ${code} | ${decimal} | ${range} | ${number} | ${text} | `${base}` |\n")
endforeach()

if(mc)
  file(WRITE ${mc} "${source}${message_end}")
endif()
if(markdown)
  file(READ ${markdown} page)
  string(REPLACE "\r\n" "\n" page "${page}")
  string(REGEX MATCH "^.*\n[|][-|]+\n" head "${page}")
  if(NOT check)
    file(WRITE ${markdown} "${head}${table}")
  elseif(NOT page STREQUAL "${head}${table}")
    message(FATAL_ERROR "${markdown} is not what the catalogue says: build the target errors_doc")
  endif()
endif()
