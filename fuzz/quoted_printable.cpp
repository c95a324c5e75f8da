// SPDX-License-Identifier: BSL-1.0

// Quoted-printable: any text comes back with its lines ended by CRLF, from lines of the right length; any
// text can be read.

#include <ruvo/mime.hpp>

#include <algorithm>

#include "fuzz.hpp"

namespace mime = ruvo::mime;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string bytes = fuzz::narrow(data, size);
  std::string ended;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    if (bytes[at] == '\n' && (at == 0 || bytes[at - 1] != '\r')) ended.push_back('\r');
    ended.push_back(bytes[at]);
  }
  const std::string written = mime::to_quoted_printable(bytes);
  FUZZ_CHECK(mime::from_quoted_printable(written) == ended);
  for (std::size_t from = 0; from < written.size();) {
    const std::size_t end = std::min(written.find("\r\n", from), written.size());
    FUZZ_CHECK(end - from <= 76 && (end == from || (written[from] != '-' && written[from] != '.')));
    for (std::size_t at = from; at < end; ++at)
      FUZZ_CHECK(written[at] == '\t' || (written[at] >= ' ' && written[at] <= '~'));
    FUZZ_CHECK(end == from || (written[end - 1] != ' ' && written[end - 1] != '\t'));
    from = end + 2;
  }
  FUZZ_CHECK(mime::from_quoted_printable(bytes).size() <= size);
  return 0;
}
