// SPDX-License-Identifier: BSL-1.0
#include "system/entry.hpp"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "names.hpp"

namespace ruvo::platform {

bool read_facts(const std::wstring& path, links how, entry_facts& out) {
  const std::string name = host_name(path);
  if (how == links::keep) return read_entry(AT_FDCWD, name.c_str(), out);
  struct stat found;
  if (stat(name.c_str(), &found) != 0) return false;
  out = facts_of(found);
  return true;
}

bool is_missing(const std::wstring& path) {
  struct stat found;
  return lstat(host_name(path).c_str(), &found) != 0 &&
         (errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG);
}

bool read_owner(const std::wstring& path, owner_numbers& out) {
  struct stat found;
  if (stat(host_name(path).c_str(), &found) != 0) return false;
  out = {found.st_uid, found.st_gid};
  return true;
}

bool may_read(const std::wstring& path) { return access(host_name(path).c_str(), R_OK) == 0; }
bool may_write(const std::wstring& path) { return access(host_name(path).c_str(), W_OK) == 0; }
bool is_held(const std::wstring&) { return false; }

bool is_inside(const std::wstring& path, const std::wstring& folder) {
  namespace fs = std::filesystem;
  std::error_code error;
  const fs::path wanted = fs::canonical(host_name(folder), error);
  if (error || path.empty()) return false;
  fs::path at = fs::weakly_canonical(fs::absolute(host_name(path), error), error);
  for (; at != at.parent_path(); at = at.parent_path())
    if (at == wanted) return true;
  return at == wanted;
}

}  // namespace ruvo::platform
