// SPDX-License-Identifier: BSL-1.0

// What a user's program does first: values in, JSON out and in again, an error caught by its type.

#include <ruvo/ruvo.hpp>

#include <cstdio>
#include <exception>
#include <string>

namespace {

int failures = 0;

void expect(bool ok, const char* what) {
  std::printf("%s: %s\n", ok ? "ok" : "FAILED", what);
  if (!ok) ++failures;
}

}  // namespace

int main() {
  ruvo::bundle order;
  order["numero"] = 1207;
  order["cliente"] = L"A\u00F1il \u20AC";
  order["pagado"] = true;

  std::wstring text;
  ruvo::exception failure;
  ruvo::serializer::json json;
  expect(!json.serialize(text, order, &failure), "a bundle is written");
  expect(text.find(L"1207") != std::wstring::npos, "its text holds the number");

  ruvo::bundle copy;
  expect(!json.deserialize(copy, text, &failure), "the text is read");
  expect(copy.get_long("numero") == 1207, "the number is back");
  expect(copy.get_string("cliente") == L"A\u00F1il \u20AC", "the text is back");
  expect(copy.get_boolean("pagado"), "the truth value is back");
  expect(copy.get_long("falta", '.', 7) == 7, "a missing value gives the fallback");

  // The exception is made in the DLL, caught here, and known again in the DLL and here: that takes one C++
  // runtime for both.
  try {
    ruvo::xvar(order["numero"]).get_quality(L"falta");
    expect(false, "a missing quality throws");
  } catch (const ruvo::exc::OutOfRange& error) {
    expect(error.get_raw_code() == 0xEBB80007UL, "a missing quality throws exc::OutOfRange");
    try {
      std::rethrow_exception(std::current_exception());
    } catch (const ruvo::exception&) {
      expect(true, "and can be thrown again");
    }
  }
  return failures == 0 ? 0 : 1;
}
