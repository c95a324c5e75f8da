// SPDX-License-Identifier: BSL-1.0

// Bytes as text: what is counted as replaced is what does not come back, in each encoding.

#include <ruvo/texto/charset.hpp>

#include <algorithm>
#include <string>

#include "fuzz.hpp"

using namespace ruvo::texto;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  const decoded_text guessed = decode(bytes);
  FUZZ_CHECK(guessed.text == decode(bytes, guessed.from.what).text);
  FUZZ_CHECK(guessed.places.size() == std::min<std::size_t>(guessed.replaced, 100));
  FUZZ_CHECK(std::is_sorted(guessed.places.begin(), guessed.places.end()));
  for (const charset as : {charset::utf_8, charset::utf_16_le, charset::utf_16_be, charset::windows_1252}) {
    const decoded_text made = decode(bytes, as);
    const auto marks = std::count(made.text.begin(), made.text.end(), static_cast<wchar_t>(0xFFFD));
    FUZZ_CHECK(made.replaced <= static_cast<std::size_t>(marks));
    std::wstring kept = L"x";
    FUZZ_CHECK(append_decoded(kept, std::string_view(bytes).substr(made.from.mark), as) == made.replaced);
    FUZZ_CHECK(kept.substr(1) == made.text);
    if (as == charset::utf_8) {
      FUZZ_CHECK(made.text == to_utf_16(bytes.substr(made.from.mark)));
      FUZZ_CHECK((made.replaced == 0) == (to_utf_8(made.text) == bytes.substr(made.from.mark)));
    }
  }
  const charset_guess piece = guess_charset(bytes, false);
  FUZZ_CHECK(piece.mark == guessed.from.mark);
  return 0;
}
