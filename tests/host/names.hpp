// SPDX-License-Identifier: BSL-1.0
#pragma once

// Names, handles and facts of the host.

#include <cstdint>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>

#include "base/utf.hpp"
#include "system/entry.hpp"

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

inline entry_facts facts_of(const struct stat& found) {
  constexpr mode_t writers = S_IWUSR | S_IWGRP | S_IWOTH;
  entry_facts out;
  out.is_folder = S_ISDIR(found.st_mode);
  out.is_link = S_ISLNK(found.st_mode);
  out.read_only = !(found.st_mode & writers);
  out.size = S_ISREG(found.st_mode) ? static_cast<unsigned long long>(found.st_size) : 0;
  out.modified = found.st_mtime;
  out.accessed = found.st_atime;
  out.changed = found.st_ctime;
  return out;
}

/// What a folder knows of a name in it. A link to a folder is a folder too.
inline bool read_entry(int folder, const char* name, entry_facts& out) {
  struct stat found;
  if (fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) != 0) return false;
  out = facts_of(found);
  if (out.is_link) out.is_folder = fstatat(folder, name, &found, 0) == 0 && S_ISDIR(found.st_mode);
  return true;
}

inline entry_identity identity_of(const struct stat& found) {
  return {static_cast<unsigned long long>(found.st_dev), static_cast<unsigned long long>(found.st_ino)};
}

inline entry_identity identity_of(void* handle) {
  struct stat found {};
  fstat(descriptor_of(handle), &found);
  return identity_of(found);
}

/// Whether a path leads to what is open.
inline bool leads_to(const std::wstring& path, void* handle) {
  struct stat found {};
  return stat(host_name(path).c_str(), &found) == 0 && identity_of(found) == identity_of(handle);
}

}  // namespace ruvo::platform
