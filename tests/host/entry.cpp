#include "system/entry.hpp"

#include <filesystem>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

#include "names.hpp"

namespace ruvo::platform {

namespace {

namespace fs = std::filesystem;

constexpr mode_t writers = S_IWUSR | S_IWGRP | S_IWOTH;

void read_entry(const fs::path& path, const fs::file_status& kind, found_facts& out) {
  std::error_code error;
  out.is_link = fs::is_symlink(kind);
  out.is_folder = out.is_link ? fs::is_directory(path, error) : fs::is_directory(kind);
  const bool has_size = !out.is_folder && !out.is_link;
  const auto size = has_size ? fs::file_size(path, error) : 0;
  out.size = error ? 0 : size;
}

}  // namespace

entry_kind kind_of(const std::wstring& path) {
  entry_facts facts;
  return read_facts(path, facts) ? facts.kind : entry_kind::none;
}

bool read_facts(const std::wstring& path, entry_facts& out) {
  struct stat found;
  if (stat(host_name(path).c_str(), &found) != 0) return false;
  out.kind = S_ISDIR(found.st_mode) ? entry_kind::folder : entry_kind::file;
  out.read_only = !(found.st_mode & writers);
  out.hidden = false;
  out.size = out.kind == entry_kind::file ? static_cast<unsigned long long>(found.st_size) : 0;
  out.modified = found.st_mtime;
  out.accessed = found.st_atime;
  out.changed = found.st_ctime;
  return true;
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

bool look_at(const std::wstring& path, found_facts& out) {
  std::error_code error;
  const fs::path name = host_name(path);
  const fs::file_status kind = fs::symlink_status(name, error);
  if (!fs::exists(kind)) return false;
  read_entry(name, kind, out);
  return true;
}

bool is_inside(const std::wstring& path, const std::wstring& folder) {
  std::error_code error;
  const fs::path wanted = fs::canonical(host_name(folder), error);
  if (error || path.empty()) return false;
  fs::path at = fs::weakly_canonical(fs::absolute(host_name(path), error), error);
  for (; at != at.parent_path(); at = at.parent_path())
    if (at == wanted) return true;
  return at == wanted;
}

}  // namespace ruvo::platform
