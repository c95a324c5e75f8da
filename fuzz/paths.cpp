// SPDX-License-Identifier: BSL-1.0

// Paths: a kept path is kept as it is; climbing ends at the top; parts belong to the whole.

#include <ruvo/file.hpp>

#include "fuzz.hpp"

using ruvo::file;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::wstring text = fuzz::wide(data, size);
  const file path(text);
  const std::wstring& kept = path;
  FUZZ_CHECK(file(kept) == path);
  FUZZ_CHECK(kept.find(L'/') == kept.npos);
  FUZZ_CHECK(file(path.unix_path()) == path);
  FUZZ_CHECK(kept.ends_with(path.get_name()));
  FUZZ_CHECK(path.get_name().starts_with(path.get_simple_name()));
  FUZZ_CHECK(path.is_root() == (!path.empty() && path.get_root() == path));
  FUZZ_CHECK(path.crop(path).empty() && path.crop(file()) == path);

  file climbing = path;
  for (std::size_t steps = 0; !climbing.empty() && !climbing.is_root(); ++steps) {
    FUZZ_CHECK(steps <= kept.size());
    --climbing;
  }
  file longer = path;
  longer += L"x";
  FUZZ_CHECK(longer.get_name() == L"x" || longer.is_root() || kept.ends_with(L":"));
  return 0;
}
