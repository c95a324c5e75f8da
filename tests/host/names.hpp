#pragma once

// Names and handles of the host.

#include <cstdint>
#include <string>

#include "base/utf.hpp"

namespace ruvo::platform {

/// Empty for a path that names nothing.
inline std::string host_name(const std::wstring& path) {
  if (path.find(L'\0') != path.npos || path.find(L':', 2) != path.npos) return {};
  std::string name = texto::to_utf_8(path);
  for (char& c : name)
    if (c == '\\') c = '/';
  return name;
}

// Handles are never null, descriptors may be 0.
inline void* handle_of(int descriptor) {
  return descriptor < 0 ? nullptr : reinterpret_cast<void*>(static_cast<std::intptr_t>(descriptor) + 1);
}
inline int descriptor_of(void* handle) {
  return static_cast<int>(reinterpret_cast<std::intptr_t>(handle) - 1);
}

}  // namespace ruvo::platform
