// SPDX-License-Identifier: BSL-1.0

// Escaping and markup: what is escaped comes back, what is cleaned stays clean.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/texto/encoding.hpp>
#include <ruvo/texto/markup.hpp>

#include "fuzz.hpp"

using namespace ruvo::texto;

/// Without what print_json() takes for blanks.
static std::wstring solid(std::wstring text) {
  std::erase_if(text, [](wchar_t c) { return c == L' ' || (c >= L'\t' && c <= L'\r'); });
  return text;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  FUZZ_CHECK(escaped_from_sql_(escaped_to_sql_(text)) == text);

  const std::wstring plain = to_plain_(text);
  FUZZ_CHECK(plain.size() <= text.size() * 2);  // "<br/>" and "</br>" give two characters
  FUZZ_CHECK(is_html(text) || text.find(L'&') != text.npos || plain == text);

  const std::wstring printed = print_json(text);
  FUZZ_CHECK(print_json(printed) == printed);
  FUZZ_CHECK(solid(printed) == solid(text));

  unsigned long long body = 0;
  const std::wstring without = remove_html_and_body_tags_(text, &body);
  FUZZ_CHECK(body == std::wstring::npos ? text.find(L"<body>") == text.npos
                                        : text.compare(body, 6, L"<body>") == 0);
  FUZZ_CHECK(without.size() <= text.size());

  std::wstring memo;
  base64_encode(memo, std::wstring(data, data + size), size % 2 == 0);
  ruvo::binary bytes;
  decodifica_memo(bytes, memo);
  FUZZ_CHECK(bytes.size() == size);
  ruvo::bundle document;
  decodifica_memo(document, memo);
  decodifica_memo(document, text);
  escaped_to_json(document, true);
  decodifica_memo(bytes, text);
  return 0;
}
