// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the fuzz targets share. Each target is one source with the entry point of libFuzzer; it is linked with
// libFuzzer, or with replay.cpp, which runs the kept corpus.

#include <ruvo/texto/encoding.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the program, which is how a finding is reported.
[[noreturn]] inline void fail(const char* what, const char* file, int line) {
  std::fprintf(stderr, "%s:%d: does not hold: %s\n", file, line, what);
  std::fflush(stderr);
  std::abort();
}

inline std::string narrow(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

/// UTF-16 from UTF-8, in which every malformed part stands for a lone surrogate.
inline std::wstring wide(const std::uint8_t* data, std::size_t size) {
  std::wstring text = ruvo::texto::to_utf_16(narrow(data, size));
  for (wchar_t& c : text)
    if (c == 0xFFFD) c = static_cast<wchar_t>(0xD83D);
  return text;
}

}  // namespace fuzz

#define FUZZ_CHECK(condition)                                     \
  do {                                                            \
    if (!(condition)) fuzz::fail(#condition, __FILE__, __LINE__); \
  } while (false)
