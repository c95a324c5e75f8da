// SPDX-License-Identifier: BSL-1.0

// Encoded words: any text reads without control characters that were not there, and any text that a field may
// have comes back out of it, from lines of the right length.

#include <ruvo/exc.hpp>
#include <ruvo/mime.hpp>

#include <algorithm>

#include "fuzz.hpp"

using ruvo::mime::part;
namespace mime = ruvo::mime;
namespace texto = ruvo::texto;

namespace {

/// Other than TAB.
bool is_control(wchar_t c) { return (c < 0x20 && c != L'\t') || (c >= 0x7F && c < 0xA0); }

void check_words(const std::wstring& text) {
  const std::wstring read = mime::decode_words(text);
  FUZZ_CHECK(std::count_if(read.begin(), read.end(), is_control) <=
             std::count_if(text.begin(), text.end(), is_control));
  FUZZ_CHECK(text.find(L"=?") != text.npos || read == text);
  FUZZ_CHECK(read.size() <= text.size());
}

/// Half surrogate pairs become U+FFFD on their way.
void check_field(const std::wstring& text) {
  part message;
  try {
    message.set_header(L"X-Text", text);
  } catch (const ruvo::exc::BadArgument&) {
    FUZZ_CHECK(message.get_headers().empty());
    return;
  }
  const std::wstring good = texto::to_utf_16(texto::to_utf_8(text));
  FUZZ_CHECK(message.get_header(L"X-Text") == good);
  const std::string bytes = mime::to_bytes(message);
  for (std::size_t from = 0, end; (end = bytes.find("\r\n", from)) != bytes.npos; from = end + 2) {
    const std::string line = bytes.substr(from, end - from);
    FUZZ_CHECK(line.size() <= 998 && (line.size() <= 76 || line.find("=?") == line.npos));
    FUZZ_CHECK(std::all_of(line.begin(), line.end(), [](char c) { return c >= ' ' && c <= '~'; }));
  }
  FUZZ_CHECK(mime::read(bytes).get_header(L"X-Text") == good);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::wstring text = fuzz::wide(data, size);
  check_words(text);
  check_field(text);
  std::erase_if(text, is_control);
  check_field(text);
  return 0;
}
