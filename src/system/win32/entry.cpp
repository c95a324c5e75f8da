// SPDX-License-Identifier: BSL-1.0

// What stands at a path, by the system's records.

#include "system/entry.hpp"

#include <vector>

#include "system/win32/facts.hpp"
#include "system/win32/late.hpp"
#include "system/win32/open.hpp"
#include "system/win32/path.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

bool is_sharing_refusal() noexcept {
  const DWORD error = GetLastError();
  return error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION;
}

/// From the record of a name or of a handle.
template <class Information>
entry_record record_of(const Information& found) noexcept {
  entry_record out;
  out.attributes = found.dwFileAttributes;
  out.size = joined(found.nFileSizeHigh, found.nFileSizeLow);
  out.accessed = ticks_of(found.ftLastAccessTime);
  out.written = ticks_of(found.ftLastWriteTime);
  return out;
}

/// The number at the end of a security identifier.
unsigned long last_number(PSID sid) noexcept {
  if (!sid || !late::security().is_sid(sid)) return 0;
  const auto* const parts = static_cast<const SID*>(sid);
  return parts->SubAuthorityCount ? parts->SubAuthority[parts->SubAuthorityCount - 1] : 0;
}

bool may_open(const std::wstring& path, DWORD access) {
  const handle file = open_existing(system_path(path), access);
  return file || is_sharing_refusal();
}

/// The tag of a reparse point; 0 when the system does not say.
DWORD reparse_tag(const std::wstring& name) {
  const handle point =
      open_existing(name, FILE_READ_ATTRIBUTES, shared_with_all, FILE_FLAG_OPEN_REPARSE_POINT);
  FILE_ATTRIBUTE_TAG_INFO found;
  if (!point || !GetFileInformationByHandleEx(point.get(), FileAttributeTagInfo, &found, sizeof found))
    return 0;
  return found.ReparseTag;
}

bool identify(const std::wstring& name, entry_identity& out) {
  return read_identity(open_existing(name, FILE_READ_ATTRIBUTES).get(), out);
}

/// Of what a link leads to. False when it cannot be opened.
bool read_followed(const std::wstring& name, entry_facts& out) {
  const handle file = open_existing(name, FILE_READ_ATTRIBUTES);
  BY_HANDLE_FILE_INFORMATION found;
  if (!file || !GetFileInformationByHandle(file.get(), &found)) return false;
  entry_record record = record_of(found);
  FILE_BASIC_INFO basic;
  if (GetFileInformationByHandleEx(file.get(), FileBasicInfo, &basic, sizeof basic))
    record.changed = basic.ChangeTime.QuadPart;
  out = facts_of(record);
  out.is_link = false;
  return true;
}

bool is_missing_error(DWORD error) noexcept {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

/// What the folder knows.
bool read_kept(const std::wstring& name, entry_facts& out) {
  WIN32_FILE_ATTRIBUTE_DATA found{};
  if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &found)) {
    if (is_missing_error(GetLastError())) return false;
    found.dwFileAttributes = GetFileAttributesW(name.c_str());  // all that a device has
    if (found.dwFileAttributes == INVALID_FILE_ATTRIBUTES) return false;
  }
  entry_record record = record_of(found);
  if (record.attributes & FILE_ATTRIBUTE_REPARSE_POINT) record.tag = reparse_tag(name);
  out = facts_of(record);
  return true;
}

}  // namespace

bool read_facts(const std::wstring& path, links how, entry_facts& out) {
  const std::wstring name = system_path(path);
  return (how == links::follow && read_followed(name, out)) || read_kept(name, out);
}

bool is_missing(const std::wstring& path) {
  if (GetFileAttributesW(system_path(path).c_str()) != INVALID_FILE_ATTRIBUTES) return false;
  const DWORD error = GetLastError();
  const bool can_never_be =
      error == ERROR_INVALID_NAME || error == ERROR_FILENAME_EXCED_RANGE || error == ERROR_BAD_PATHNAME;
  return is_missing_error(error) || can_never_be;
}

bool read_owner(const std::wstring& path, owner_numbers& out) {
  constexpr SECURITY_INFORMATION wanted = OWNER_SECURITY_INFORMATION | GROUP_SECURITY_INFORMATION;
  const handle file = open_existing(system_path(path), READ_CONTROL);
  if (!file) return false;
  std::vector<unsigned char> found = security_of(file.get(), wanted);
  PSID user = nullptr, group = nullptr;
  BOOL is_default;
  if (found.empty() || !late::security().owner_of(found.data(), &user, &is_default) ||
      !late::security().group_of(found.data(), &group, &is_default))
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

bool is_inside(const std::wstring& path, const std::wstring& folder) {
  entry_identity wanted, found;
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
