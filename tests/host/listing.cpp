// The host's folders, for the build that runs under its checkers.

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/utf.hpp"
#include "files/listing_platform.hpp"
#include "names.hpp"

namespace ruvo::platform {

namespace {

namespace fs = std::filesystem;

void read_entry(const fs::path& path, const fs::file_status& kind, found_facts& out) {
  std::error_code error;
  out.is_link = fs::is_symlink(kind);
  out.is_folder = out.is_link ? fs::is_directory(path, error) : fs::is_directory(kind);
  const bool has_size = !out.is_folder && !out.is_link;
  const auto size = has_size ? fs::file_size(path, error) : 0;
  out.size = error ? 0 : size;
}

held_folder::outcome outcome_of(int opened, const struct stat* found) {
  using outcome = held_folder::outcome;
  if (opened >= 0) return outcome::held;
  if (!found) return outcome::missing;
  if (S_ISLNK(found->st_mode)) return outcome::link;
  return S_ISDIR(found->st_mode) ? outcome::refused : outcome::file;
}

entry_identity identity_of(const struct stat& found) {
  return {static_cast<unsigned long long>(found.st_dev), static_cast<unsigned long long>(found.st_ino)};
}

entry_identity identity_of(void* handle) {
  struct stat found {};
  fstat(descriptor_of(handle), &found);
  return identity_of(found);
}

bool leads_to(const std::wstring& path, void* handle) {
  struct stat found {};
  return stat(host_name(path).c_str(), &found) == 0 && identity_of(found) == identity_of(handle);
}

bool remove_from(int folder, const std::string& name, const found_facts& expected,
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

struct folder_reader::state {
  DIR* folder;
  int error = 0;
};

folder_reader::folder_reader(const held_folder& folder) : state_(std::make_unique<state>()) {
  state_->folder = fdopendir(openat(descriptor_of(folder.handle()), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

folder_reader::~folder_reader() {
  if (state_->folder) closedir(state_->folder);
}

bool folder_reader::next(found_entry& out) {
  while (state_->folder) {
    errno = 0;
    const dirent* const found = readdir(state_->folder);
    state_->error = errno;
    if (!found) return false;
    const std::string_view name = found->d_name;
    if (name == "." || name == "..") continue;
    struct stat facts;
    if (fstatat(dirfd(state_->folder), found->d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0) continue;
    out.name = texto::to_utf_16(name);
    out.is_link = S_ISLNK(facts.st_mode);
    if (out.is_link && fstatat(dirfd(state_->folder), found->d_name, &facts, 0) != 0) facts.st_mode = S_IFREG;
    out.is_folder = S_ISDIR(facts.st_mode);
    out.size = out.is_folder || out.is_link ? 0 : static_cast<unsigned long long>(facts.st_size);
    return true;
  }
  return false;
}

bool folder_reader::failed() const noexcept { return !state_->folder || state_->error; }

held_folder::held_folder(const std::wstring& path, bool follows, purpose) {
  const std::string name = host_name(path);
  const int flags = O_RDONLY | O_DIRECTORY | O_CLOEXEC | (follows ? 0 : O_NOFOLLOW);
  const int opened = name.empty() ? -1 : open(name.c_str(), flags);
  handle_ = handle_of(opened);
  struct stat found {};
  result_ = outcome_of(opened, name.empty() || lstat(name.c_str(), &found) != 0 ? nullptr : &found);
}

held_folder::held_folder(const held_folder& parent, const std::wstring& name, bool makes) {
  const int folder = descriptor_of(parent.handle_);
  const std::string text = host_name(name);
  if (makes) mkdirat(folder, text.c_str(), 0777);
  const int opened = openat(folder, text.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW);
  handle_ = handle_of(opened);
  struct stat found {};
  result_ =
      outcome_of(opened, fstatat(folder, text.c_str(), &found, AT_SYMLINK_NOFOLLOW) != 0 ? nullptr : &found);
}

held_folder::~held_folder() {
  if (handle_) close(descriptor_of(handle_));
}

entry_identity held_folder::identity() const { return identity_of(handle_); }

bool held_folder::is_at(const std::wstring& path) const { return leads_to(path, handle_); }

bool held_folder::remove(const std::wstring& name, const found_facts& found) const {
  return remove_from(descriptor_of(handle_), host_name(name), found, nullptr);
}

held_file::held_file(const held_folder& parent, const std::wstring& name)
    : handle_(handle_of(openat(descriptor_of(parent.handle()), host_name(name).c_str(),
                               O_RDONLY | O_CLOEXEC | O_NOFOLLOW))) {}

held_file::~held_file() {
  if (handle_) close(descriptor_of(handle_));
}

bool held_file::is_at(const std::wstring& path) const { return leads_to(path, handle_); }

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

bool remove_entry(const std::wstring& path, const found_facts& found, const entry_identity* expected) {
  return remove_from(AT_FDCWD, host_name(path), found, expected);
}

}  // namespace ruvo::platform
