// Linked into every test program: a crash says what and where, and ends with an exit code of its own (70).
// Without it a program that overflows its stack ends in silence.
//
// addr2line -f -C -e PROGRAM ADDRESS gives function and line of an address inside the program.

#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <windows.h>

#include <cstdio>

namespace {

constexpr UINT crash_exit_code = 70;

const char* name_of(DWORD code) {
  switch (code) {
    case EXCEPTION_ACCESS_VIOLATION: return "access violation";
    case EXCEPTION_STACK_OVERFLOW: return "stack overflow";
    case EXCEPTION_ILLEGAL_INSTRUCTION: return "illegal instruction";
    case EXCEPTION_INT_DIVIDE_BY_ZERO: return "division by zero";
    default: return "exception";
  }
}

LONG CALLBACK on_exception(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  // Errors of the system only; what C++ throws and what debuggers are told has another severity or the
  // customer bit.
  if (record.ExceptionCode >> 28 != 0xC) return EXCEPTION_CONTINUE_SEARCH;

  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     static_cast<LPCWSTR>(record.ExceptionAddress), &module);
  std::fprintf(stderr, "\nCRASH: %s (%08lx) at %p, module loaded at %p\n", name_of(record.ExceptionCode),
               static_cast<unsigned long>(record.ExceptionCode), record.ExceptionAddress,
               static_cast<void*>(module));
  if (record.ExceptionCode == EXCEPTION_ACCESS_VIOLATION && record.NumberParameters > 1)
    std::fprintf(stderr, "       %s of %p\n", record.ExceptionInformation[0] == 0 ? "read" : "write",
                 reinterpret_cast<void*>(record.ExceptionInformation[1]));
  std::fflush(stderr);
  TerminateProcess(GetCurrentProcess(), crash_exit_code);
  return EXCEPTION_CONTINUE_SEARCH;
}

[[maybe_unused]] const void* const installed = AddVectoredExceptionHandler(1, on_exception);

}  // namespace
