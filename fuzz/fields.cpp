// SPDX-License-Identifier: BSL-1.0

// Structs: whatever a document holds, reading ends and its result agrees with its report; what is read can be
// written and reads back the same; nothing is read that the value is not.

#include <ruvo/ruvo.hpp>

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz.hpp"

namespace shop {

enum class state { first, second };
KESTA_NAMES(state, first, second)

struct all {
  bool b = false;
  std::int8_t i = 0;
  unsigned long long u = 0;
  double d = 0;
  std::wstring s;
  std::string n;
  ruvo::binary x;
  ruvo::date day{2000, 1, 1};
  ruvo::time hour{0};
  ruvo::datetime when{0LL};
  shop::state e = shop::state::first;
  std::optional<std::vector<int>> o;
  std::array<bool, 2> a{};
  std::map<std::wstring, ruvo::xvar> m;
  std::vector<all> v;
  std::unique_ptr<all> p;
};
KESTA_FIELDS_OR_DEFAULT(all, b, i, u, d, s, n, x, day, hour, when, e, o, a, m, v, p)

}  // namespace shop

namespace {

/// The values inside read the same as text and as number, or not at all.
void check_value(const ruvo::xvar& value) {
  const auto whole = ruvo::value_as<long long>(value);
  const auto narrow = ruvo::value_as<std::int8_t>(value);
  FUZZ_CHECK(!narrow || (whole && *whole == *narrow));
  FUZZ_CHECK(!whole || ruvo::value_as<double>(value) == static_cast<double>(*whole));
  if (const auto day = ruvo::value_as<ruvo::date>(value))
    FUZZ_CHECK(ruvo::value_as<ruvo::date>(ruvo::xvar(day->to_string())) == day);
  FUZZ_CHECK(ruvo::natural_order(value, value) == 0);
}

void check_document(const ruvo::bundle& document, bool from_xml) {
  shop::all read, again;
  ruvo::field_report report;
  const bool is_read = ruvo::read_fields(read, document, report, {.most = 5, .from_xml = from_xml});
  FUZZ_CHECK(is_read == report.ok() && report.problems.size() <= 5);
  FUZZ_CHECK(is_read == ruvo::to_string(report).empty());
  for (const ruvo::xvar& value : ruvo::values_of(document)) check_value(value);
  if (!is_read) return;
  try {
    const ruvo::bundle written = ruvo::to_bundle(read);
    FUZZ_CHECK(ruvo::read_fields(again, written, report));
    FUZZ_CHECK(ruvo::to_bundle(again) == written);
  } catch (const ruvo::exc::BadArgument&) {  // keys of a map that a bundle takes for one, of XML
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  ruvo::bundle document;
  if (!ruvo::serializer::read_standard_json(document, std::string_view(bytes)))
    check_document(document, false);
  if (!ruvo::serializer::read_well_formed_xml(document, std::string_view(bytes)))
    check_document(ruvo::bundle{{L"v", document.begin()->second}}, true);
  return 0;
}
