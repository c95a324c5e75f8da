# Reads the catalogue of errors and writes what is made from it.
#
#   cmake -D catalogue=include/ruvo/exc_catalogue.hpp [-D mc=FILE] [-D markdown=FILE [-D check=ON]] -P errors.cmake
#
# mc is the source of the message table (UTF-8), markdown the list for readers; with check, markdown is compared with
# the file instead of written.
cmake_minimum_required(VERSION 3.25)

set(quoted "L\"([^\"\\\\|]*)\"")
set(word "([A-Za-z_0-9]+)")

# error(CLASS BASE RANGE NUMBER TEXT): a row; `rows` are "CODE INDEX", in which they sort.
set(rows "")
function(error class base range number text)
  set(facility 3001)
  if(base STREQUAL "ruvo::exception")
    set(facility 3000)
  endif()
  math(EXPR code "0xE0000000 | ${facility} << 16 | (${range} * 1000 + ${number})" OUTPUT_FORMAT HEXADECIMAL)
  string(SUBSTRING ${code} 2 -1 code)
  string(TOUPPER ${code} code)
  list(LENGTH rows index)
  math(EXPR index "1000 + ${index}")
  foreach(field IN ITEMS class base range number text)
    set(${field}_${index} "${${field}}" PARENT_SCOPE)
  endforeach()
  set(rows ${rows} "${code} ${index}" PARENT_SCOPE)
endfunction()

# What a message is told comes where the text ends in a blank.
function(told text out)
  string(REPLACE "%" "%%" text "${text}")
  if(text MATCHES " $")
    string(APPEND text "%1")
  endif()
  set(${out} "${text}" PARENT_SCOPE)
endfunction()

# Takes the row apart: `pattern` has a group for each of the fields, which become variables.
macro(row pattern)
  if(NOT arguments MATCHES "^${pattern}$")
    message(FATAL_ERROR "${catalogue}: not understood in ${list}: ${line}")
  endif()
  set(group 0)
  foreach(field IN ITEMS ${ARGN})
    math(EXPR group "${group} + 1")
    set(row_${field} "${CMAKE_MATCH_${group}}")
  endforeach()
endmacro()

# What has a meaning in CMake's lists becomes a bar, which no text may have.
file(READ ${catalogue} lines)
string(REGEX REPLACE "[][;]" "|" lines "${lines}")
string(REGEX REPLACE "[ \\\r]*\n" ";" lines "${lines}")
set(list "")
foreach(line IN LISTS lines)
  if(line MATCHES "^#define KESTA_EXC_([A-Z_]+)\\(X\\)")
    set(list ${CMAKE_MATCH_1})
    continue()
  elseif(NOT line MATCHES "^ *X\\((.*)\\)$")
    continue()
  endif()
  set(arguments "${CMAKE_MATCH_1}")
  if(list STREQUAL "FAMILIES")
    row("${word}, ([0-9]+)" class range)
    set(range_of_${row_class} ${row_range})
  elseif(list MATCHES "^(GENERAL(_TOLD)?|HOOK)$")
    row("${word}, ([0-9]+), ${quoted}" class number text)
    told("${row_text}" text)
    if(row_class STREQUAL "Incorrect")
      set(row_class "exception::incorrect()")
    endif()
    error("${row_class}" ruvo::exception 0 ${row_number} "${text}")
  elseif(list STREQUAL "UNDETERMINED")
    row("${word}, ${quoted}" class text)
    told("${row_text}" text)
    error(${row_class} kesta::exception ${range_of_${row_class}} 1 "${text}")
  elseif(list MATCHES "^(PLAIN|FILE|NUMBERED)$")
    row("${word}, ${word}, ([0-9]+), ${quoted}" class family number text)
    told("${row_text}" text)
    error(${row_class} ${row_family} ${range_of_${row_family}} ${row_number} "${text}")
  elseif(list STREQUAL "NAMED")
    row("${word}, ${word}, ([0-9]+), ${quoted}, ${quoted}" class family number before after)
    told("${row_before}" before)
    told("${row_after}" after)
    error(${row_class} ${row_family} ${range_of_${row_family}} ${row_number} "${before}${after}")
  elseif(list STREQUAL "KNOT")
    row("${word}, ${word}, ([0-9]+), ${quoted}" class family number text)
    told("${row_text}" text)
    error(${row_class} ${row_family} ${range_of_${row_family}} ${row_number} "${text}:%1 en el nudo:%2")
  elseif(list STREQUAL "ACTION")
    row("${word}, ([0-9]+), ([0-9]+), ${quoted}" class range number text)
    told("${row_text}" text)
    error(${row_class} kesta::exception ${row_range} ${row_number} "${text}")
  elseif(list STREQUAL "CONSOLE")
    row("${word}, ([0-9]+), ${quoted}" class number text)
    told("${row_text}" text)
    error("${row_class}(${row_number})" kesta::exception ${range_of_${row_class}} ${row_number} "${text}")
  elseif(list MATCHES "^(MESSAGE|PLACES)$")
    row("${word}, ${word}, ([0-9]+)" class family number)
    error(${row_class} ${row_family} ${range_of_${row_family}} ${row_number} "${row_class}: %1")
  elseif(list STREQUAL "WINDOWS")
    row("${word}, ${word}, ([0-9]+)" class family number)
    error(${row_class} ${row_family} ${range_of_${row_family}} ${row_number} "${row_class}: %1 (%2: %3)")
  else()
    message(FATAL_ERROR "${catalogue}: the list ${list} is not known")
  endif()
endforeach()
list(SORT rows)

if(mc)
  # Where a number has two messages, the text gives both.
  set(codes "")
  foreach(entry IN LISTS rows)
    string(REGEX MATCH "(.*) (.*)" entry "${entry}")
    set(code ${CMAKE_MATCH_1})
    set(text "${text_${CMAKE_MATCH_2}}")
    if(code IN_LIST codes)
      string(APPEND message_${code} " / ${text}")
    else()
      list(APPEND codes ${code})
      set(message_${code} "${text}")
    endif()
  endforeach()

  # The customer bit is set by an option of the message compiler. %0 leaves out the line end.
  string(CONCAT source
    "SeverityNames=(Error=0x3)\n"
    "FacilityNames=(General=0xBB8 Modules=0xBB9)\n"
    "LanguageNames=(Spanish=0xC0A:errors)\n")
  foreach(code IN LISTS codes)
    math(EXPR number "0x${code} & 0xFFFF" OUTPUT_FORMAT HEXADECIMAL)
    set(facility Modules)
    if(code MATCHES "^EBB8")
      set(facility General)
    endif()
    string(APPEND source "\nMessageId=${number}\nSeverity=Error\nFacility=${facility}\nLanguage=Spanish\n"
      "${message_${code}}%0\n.\n")
  endforeach()
  file(WRITE ${mc} "${source}")
endif()

if(markdown)
  string(CONCAT page
    "# Error codes\n\n"
    "<!-- Made by cmake/errors.cmake from include/ruvo/exc_catalogue.hpp: the target errors_doc writes it anew. -->\n\n"
    "Every error is a `ruvo::exception`: a code, a message, a report. The code is laid out as an HRESULT: severity 3\n"
    "(bits 31 and 30), the customer bit 29, the facility (28 to 16: 3000 for the general errors, 3001 for those of the\n"
    "modules) and, in the low 16 bits, the range of the family * 1000 + the number within the range. Where a code stands\n"
    "for two classes, callers tell them apart by type; one class has two messages.\n\n"
    "`kesta-error CODE` prints what stands here of a code. The messages are in `kesta.dll` as a message table too:\n"
    "`FormatMessageW` with `FORMAT_MESSAGE_FROM_HMODULE`, the module and the code gives the message, without a line end.\n"
    "`%1`, `%2` and `%3` are texts that the caller passes, or that stay as they are with\n"
    "`FORMAT_MESSAGE_IGNORE_INSERTS`; `ruvo::exception` has them filled in. Where a code has two messages, the table gives\n"
    "both with ` / ` between them. Messages of the form `class: %1` are told by who throws; in the exception\n"
    "they stand without the class, and `(%2: %3)` are the number and the text of a Windows error.\n\n"
    "| class | code | | range | number | message | base class |\n"
    "|---|---|---|---|---|---|---|\n")
  foreach(entry IN LISTS rows)
    string(REGEX MATCH "(.*) (.*)" entry "${entry}")
    set(code ${CMAKE_MATCH_1})
    set(index ${CMAKE_MATCH_2})
    math(EXPR decimal "0x${code}")
    string(APPEND page "| `${class_${index}}` | 0x${code} | ${decimal} | ${range_${index}} | ${number_${index}} | "
      "${text_${index}} | `${base_${index}}` |\n")
  endforeach()
  if(NOT check)
    file(WRITE ${markdown} "${page}")
  else()
    set(is "")
    if(EXISTS ${markdown})
      file(READ ${markdown} is)
      string(REPLACE "\r\n" "\n" is "${is}")
    endif()
    if(NOT is STREQUAL page)
      message(FATAL_ERROR "${markdown} is not what the catalogue says: build the target errors_doc")
    endif()
  endif()
endif()
