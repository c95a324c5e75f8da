// SPDX-License-Identifier: BSL-1.0

// Linked into every test program: a crash says what and where, and ends with an exit code of its own (70).
// Without it a program that overflows its stack ends in silence, with exit code 1; where a large frame met
// the end of the stack, Wine has no room to call the handler, and it still does.
//
// addr2line -f -C -e PROGRAM ADDRESS gives function and line of an address inside the program.

#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <cstddef>

#include <windows.h>

namespace {

constexpr UINT crash_exit_code = 70;

// After an overflow hardly any stack is left: the line is put together in static memory, without the C
// library.
char line[160];
std::size_t length = 0;

void add(const char* text) {
  while (*text && length < sizeof line) line[length++] = *text++;
}

void add_hexadecimal(ULONG_PTR number) {
  int shift = static_cast<int>(sizeof number) * 8 - 4;
  while (shift > 0 && number >> shift == 0) shift -= 4;
  for (; shift >= 0 && length < sizeof line; shift -= 4)
    line[length++] = "0123456789abcdef"[number >> shift & 0xF];
}

const char* name_of(DWORD code) {
  if (code == EXCEPTION_ACCESS_VIOLATION) return "access violation";
  if (code == EXCEPTION_STACK_OVERFLOW) return "stack overflow";
  if (code == EXCEPTION_ILLEGAL_INSTRUCTION) return "illegal instruction";
  return "exception";
}

LONG CALLBACK on_exception(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  // Errors of the system only: what C++ throws and what goes to debuggers has other leading bits.
  if (record.ExceptionCode >> 28 != 0xC) return EXCEPTION_CONTINUE_SEARCH;

  add("\nCRASH: ");
  add(name_of(record.ExceptionCode));
  add(" (0x");
  add_hexadecimal(record.ExceptionCode);
  add(") at 0x");
  add_hexadecimal(reinterpret_cast<ULONG_PTR>(record.ExceptionAddress));
  if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters > 1) {
    add(record.ExceptionInformation[0] == 0 ? ", reading 0x" : ", writing 0x");
    add_hexadecimal(record.ExceptionInformation[1]);
  }
  add("\n");
  DWORD written;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line, static_cast<DWORD>(length), &written, nullptr);
  TerminateProcess(GetCurrentProcess(), crash_exit_code);
  return EXCEPTION_CONTINUE_SEARCH;
}

[[maybe_unused]] const void* const installed = AddVectoredExceptionHandler(1, on_exception);

}  // namespace
