// SPDX-License-Identifier: BSL-1.0
#include "system/folder.hpp"

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/utf.hpp"
#include "names.hpp"

namespace ruvo::platform {

namespace {

held_folder::outcome outcome_of(int opened, const struct stat* found) {
  using outcome = held_folder::outcome;
  if (opened >= 0) return outcome::held;
  if (!found) return outcome::missing;
  if (S_ISLNK(found->st_mode)) return outcome::link;
  return S_ISDIR(found->st_mode) ? outcome::refused : outcome::file;
}

bool remove_from(int folder, const std::string& name, const entry_kind& expected,
                 const entry_identity* identity) {
  struct stat found {};
  if (name.empty()) return false;
  if (fstatat(folder, name.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0)
    return errno == ENOENT || errno == ENOTDIR;
  const bool is_folder = S_ISDIR(found.st_mode);
  if (S_ISLNK(found.st_mode) != expected.is_link || is_folder != (expected.is_folder && !expected.is_link) ||
      (identity && !(identity_of(found) == *identity)))
    return false;
  return unlinkat(folder, name.c_str(), is_folder ? AT_REMOVEDIR : 0) == 0;
}

}  // namespace

bool make_folder(const std::wstring& path) {
  entry_facts found;
  return mkdir(host_name(path).c_str(), 0777) == 0 ||
         (read_facts(path, links::keep, found) && found.is_folder);
}

bool make_new_folder(const std::wstring& path) { return mkdir(host_name(path).c_str(), 0700) == 0; }

bool remove_folder(const std::wstring& path) {
  const std::string name = host_name(path);
  return rmdir(name.c_str()) == 0 || (errno == ENOTDIR && unlink(name.c_str()) == 0);
}

std::wstring temporary_folder() {
  std::error_code error;
  return texto::to_utf_16(std::filesystem::temp_directory_path(error).string());
}

held_folder::held_folder(const std::wstring& path, bool follows, purpose) {
  const std::string name = host_name(path);
  const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (follows ? 0 : O_NOFOLLOW);
  const int opened = name.empty() ? -1 : open(name.c_str(), flags);
  folder_ = handle(handle_of(opened));
  struct stat found {};
  result_ = outcome_of(opened, name.empty() || lstat(name.c_str(), &found) != 0 ? nullptr : &found);
}

held_folder::held_folder(const held_folder& parent, const std::wstring& name, bool makes) {
  const int folder = descriptor_of(parent.get());
  const std::string text = host_name(name);
  if (makes) mkdirat(folder, text.c_str(), 0777);
  const int opened = openat(folder, text.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
  folder_ = handle(handle_of(opened));
  struct stat found {};
  result_ =
      outcome_of(opened, fstatat(folder, text.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0 ? nullptr : &found);
}

entry_identity held_folder::identity() const { return identity_of(get()); }

bool held_folder::is_at(const std::wstring& path) const { return leads_to(path, get()); }

bool held_folder::remove(const std::wstring& name, const entry_kind& found) const {
  return remove_from(descriptor_of(get()), host_name(name), found, nullptr);
}

held_file::held_file(const held_folder& parent, const std::wstring& name)
    : file_(handle_of(
          openat(descriptor_of(parent.get()), host_name(name).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW))) {}

bool held_file::is_at(const std::wstring& path) const { return leads_to(path, file_.get()); }

bool remove_found(const std::wstring& path, const entry_kind& found, const entry_identity* expected) {
  return remove_from(AT_FDCWD, host_name(path), found, expected);
}

}  // namespace ruvo::platform
