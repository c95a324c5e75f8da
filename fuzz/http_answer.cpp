// SPDX-License-Identifier: BSL-1.0

// Answers of HTTP as the example transport reads them: in one piece, byte by byte and in pieces as a number
// of the first byte says, the same comes of them; what is beyond a limit never does.

#include <ruvo/exception.hpp>

#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz.hpp"
#include "transport/http_parser.hpp"

namespace {

constexpr transport::http_limits most = {2000, 300};

/// What was read, as text.
std::string outcome(std::string_view bytes, std::size_t piece, bool to_head) {
  transport::response_parser read(to_head, most);
  std::string failure;
  try {
    for (; !bytes.empty() && !read.done(); bytes.remove_prefix(std::min(piece, bytes.size())))
      read.take(bytes.substr(0, piece));
    if (!read.done()) read.end();
  } catch (const ruvo::exception& error) {
    failure = ruvo::texto::to_utf_8(error.get_mensaje());
    FUZZ_CHECK(!read.done());
  }
  std::size_t head = 0;
  std::string out = std::to_string(read.status) + '|' + read.reason + '|' + failure;
  for (const auto& [name, value] : read.fields) {
    FUZZ_CHECK(!name.empty() &&
               (name + value).find_first_of(std::string_view("\r\n\0", 3)) == std::string::npos);
    head += name.size() + value.size();
    out.append(1, '|').append(name).append(1, '=').append(value);
  }
  FUZZ_CHECK(read.body.size() <= most.body && head <= most.head);
  FUZZ_CHECK(!failure.empty() || (read.status >= 101 && read.status <= 999));
  // How much of a body is there when it breaks off depends on the pieces.
  return failure.empty() ? out + '|' + read.body : out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (!size) return 0;
  const std::string bytes = fuzz::narrow(data + 1, size - 1);
  const bool to_head = data[0] == 'h';
  const std::string whole = outcome(bytes, bytes.size() + 1, to_head);
  FUZZ_CHECK(whole == outcome(bytes, 1, to_head));
  FUZZ_CHECK(whole == outcome(bytes, 1 + data[0] % 32, to_head));
  return 0;
}
