// SPDX-License-Identifier: BSL-1.0

// Lines out of a stream.

#include "stream.hpp"

#include <ruvo/exc.hpp>

namespace transport {

std::string reader::line(std::size_t most) {
  std::size_t end;
  while ((end = pending_.find('\n')) == pending_.npos) {
    if (pending_.size() > most) throw ruvo::exc::RunTime(L"a line is too long");
    char part[4096];
    const std::size_t got = from_.receive(part, sizeof part);
    if (!got) throw ruvo::exc::RunTime(L"the stream ended within a line");
    pending_.append(part, got);
  }
  if (end > most) throw ruvo::exc::RunTime(L"a line is too long");
  std::string line = pending_.substr(0, end);
  pending_.erase(0, end + 1);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

}  // namespace transport
