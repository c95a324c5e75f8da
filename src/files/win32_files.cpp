#include <algorithm>
#include <vector>

#include "app/win32.hpp"
#include "files/platform.hpp"
#include "files/win32_path.hpp"

namespace ruvo::platform {

namespace {

constexpr DWORD shared_with_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::size_t most_at_once = 1u << 30;

/// Outside of drives a name may be that of a pipe, whose server must not act for the user. On drives the same
/// bit would keep files from being fetched that are stored in a cloud.
DWORD guard_for(const std::wstring& name) noexcept {
  const bool is_on_drive = name.size() > 5 && name[5] == L':';  // behind "\\?\"
  return is_on_drive ? 0 : SECURITY_SQOS_PRESENT | SECURITY_IDENTIFICATION;
}

/// Closes what it holds.
class scoped_handle {
 public:
  explicit scoped_handle(HANDLE handle) noexcept : handle_(handle) {}
  scoped_handle(const scoped_handle&) = delete;
  scoped_handle& operator=(const scoped_handle&) = delete;
  ~scoped_handle() {
    if (*this) CloseHandle(handle_);
  }
  explicit operator bool() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  operator HANDLE() const noexcept { return handle_; }

 private:
  HANDLE handle_;
};

/// Folders can be opened too; those of an empty path cannot.
HANDLE open_existing(const std::wstring& path, DWORD access, DWORD sharing) {
  const std::wstring name = system_path(path);
  return CreateFileW(name.c_str(), access, sharing, nullptr, OPEN_EXISTING,
                     FILE_FLAG_BACKUP_SEMANTICS | guard_for(name), nullptr);
}

bool is_sharing_refusal() noexcept {
  const DWORD error = GetLastError();
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

unsigned long long joined(DWORD high, DWORD low) noexcept {
  return static_cast<unsigned long long>(high) << 32 | low;
}

/// Seconds since 1970, rounded down.
long long seconds(long long ticks_since_1601) noexcept {
  constexpr long long ticks = 10'000'000, from_1601_to_1970 = 11'644'473'600;
  return ticks_since_1601 / ticks - from_1601_to_1970;
}
long long seconds(const FILETIME& time) noexcept {
  return seconds(static_cast<long long>(joined(time.dwHighDateTime, time.dwLowDateTime)));
}

template <class Information>
entry_facts facts_of(const Information& found) noexcept {
  const DWORD attributes = found.dwFileAttributes;
  entry_facts out;
  out.kind = attributes & FILE_ATTRIBUTE_DIRECTORY ? entry_kind::folder : entry_kind::file;
  out.read_only = attributes & FILE_ATTRIBUTE_READONLY;
  out.hidden = attributes & FILE_ATTRIBUTE_HIDDEN;
  if (out.kind == entry_kind::file) out.size = joined(found.nFileSizeHigh, found.nFileSizeLow);
  out.modified = out.changed = seconds(found.ftLastWriteTime);
  out.accessed = seconds(found.ftLastAccessTime);
  return out;
}

/// The number at the end of a security identifier.
unsigned long last_number(PSID sid) noexcept {
  if (!sid || !IsValidSid(sid)) return 0;
  const UCHAR count = *GetSidSubAuthorityCount(sid);
  return count ? *GetSidSubAuthority(sid, count - 1u) : 0;
}

bool may_open(const std::wstring& path, DWORD access) {
  const scoped_handle file(open_existing(path, access, shared_with_all));
  return file || is_sharing_refusal();
}

/// The access rights of a file; empty when it has none, or the system does not tell.
std::vector<unsigned char> rights_of(const std::wstring& path) {
  const scoped_handle file(open_existing(path, READ_CONTROL, shared_with_all));
  if (!file) return {};
  DWORD size = 0;
  GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<unsigned char> out(size);
  if (!GetKernelObjectSecurity(file, DACL_SECURITY_INFORMATION, out.data(), size, &size)) out.clear();
  return out;
}

bool is_encrypted(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_ENCRYPTED;
}

bool mark_for_deletion(HANDLE file, bool marked) noexcept {
  FILE_DISPOSITION_INFO how{static_cast<BOOLEAN>(marked)};
  return SetFileInformationByHandle(file, FileDispositionInfo, &how, sizeof how) != 0;
}

}  // namespace

entry_kind kind_of(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(system_path(path).c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return entry_kind::none;
  return attributes & FILE_ATTRIBUTE_DIRECTORY ? entry_kind::folder : entry_kind::file;
}

// Through a handle, which follows links; what cannot be opened at all still tells what its folder knows of
// it.
bool read_facts(const std::wstring& path, entry_facts& out) {
  const scoped_handle file(open_existing(path, FILE_READ_ATTRIBUTES, shared_with_all));
  BY_HANDLE_FILE_INFORMATION found;
  if (file && GetFileInformationByHandle(file, &found)) {
    out = facts_of(found);
    FILE_BASIC_INFO basic;
    if (GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic) && basic.ChangeTime.QuadPart)
      out.changed = seconds(basic.ChangeTime.QuadPart);
    return true;
  }
  WIN32_FILE_ATTRIBUTE_DATA known;
  if (!GetFileAttributesExW(system_path(path).c_str(), GetFileExInfoStandard, &known)) return false;
  out = facts_of(known);
  return true;
}

bool read_owner(const std::wstring& path, owner_numbers& out) {
  constexpr SECURITY_INFORMATION wanted = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION;
  const scoped_handle file(open_existing(path, READ_CONTROL, shared_with_all));
  if (!file) return false;
  DWORD size = 0;
  GetKernelObjectSecurity(file, wanted, nullptr, 0, &size);
  std::vector<unsigned char> found(size);
  PSID user = nullptr, group = nullptr;
  BOOL is_default;
  if (!GetKernelObjectSecurity(file, wanted, found.data(), size, &size) ||
      !GetSecurityDescriptorOwner(found.data(), &user, &is_default) ||
      !GetSecurityDescriptorGroup(found.data(), &group, &is_default))
    return false;
  out = {last_number(user), last_number(group)};
  return true;
}

// For a folder the same bits stand for listing it and for adding files to it.
bool may_read(const std::wstring& path) { return may_open(path, FILE_READ_DATA); }
bool may_write(const std::wstring& path) { return may_open(path, FILE_WRITE_DATA); }

// A program that runs is found only by asking for the right to write to it.
bool is_held(const std::wstring& path) {
  for (const DWORD access : {GENERIC_READ | GENERIC_WRITE, GENERIC_READ}) {
    const scoped_handle file(open_existing(path, access, 0));
    if (file) return false;
    if (is_sharing_refusal()) return true;
  }
  return false;
}

bool make_folder(const std::wstring& path) {
  return CreateDirectoryW(system_path(path).c_str(), nullptr) || kind_of(path) == entry_kind::folder;
}

bool erase_entry(const std::wstring& path) {
  const std::wstring name = system_path(path);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  return attributes & FILE_ATTRIBUTE_DIRECTORY ? RemoveDirectoryW(name.c_str()) : DeleteFileW(name.c_str());
}

std::wstring temporary_folder() {
  std::wstring out(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetTempPathW(static_cast<DWORD>(out.size()), out.data());
    const bool fits = length < out.size();
    out.resize(length);
    if (fits) return out;
  }
}

// What is marked for deletion goes when its last handle is closed, also by the end of the process.
open_file::open_file(const std::wstring& path, mode how, const std::wstring& like) {
  const bool creates = how == to_create;
  SECURITY_ATTRIBUTES security{sizeof security, nullptr, FALSE};
  std::vector<unsigned char> rights;
  const std::wstring name = system_path(path);
  DWORD flags = FILE_FLAG_SEQUENTIAL_SCAN | guard_for(name);
  if (creates && !like.empty()) {
    rights = rights_of(like);
    if (!rights.empty()) security.lpSecurityDescriptor = rights.data();
    if (is_encrypted(like)) flags |= FILE_ATTRIBUTE_ENCRYPTED;
  }
  const HANDLE file = CreateFileW(name.c_str(), creates ? GENERIC_WRITE | DELETE : GENERIC_READ,
                                  creates ? FILE_SHARE_READ : shared_with_all, creates ? &security : nullptr,
                                  creates ? CREATE_NEW : OPEN_EXISTING,
                                  creates ? flags | FILE_FLAG_OPEN_REPARSE_POINT : flags, nullptr);
  handle_ = file == INVALID_HANDLE_VALUE ? nullptr : file;
  if (creates && handle_) is_marked_ = mark_for_deletion(handle_, true);
}

open_file::~open_file() { close(); }

bool open_file::size(unsigned long long& out) const noexcept {
  LARGE_INTEGER size;
  if (!GetFileSizeEx(handle_, &size)) return false;
  out = static_cast<unsigned long long>(size.QuadPart);
  return true;
}

bool open_file::read(void* to, std::size_t room, std::size_t& got) noexcept {
  DWORD count = 0;
  const bool done = ReadFile(handle_, to, static_cast<DWORD>(std::min(room, most_at_once)), &count, nullptr);
  got = count;
  return done;
}

bool open_file::write(std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size(), most_at_once));
    DWORD written = 0;
    if (!WriteFile(handle_, bytes.data(), size, &written, nullptr) || !written) return false;
    bytes.remove_prefix(written);
  }
  return true;
}

bool open_file::keep() noexcept {
  if (is_marked_) is_marked_ = !mark_for_deletion(handle_, false);
  return !is_marked_;
}
bool open_file::flush() noexcept { return FlushFileBuffers(handle_); }

bool open_file::close() noexcept {
  const bool done = !handle_ || CloseHandle(handle_);
  handle_ = nullptr;
  return done;
}

bool copy_content(const std::wstring& from, const std::wstring& to) {
  constexpr DWORD copied = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                           FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
  const std::wstring source = system_path(from), target = system_path(to);
  // Another process may just look whether the target is being written.
  for (DWORD wait = 1; !CopyFileW(source.c_str(), target.c_str(), FALSE); wait *= 2) {
    if (GetLastError() != ERROR_SHARING_VIOLATION || wait > 16) return false;
    Sleep(wait);
  }
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
      !EncryptFileW(name.c_str()))
    return false;
  if (attributes & copied) SetFileAttributesW(name.c_str(), own | (attributes & copied));
  return true;
}

// A target that somebody reads, or that a scanner looks at, may be free a moment later.
creation rename_file(const std::wstring& from, const std::wstring& to, bool replace) {
  const std::wstring old_name = system_path(from), new_name = system_path(to);
  const DWORD flags = MOVEFILE_WRITE_THROUGH | (replace ? MOVEFILE_REPLACE_EXISTING : 0);
  for (DWORD wait = 1;; wait *= 2) {
    if (MoveFileExW(old_name.c_str(), new_name.c_str(), flags)) return creation::done;
    const DWORD error = GetLastError();
    if (!replace && (error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS)) return creation::taken;
    const bool may_pass = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    if (!may_pass || wait > 16) return creation::refused;
    Sleep(wait);
  }
}

void discard_file(const std::wstring& path) {
  const std::wstring name = system_path(path);
  if (DeleteFileW(name.c_str())) return;
  SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL);
  DeleteFileW(name.c_str());
}

}  // namespace ruvo::platform
