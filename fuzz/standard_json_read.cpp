// SPDX-License-Identifier: BSL-1.0

// Reading standard JSON: whole or in pieces, from UTF-8 or from UTF-16, a text has one verdict, one failure
// and one value, and the verdict of the check of JSON.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/json_check.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/standard_json.hpp>
#include <ruvo/texto/encoding.hpp>
#include <ruvo/xvar.hpp>

#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz.hpp"

using namespace ruvo::serializer;

namespace {

struct outcome {
  bool failed = false;
  ruvo::exception failure;
  ruvo::xvar value;
};

bool same_failure(const outcome& a, const outcome& b) {
  return a.failed == b.failed && a.failure.get_raw_code() == b.failure.get_raw_code() &&
         a.failure.get_mensaje() == b.failure.get_mensaje();
}

template <class View>
outcome whole(View text, const json_read_options& options) {
  outcome out;
  out.failed = read_standard_json(out.value, text, &out.failure, options);
  FUZZ_CHECK(out.failed == (failure_position(out.failure) > 0));
  FUZZ_CHECK(failure_position(out.failure) <= text.size() + 1);
  return out;
}

/// Feeds a standard_json_reader or json_values.
template <class Reader, class View>
outcome in_pieces(Reader& reader, View text, std::size_t step) {
  outcome out;
  for (std::size_t at = 0; at < text.size() && !out.failed; at += step)
    out.failed = reader.feed(text.substr(at, step), &out.failure);
  out.failed = out.failed || reader.finish(&out.failure);
  FUZZ_CHECK(reader.position() == failure_position(out.failure));
  if (out.failed) FUZZ_CHECK(reader.place() == position_of(text, reader.position()));
  return out;
}

/// The text in one piece and in others; without regard to names that are one key, for which events do not
/// look.
template <class View>
outcome read(View text, json_read_options options) {
  const outcome strict = whole(text, options);
  options.twins = json_twins::last;
  outcome out = whole(text, options);
  struct : ijson_events {
  } events;
  for (const std::size_t step : {std::size_t{1}, std::size_t{3}, std::size_t{16}, text.size() / 2 + 1}) {
    standard_json_reader pieces(events, options);
    FUZZ_CHECK(same_failure(in_pieces(pieces, text, step), out));
    if (out.failed) continue;
    options.twins = json_twins::failure;
    json_values values(options);
    ruvo::xvar value;
    FUZZ_CHECK(same_failure(in_pieces(values, text, step), strict));
    FUZZ_CHECK(values.next(value) != strict.failed);
    FUZZ_CHECK(value.to_string() == strict.value.to_string());
  }
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  json_read_options options;
  options.inexact = size % 3 == 0 ? json_number::text : json_number::nearest;
  options.byte_order_mark = size % 5 == 0;
  options.decimals = size % 7 == 0;
  const std::string bytes = fuzz::narrow(data, size);
  const std::wstring text = fuzz::wide(data, size);
  const outcome narrow = read(std::string_view(bytes), options);
  const outcome wide = read(std::wstring_view(text), options);
  // A character U+FFFD counts as malformed in one of both.
  if (ruvo::texto::to_utf_8(text) != bytes || ruvo::texto::to_utf_16(bytes) != text) return 0;
  FUZZ_CHECK(narrow.failed == wide.failed);
  FUZZ_CHECK(narrow.failure.get_raw_code() == wide.failure.get_raw_code());
  FUZZ_CHECK(narrow.value.to_string() == wide.value.to_string());
  if (options.byte_order_mark) return 0;
  // The check looks neither at limits nor for values that hold a number.
  const auto findings = check_json(text, 1);
  const bool clean =
      std::all_of(findings.begin(), findings.end(), [](const auto& f) { return is_note(f.rule); });
  const auto code = wide.failure.get_raw_code() & 0xFFFF;
  FUZZ_CHECK(clean == !wide.failed || code == 6005 || code == 6006);
  return 0;
}
