// SPDX-License-Identifier: BSL-1.0
#pragma once

// Percent-encoding, RFC 3986, of addresses, forms (with "+" for a blank) and extended parameters.

#include <cstddef>
#include <string>
#include <string_view>

#include "base/wire/ascii_set.hpp"

namespace ruvo::wire {

/// What a "+" stands for.
enum class plus_sign : unsigned char { itself, blank };

/// Appends the bytes, those outside of `stay` as "%" and two capital digits; of a form, a blank as "+".
void append_percent(std::string& out, std::string_view bytes, const ascii_set& stay,
                    plus_sign plus = plus_sign::itself);
void append_percent(std::wstring& out, std::string_view bytes, const ascii_set& stay,
                    plus_sign plus = plus_sign::itself);
/// The same of the text's UTF-8, in which half a surrogate pair is U+FFFD.
void append_percent(std::wstring& out, std::wstring_view text, const ascii_set& stay,
                    plus_sign plus = plus_sign::itself);

/// What decoding found wrong. Decoding never stops: who is strict asks good().
struct percent_faults {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  bool good() const noexcept { return first() == none; }
  std::size_t first() const noexcept { return broken < not_utf_8 ? broken : not_utf_8; }

  std::size_t broken = none;     ///< Where the first "%" stands that no two digits follow; it stays.
  std::size_t not_utf_8 = none;  ///< Where the first bytes stand that are no UTF-8.
};

/// Appends the bytes that the text stands for. A unit from 128 on is its UTF-8 in wide text, the byte itself
/// in narrow text. The bytes may be anything: not_utf_8 is not looked for.
percent_faults percent_bytes(std::string& out, std::string_view text, plus_sign plus = plus_sign::itself);
percent_faults percent_bytes(std::string& out, std::wstring_view text, plus_sign plus = plus_sign::itself);

/// Appends the text that the bytes are in UTF-8; what is none becomes U+FFFD.
percent_faults percent_text(std::wstring& out, std::wstring_view text, plus_sign plus = plus_sign::itself);
percent_faults percent_text(std::wstring& out, std::string_view text, plus_sign plus = plus_sign::itself);

/// The offset of the first byte of what is not UTF-8 as RFC 3629 has it, or npos.
std::size_t first_not_utf_8(std::string_view bytes);

}  // namespace ruvo::wire
