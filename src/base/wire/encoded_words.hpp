// SPDX-License-Identifier: BSL-1.0
#pragma once

// Texts in the fields of mail: encoded words (RFC 2047) and folded lines (RFC 5322).

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::wire {

/// The most characters of a line that is folded where that is possible, and of any line, without CRLF.
constexpr std::size_t wanted_line = 76, longest_line = 998;
/// The most characters of an encoded word.
constexpr std::size_t longest_word = 75;

bool is_ascii_text(std::wstring_view text) noexcept;
/// Whether a text can stand in an unstructured field as it is, and comes out of it the same: printable ASCII
/// without blanks at its ends, that is not taken for an encoded word, and can be folded.
bool is_plain_text(std::wstring_view text) noexcept;

/// Appends the text as encoded words in UTF-8 with a blank between them: the first has at most `first`
/// characters, unless none fit into so many, the others `most`. Words end between characters; all are Q or
/// all B, as is shorter. They may stand in a phrase, too. Half a surrogate pair becomes U+FFFD.
void append_encoded_words(std::string& out, std::wstring_view text, std::size_t first = longest_word,
                          std::size_t most = longest_word);

/// Unfolded text with its encoded words decoded, wherever they stand: mailers put them into quotation marks
/// and against other text. Blanks between two of them are dropped, and the bytes of those that follow each
/// other in one encoding belong together, as some split characters. What becomes a control character other
/// than TAB is a blank instead. A word in an encoding other than those of base/charset.hpp, or with
/// characters beyond ASCII, stays as it stands.
std::wstring decode_words(std::wstring_view text);

/// Appends "name: value" and CRLF, folded at blanks. False, and nothing is appended, if a line would be
/// longer than any may be.
bool append_folded(std::string& out, std::string_view name, std::string_view value);

}  // namespace ruvo::wire
