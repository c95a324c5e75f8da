// SPDX-License-Identifier: BSL-1.0
#pragma once

// Quoted-printable, RFC 2045 6.7.

#include <cstddef>
#include <string>
#include <string_view>

namespace ruvo::wire {

/// Writes text piece by piece in lines of at most 76 characters. CRLF and LF end a line; a CR alone is
/// encoded, and so are blanks at the end of a line. No line begins with "-", so that none can be taken for
/// the boundary of a part, nor with ".", which a server would take away. What is encoded of a character
/// beyond ASCII stays in one line.
class quoted_printable_writer {
 public:
  void put(std::string& out, std::string_view text);
  /// Appends what was held back. Nothing is to follow.
  void finish(std::string& out);

 private:
  void put_byte(std::string& out, char c);
  void put_encoded(std::string& out, char c);
  void make_room(std::string& out, std::size_t size);
  void release(std::string& out);

  std::size_t column_ = 0;
  char held_ = 0;  // a blank, a TAB or a CR, of which the next character decides
};

/// How many bytes the writer appends, about: without the ends of lines.
std::size_t quoted_printable_size(std::string_view text) noexcept;

/// Appends the bytes that the text stands for. Blanks at the end of a line are left out; what is wrong stays
/// as it stands. False if anything was wrong: "=" without two digits or a line's end behind it, or a control
/// character.
bool read_quoted_printable(std::string& out, std::string_view text);

}  // namespace ruvo::wire
