// SPDX-License-Identifier: BSL-1.0

// Files read, written, copied, renamed and removed.

#include "system/file.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "system/win32/facts.hpp"
#include "system/win32/late.hpp"
#include "system/win32/nt.hpp"
#include "system/win32/open.hpp"
#include "system/win32/path.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

/// The access rights of a file; empty when it has none, or the system does not say.
std::vector<unsigned char> rights_of(const std::wstring& path) {
  const handle file = open_existing(system_path(path), READ_CONTROL);
  return file ? security_of(file.get(), DACL_SECURITY_INFORMATION) : std::vector<unsigned char>();
}

bool is_encrypted(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_ENCRYPTED;
}

OVERLAPPED place_at(unsigned long long offset) noexcept {
  OVERLAPPED out{};
  out.Offset = static_cast<DWORD>(offset);
  out.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return out;
}

bool mark_for_deletion(HANDLE file, bool marked) noexcept {
  FILE_DISPOSITION_INFO how{static_cast<BOOLEAN>(marked)};
  return SetFileInformationByHandle(file, FileDispositionInfo, &how, sizeof how) != 0;
}

}  // namespace

// What is marked for deletion goes when its last handle is closed, also by the end of the process.
open_file::open_file(const std::wstring& path, mode how, const std::wstring& like) {
  const bool creates = how != to_read;
  SECURITY_ATTRIBUTES security{sizeof security, nullptr, FALSE};
  std::vector<unsigned char> rights;
  const std::wstring name = system_path(path);
  DWORD flags = (how == to_hold ? FILE_FLAG_DELETE_ON_CLOSE : FILE_FLAG_SEQUENTIAL_SCAN) | guard_for(name);
  if (creates && !like.empty()) {
    rights = rights_of(like);
    if (!rights.empty()) security.lpSecurityDescriptor = rights.data();
    if (is_encrypted(like)) flags |= FILE_ATTRIBUTE_ENCRYPTED;
  }
  file_ = handle(CreateFileW(name.c_str(), creates ? GENERIC_WRITE | DELETE : GENERIC_READ,
                             creates ? FILE_SHARE_READ : shared_with_all, creates ? &security : nullptr,
                             creates ? CREATE_NEW : OPEN_EXISTING,
                             creates ? flags | FILE_FLAG_OPEN_REPARSE_POINT : flags, nullptr));
  if (how == to_create && file_) is_marked_ = mark_for_deletion(file_.get(), true);
}

bool open_file::size(unsigned long long& out) const noexcept {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(file_.get(), &size)) return false;
  out = static_cast<unsigned long long>(size.QuadPart);
  return true;
}

bool open_file::is_at(const std::wstring& path) const { return nt::leads_to(path, file_.get()); }

// The folder is held without sharing deletion. What is marked for deletion could not be opened by its name.
bool open_file::is_in(const held_folder&, const std::wstring&) const { return true; }

bool open_file::rewind() noexcept { return SetFilePointerEx(file_.get(), {}, nullptr, FILE_BEGIN); }

bool open_file::read(void* to, std::size_t room, std::size_t& got) noexcept {
  DWORD count = 0;
  const bool done =
      ReadFile(file_.get(), to, static_cast<DWORD>(std::min(room, most_at_once)), &count, nullptr);
  got = count;
  return done;
}

bool open_file::write(std::string_view bytes) noexcept {
  return write_all(file_.get(), bytes) == bytes.size();
}

bool open_file::read_at(unsigned long long offset, void* to, std::size_t room, std::size_t& got) noexcept {
  OVERLAPPED place = place_at(offset);
  DWORD count = 0;
  const DWORD error = error_of(
      ReadFile(file_.get(), to, static_cast<DWORD>(std::min(room, most_at_once)), &count, &place) != 0);
  got = error == ERROR_SUCCESS ? count : 0;
  return error == ERROR_SUCCESS || error == ERROR_HANDLE_EOF;
}

bool open_file::write_at(unsigned long long offset, std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    OVERLAPPED place = place_at(offset);
    const auto size = static_cast<DWORD>(std::min(bytes.size(), most_at_once));
    DWORD written = 0;
    if (!WriteFile(file_.get(), bytes.data(), size, &written, &place) || !written) return false;
    bytes.remove_prefix(written);
    offset += written;
  }
  return true;
}

bool open_file::cut(unsigned long long size) noexcept {
  FILE_END_OF_FILE_INFO end{};
  end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
  return SetFileInformationByHandle(file_.get(), FileEndOfFileInfo, &end, sizeof end) != 0;
}

bool open_file::set_facts(const new_file_facts& facts) noexcept {
  FILE_BASIC_INFO basic{};  // zero leaves a time as it is
  basic.LastWriteTime.QuadPart = ticks_from(facts.modified);
  basic.FileAttributes = FILE_ATTRIBUTE_ARCHIVE | (facts.read_only ? FILE_ATTRIBUTE_READONLY : 0) |
                         (facts.hidden ? FILE_ATTRIBUTE_HIDDEN : 0);
  return SetFileInformationByHandle(file_.get(), FileBasicInfo, &basic, sizeof basic) != 0;
}

bool open_file::keep() noexcept {
  if (is_marked_) is_marked_ = !mark_for_deletion(file_.get(), false);
  return !is_marked_;
}
bool open_file::flush() noexcept { return FlushFileBuffers(file_.get()); }

bool open_file::close() noexcept { return file_.close(); }

bool copy_content(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD copied = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                           FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const std::wstring source = system_path(from), target = system_path(to);
  const auto copy = [&] { return error_of(CopyFileW(source.c_str(), target.c_str(), FALSE)); };
  // Another process may just look whether the target is being written.
  if (insist(copy, [](DWORD error) { return error == ERROR_SHARING_VIOLATION; }) != ERROR_SUCCESS)
    return false;
  // Wine leaves an existing file's attributes as they are.
  const DWORD wanted = GetFileAttributesW(source.c_str()), own = GetFileAttributesW(target.c_str());
  if (wanted == INVALID_FILE_ATTRIBUTES || own == INVALID_FILE_ATTRIBUTES) return false;
  return !((wanted ^ own) & copied) ||
         SetFileAttributesW(target.c_str(), (own & ~copied) | (wanted & copied));
}

bool copy_attributes(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD copied = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const DWORD attributes = GetFileAttributesW(system_path(from).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & (copied | FILE_ATTRIBUTE_ENCRYPTED)))
    return true;
  const std::wstring name = system_path(to);
  const DWORD own = GetFileAttributesW(name.c_str());
  if (own == INVALID_FILE_ATTRIBUTES) return true;
  if (attributes & FILE_ATTRIBUTE_ENCRYPTED && !(own & FILE_ATTRIBUTE_ENCRYPTED) &&
      !late::security().encrypt(name.c_str()))
    return false;
  if (attributes & copied) SetFileAttributesW(name.c_str(), own | (attributes & copied));
  return true;
}

// A target that somebody reads, or that a scanner looks at, may be free a moment later.
renaming rename_file(const std::wstring& from, const std::wstring& to, bool replace) {
  const std::wstring old_name = system_path(from), new_name = system_path(to);
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0);
  const DWORD error =
      insist([&] { return error_of(MoveFileExW(old_name.c_str(), new_name.c_str(), flags)); },
             [](DWORD found) { return found == ERROR_ACCESS_DENIED || found == ERROR_SHARING_VIOLATION; });
  if (error == ERROR_SUCCESS) return renaming::done;
  const bool is_taken = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
  return is_taken && !replace ? renaming::taken : renaming::refused;
}

bool remove_file(const std::wstring& path, bool even_read_only) {
  const std::wstring name = system_path(path);
  if (DeleteFileW(name.c_str())) return true;
  return even_read_only && SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL) &&
         DeleteFileW(name.c_str());
}

}  // namespace ruvo::platform
