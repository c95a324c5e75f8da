// SPDX-License-Identifier: BSL-1.0

// Files line by line: a byte of options, a byte that says how much comes later, the content. The lines are
// those of the whole text, also of a file that grows meanwhile.

#include <ruvo/files/lines.hpp>
#include <ruvo/files/temporary.hpp>

#include <algorithm>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz.hpp"

using namespace ruvo::files;
namespace texto = ruvo::texto;

namespace {

using all_lines = std::vector<std::wstring>;

/// By a plain loop; what stands behind the last end is the last one.
all_lines split(const std::wstring& text, line_ends ends) {
  all_lines out(1);
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool is_cr_lf = text[at] == L'\n' && at > 0 && text[at - 1] == L'\r';
    const bool counts_cr = ends == line_ends::any || ends == line_ends::cr;
    if (is_cr_lf && ends == line_ends::any) continue;
    if (text[at] == L'\n' ? ends != line_ends::cr : text[at] == L'\r' && counts_cr) {
      if (is_cr_lf && ends == line_ends::lf) out.back().pop_back();
      out.emplace_back();
    } else {
      out.back() += text[at];
    }
  }
  return out;
}

all_lines read_all(line_reader& in) {
  all_lines out;
  for (std::wstring line; in.next(line);) out.push_back(line);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  static const temporary_file here;
  const std::string name = texto::to_utf_8(here.path().unix_path());
  const std::string bytes = fuzz::narrow(data + 2, size - 2);
  line_options how{.ends = static_cast<line_ends>(data[0] & 3),
                   .encoding = static_cast<texto::charset>(data[0] >> 2 & 3),
                   .guesses = (data[0] & 16) != 0};
  std::ofstream(name, std::ios::binary) << bytes;
  line_reader in(here.path(), how);
  all_lines found = read_all(in);
  if (bytes.empty()) return 0;
  const texto::charset_guess& what = in.get_charset();
  std::wstring text;
  FUZZ_CHECK(texto::append_decoded(text, std::string_view(bytes).substr(what.mark), what.what) ==
             in.count_replaced());
  all_lines wanted = split(text, how.ends);
  if (wanted.back().empty()) wanted.pop_back();
  FUZZ_CHECK(found == wanted && in.position() == bytes.size() && in.line_number() == wanted.size());

  how.guesses = false;
  how.follows = true;
  const std::size_t first = std::min<std::size_t>(data[1], bytes.size());
  std::ofstream(name, std::ios::binary) << bytes.substr(0, first);
  line_reader follower(here.path(), how);
  found = read_all(follower);
  std::ofstream(name, std::ios::binary | std::ios::app) << bytes.substr(first);
  for (const std::wstring& line : read_all(follower)) found.push_back(line);
  const texto::charset_guess& seen = follower.get_charset();
  text.clear();
  texto::append_decoded(text, std::string_view(bytes).substr(seen.mark), seen.what);
  wanted = split(text, how.ends);
  wanted.pop_back();
  FUZZ_CHECK(found == wanted);
  return 0;
}
