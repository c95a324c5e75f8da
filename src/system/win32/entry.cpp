#include "system/entry.hpp"

#include <vector>

#include "system/win32/nt.hpp"
#include "system/win32/open.hpp"
#include "system/win32/path.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

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
  const handle file = open_existing(system_path(path), access);
  return file || is_sharing_refusal();
}

/// The tag of a reparse point; 0 when the system does not tell.
DWORD reparse_tag(const std::wstring& name) {
  const handle point =
      open_existing(name, FILE_READ_ATTRIBUTES, shared_with_all, FILE_FLAG_OPEN_REPARSE_POINT);
  FILE_ATTRIBUTE_TAG_INFO found;
  if (!point || !GetFileInformationByHandleEx(point.get(), FileAttributeTagInfo, &found, sizeof found))
    return 0;
  return found.ReparseTag;
}

/// What tells a file or folder from all others.
struct identity {
  DWORD volume, high, low;
  bool operator==(const identity&) const = default;
};

bool identify(const std::wstring& name, identity& out) {
  const handle entry = open_existing(name, FILE_READ_ATTRIBUTES);
  BY_HANDLE_FILE_INFORMATION found;
  if (!entry || !GetFileInformationByHandle(entry.get(), &found)) return false;
  out = {found.dwVolumeSerialNumber, found.nFileIndexHigh, found.nFileIndexLow};
  return true;
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
  const handle file = open_existing(system_path(path), FILE_READ_ATTRIBUTES);
  BY_HANDLE_FILE_INFORMATION found;
  if (file && GetFileInformationByHandle(file.get(), &found)) {
    out = facts_of(found);
    FILE_BASIC_INFO basic;
    if (GetFileInformationByHandleEx(file.get(), FileBasicInfo, &basic, sizeof basic) &&
        basic.ChangeTime.QuadPart)
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
  const handle file = open_existing(system_path(path), READ_CONTROL);
  if (!file) return false;
  DWORD size = 0;
  GetKernelObjectSecurity(file.get(), wanted, nullptr, 0, &size);
  std::vector<unsigned char> found(size);
  PSID user = nullptr, group = nullptr;
  BOOL is_default;
  if (!GetKernelObjectSecurity(file.get(), wanted, found.data(), size, &size) ||
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
    const handle file = open_existing(system_path(path), access, 0);
    if (file) return false;
    if (is_sharing_refusal()) return true;
  }
  return false;
}

bool look_at(const std::wstring& path, found_facts& out) {
  const std::wstring name = system_path(path);
  WIN32_FILE_ATTRIBUTE_DATA record;
  if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &record)) return false;
  const bool is_point = record.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
  const unsigned long long high = record.nFileSizeHigh;
  nt::set_facts(record.dwFileAttributes, is_point ? reparse_tag(name) : 0, high << 32 | record.nFileSizeLow,
                out);
  return true;
}

bool is_inside(const std::wstring& path, const std::wstring& folder) {
  identity wanted, found;
  if (!identify(system_path(folder), wanted)) return false;
  for (std::wstring at = system_path(path); !at.empty();) {
    if (identify(at, found) && found == wanted) return true;
    if (at.back() == L'\\') at.pop_back();
    const std::size_t cut = at.rfind(L'\\');
    if (cut == at.npos) break;
    at.resize(cut);
    if (at.ends_with(L':')) at += L'\\';
  }
  return false;
}

}  // namespace ruvo::platform
