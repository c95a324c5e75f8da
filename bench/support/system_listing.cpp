// SPDX-License-Identifier: BSL-1.0
#include "support/system_listing.hpp"

#include <string_view>
#include <utility>
#include <vector>

#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <windows.h>

namespace bench {

namespace {

void list_bare(const std::wstring& folder, std::vector<std::wstring>& pending, listed& out) {
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileExW((folder + L"\\*").c_str(), FindExInfoBasic, &found,
                                         FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring_view name(found.cFileName);
    if (name == L"." || name == L"..") continue;
    if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      ++out.folders;
      pending.push_back(folder + L"\\" + found.cFileName);
    } else {
      ++out.files;
      out.bytes += static_cast<std::uint64_t>(found.nFileSizeHigh) << 32 | found.nFileSizeLow;
    }
  } while (FindNextFileW(search, &found));
  FindClose(search);
}

}  // namespace

listed list_with_system(const std::wstring& root) {
  std::vector<std::wstring> pending{root};
  listed out;
  while (!pending.empty()) {
    const std::wstring folder = std::move(pending.back());
    pending.pop_back();
    list_bare(folder, pending, out);
  }
  return out;
}

}  // namespace bench
