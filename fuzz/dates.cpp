// SPDX-License-Identifier: BSL-1.0

// Calendar text: the first line is the format, the rest the text. What was parsed and printed parses to what
// prints the same.

#include <ruvo/datetime.hpp>
#include <ruvo/exception.hpp>

#include "fuzz.hpp"

using ruvo::datetime;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring all = fuzz::wide(data, size);
  const std::size_t line = all.find(L'\n');
  const std::wstring format = all.substr(0, line);
  const std::wstring text = line == all.npos ? std::wstring() : all.substr(line + 1);
  for (const char* const locale : {"", "es_ES"}) {
    ruvo::exception error;
    datetime value(1);
    const bool parsed = value.parse(text, format, error, locale);
    FUZZ_CHECK(parsed == error.OK());
    const std::wstring printed = value.format(format, locale);
    datetime again(2);
    if (parsed && again.parse(printed, format, error, locale))
      FUZZ_CHECK(again.format(format, locale) == printed);
    // A whole instant survives its own text.
    const datetime whole(2000, 1, 1 + static_cast<int>(size % 3650), 1, 2, 3);
    datetime read(3);
    FUZZ_CHECK(read.parse(whole.to_string(datetime::sql_format), std::string(datetime::sql_format), error));
    FUZZ_CHECK(read == whole);
  }
  return 0;
}
