#include "app/win32.hpp"
#include "files/platform.hpp"

namespace ruvo::platform {

entry_kind kind_of(const std::wstring& path) noexcept {
  if (path.empty() || path.find(L'\0') != path.npos) return entry_kind::none;
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return entry_kind::none;
  return attributes & FILE_ATTRIBUTE_DIRECTORY ? entry_kind::folder : entry_kind::file;
}

}  // namespace ruvo::platform
