// SPDX-License-Identifier: BSL-1.0

// Dates as people write them: what was read is in the calendar, and reads back from other forms.

#include <ruvo/written_dates.hpp>

#include "fuzz.hpp"

namespace dates = ruvo::dates;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  const dates::parsed_date read = dates::parse_date(text);
  FUZZ_CHECK(static_cast<bool>(read) == dates::message_of(read).empty());
  if (!read) {
    FUZZ_CHECK(read.field != dates::date_field::none && read.position - 1 <= text.size());
    return 0;
  }
  const ruvo::datetime when = read.to_datetime();
  FUZZ_CHECK(when.get_year() == read.year && when.get_month() == read.month && when.get_day() == read.day);
  FUZZ_CHECK(when.get_hour() == read.hour && when.get_minutes() == read.minute);
  for (const wchar_t* const form :
       {L"%d/%m/%Y %H:%M:%S", L"%A, %d de %B de %Y %H:%M:%S", L"%Y-%m-%dT%H:%M:%S"}) {
    const dates::parsed_date again = dates::parse_date(when.format(form, "es_ES"));
    FUZZ_CHECK(again && again.to_datetime() == when);
  }
  return 0;
}
