// SPDX-License-Identifier: BSL-1.0

// The host's files. The environment's KESTA_FAIL_FILE_STEP = n makes the n-th step of writing or copying
// fail, and those after it.

#include "system/file.hpp"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/utf.hpp"
#include "names.hpp"
#include "system/entry.hpp"
#include "system/folder.hpp"

namespace ruvo::platform {

namespace {

namespace fs = std::filesystem;

bool step_fails() {
  const char* const text = std::getenv("KESTA_FAIL_FILE_STEP");
  if (!text) return false;
  const int left = std::atoi(text);
  if (left > 1) setenv("KESTA_FAIL_FILE_STEP", std::to_string(left - 1).c_str(), 1);
  return left <= 1;
}

}  // namespace

open_file::open_file(const std::wstring& path, mode how, const std::wstring& like) {
  const int flags = how == to_read ? O_RDONLY : O_WRONLY | O_CREAT | O_EXCL;
  entry_facts there;
  if (how != to_read ? step_fails() : read_facts(path, links::follow, there) && there.is_folder) return;
  is_marked_ = how == to_hold;
  file_ = handle(handle_of(open(host_name(path).c_str(), flags | O_CLOEXEC, 0666)));
  struct stat found;
  if (file_ && !like.empty() && stat(host_name(like).c_str(), &found) == 0)
    fchmod(descriptor_of(file_.get()), found.st_mode & 0777);
}

bool open_file::size(unsigned long long& out) const noexcept {
  struct stat found;
  if (fstat(descriptor_of(file_.get()), &found) != 0) return false;
  out = static_cast<unsigned long long>(found.st_size);
  return true;
}

bool open_file::is_at(const std::wstring& path) const { return leads_to(path, file_.get()); }

bool open_file::is_in(const held_folder& folder, const std::wstring& name) const {
  struct stat found {};
  return fstatat(descriptor_of(folder.get()), host_name(name).c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 &&
         identity_of(found) == identity_of(file_.get());
}

bool open_file::rewind() noexcept { return lseek(descriptor_of(file_.get()), 0, SEEK_SET) == 0; }

bool open_file::read(void* to, std::size_t room, std::size_t& got) noexcept {
  const ssize_t count = ::read(descriptor_of(file_.get()), to, room);
  got = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count >= 0;
}

// A write that fails has written half.
bool open_file::write(std::string_view bytes) noexcept {
  const bool fails = step_fails();
  if (fails) bytes = bytes.substr(0, bytes.size() / 2);
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor_of(file_.get()), bytes.data(), bytes.size());
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return !fails;
}

bool open_file::read_at(unsigned long long offset, void* to, std::size_t room, std::size_t& got) noexcept {
  const ssize_t count = pread(descriptor_of(file_.get()), to, room, static_cast<off_t>(offset));
  got = count > 0 ? static_cast<std::size_t>(count) : 0;
  return count >= 0;
}

bool open_file::write_at(unsigned long long offset, std::string_view bytes) noexcept {
  return lseek(descriptor_of(file_.get()), static_cast<off_t>(offset), SEEK_SET) >= 0 && write(bytes);
}

bool open_file::cut(unsigned long long size) noexcept {
  return !step_fails() && ftruncate(descriptor_of(file_.get()), static_cast<off_t>(size)) == 0;
}

bool open_file::set_facts(const new_file_facts& facts) noexcept {
  const timespec times[] = {{0, UTIME_OMIT}, {static_cast<time_t>(facts.modified), 0}};
  const int file = descriptor_of(file_.get());
  struct stat found;
  return futimens(file, times) == 0 &&
         (!facts.read_only || (fstat(file, &found) == 0 && fchmod(file, found.st_mode & 0555) == 0));
}

bool open_file::keep() noexcept { return true; }

bool open_file::flush() noexcept { return !step_fails() && fsync(descriptor_of(file_.get())) == 0; }

bool open_file::close() noexcept {
  char link[32], name[PATH_MAX];
  if (is_marked_ && file_) {
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor_of(file_.get()));
    const ssize_t size = readlink(link, name, sizeof name - 1);
    name[std::max<ssize_t>(size, 0)] = 0;
    unlink(name);
  }
  return !step_fails() && file_.close();
}

bool copy_content(const std::wstring& from, const std::wstring& to) {
  std::error_code error;
  const std::string source = host_name(from), target = host_name(to);
  if (source.empty() || !fs::copy_file(source, target, fs::copy_options::overwrite_existing, error))
    return false;
  const bool failed = step_fails();
  fs::last_write_time(target, fs::last_write_time(source, error), error);
  return !failed && !error;
}

bool copy_attributes(const std::wstring& from, const std::wstring& to) {
  struct stat found;
  if (stat(host_name(from).c_str(), &found) == 0) chmod(host_name(to).c_str(), found.st_mode & 0777);
  return true;
}

renaming rename_file(const std::wstring& from, const std::wstring& to, bool replace) {
  const std::string source = host_name(from), target = host_name(to);
  if (target.empty() || step_fails()) return renaming::refused;
  if (replace) return rename(source.c_str(), target.c_str()) == 0 ? renaming::done : renaming::refused;
  if (link(source.c_str(), target.c_str()) != 0) return errno == EEXIST ? renaming::taken : renaming::refused;
  unlink(source.c_str());
  return renaming::done;
}

bool remove_file(const std::wstring& path, bool even_read_only) {
  entry_facts found;
  return read_facts(path, links::keep, found) && (found.is_link || even_read_only || !found.read_only) &&
         unlink(host_name(path).c_str()) == 0;
}

}  // namespace ruvo::platform
