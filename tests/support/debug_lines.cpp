// SPDX-License-Identifier: BSL-1.0
#include "support/debug_lines.hpp"

#ifdef _WIN32

#  ifndef NOMINMAX
#    define NOMINMAX
#  endif
#  include <mutex>

#  include <windows.h>

namespace {

// The system calls debuggers by raising exceptions, first with the wide text and, unless that was taken, with
// the narrow one.
constexpr DWORD wide_text = 0x4001000A, narrow_text = 0x40010006;

std::mutex guard;
std::vector<std::string> seen;
void* handler = nullptr;

LONG CALLBACK on_exception(EXCEPTION_POINTERS* pointers) {
  const EXCEPTION_RECORD& record = *pointers->ExceptionRecord;
  if (record.ExceptionCode != narrow_text && record.ExceptionCode != wide_text)
    return EXCEPTION_CONTINUE_SEARCH;
  if (record.ExceptionCode == narrow_text && record.NumberParameters >= 2) {
    const std::lock_guard lock(guard);
    seen.emplace_back(reinterpret_cast<const char*>(record.ExceptionInformation[1]));
  }
  return EXCEPTION_CONTINUE_SEARCH;
}

}  // namespace

const bool debug_lines::works = true;

debug_lines::debug_lines() {
  seen.clear();
  handler = AddVectoredExceptionHandler(1, on_exception);
}

debug_lines::~debug_lines() { RemoveVectoredExceptionHandler(handler); }

std::vector<std::string> debug_lines::lines() const {
  const std::lock_guard lock(guard);
  return seen;
}

#else

const bool debug_lines::works = false;
debug_lines::debug_lines() = default;
debug_lines::~debug_lines() = default;
std::vector<std::string> debug_lines::lines() const { return {}; }

#endif
