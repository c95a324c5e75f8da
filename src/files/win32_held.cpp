// Folders held open, and what is done in them.

#include "files/listing_platform.hpp"
#include "files/win32_nt.hpp"
#include "files/win32_path.hpp"

namespace ruvo::platform {

namespace {

using outcome = held_folder::outcome;

constexpr DWORD shared_with_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD fixed_in_place = FILE_SHARE_READ | FILE_SHARE_WRITE;

/// Nothing has the name. Not so with a name that the system refuses, or a share that is away: something may
/// be there.
bool is_missing(DWORD error) noexcept {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_DELETE_PENDING;
}

outcome outcome_of(DWORD error) noexcept {
  if (error == ERROR_SUCCESS) return outcome::held;
  return is_missing(error) ? outcome::missing : outcome::refused;
}

/// Tries, in this order, without sharing deletion and with it, which whoever may remove the folder needs, and
/// with the right to list and without it, which a folder to be filled need not give.
template <class Open>
DWORD open_folder(bool shares_deletion, Open open) {
  constexpr DWORD to_list = FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES,
                  to_pass = FILE_TRAVERSE | FILE_READ_ATTRIBUTES;
  DWORD error = ERROR_SUCCESS;
  for (const DWORD access : {to_list, to_pass}) {
    error = open(access, shares_deletion ? shared_with_all : fixed_in_place);
    if (error == ERROR_SHARING_VIOLATION) error = open(access, shared_with_all);
    if (error != ERROR_ACCESS_DENIED) break;
  }
  return error;
}

/// Whether a path leads to what is open.
bool leads_to(const std::wstring& path, HANDLE opened) {
  const nt::handle now(CreateFileW(system_path(path).c_str(), FILE_READ_ATTRIBUTES, shared_with_all, nullptr,
                                   OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  entry_identity expected, found;
  return nt::identify(opened, expected) && nt::identify(now, found) && expected == found;
}

/// A name in a folder that is open, or a full path. Links are not followed.
struct place {
  HANDLE folder;
  const std::wstring& name;

  DWORD open(DWORD access, DWORD sharing, nt::handle& out) const {
    if (folder) return nt::open(folder, name, {access, sharing, FILE_OPEN, 0}, out);
    out.reset(CreateFileW(name.c_str(), access, sharing, nullptr, OPEN_EXISTING,
                          FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    return out ? ERROR_SUCCESS : GetLastError();
  }
  bool holds(HANDLE opened) const {
    return folder ? nt::is_what_is_named(folder, name, opened) : nt::is_what_is_at(name, opened);
  }
};

/// Marks an open file or empty folder as to be removed. Its name is gone at once where the system can do
/// that, otherwise when it is closed everywhere.
DWORD mark_removed(HANDLE opened) noexcept {
  // FileDispositionInfoEx, with the bits for deletion, for the name to go at once, and for read-only files.
  constexpr auto extended = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
  DWORD bits = 0x1 | 0x2 | 0x10;
  if (SetFileInformationByHandle(opened, extended, &bits, sizeof bits)) return ERROR_SUCCESS;
  const DWORD error = GetLastError();
  // What really stands in the way is told by the older call as well.
  if (error == ERROR_DIR_NOT_EMPTY || error == ERROR_SHARING_VIOLATION) return error;
  FILE_DISPOSITION_INFO removed{TRUE};
  return SetFileInformationByHandle(opened, FileDispositionInfo, &removed, sizeof removed) ? ERROR_SUCCESS
                                                                                           : GetLastError();
}

/// The older call refuses what is marked as read-only.
DWORD mark_removed_unprotected(HANDLE opened) noexcept {
  const auto change = [opened](DWORD attributes) {
    FILE_BASIC_INFO basic{};  // zero leaves a time as it is
    basic.FileAttributes = attributes ? attributes : FILE_ATTRIBUTE_NORMAL;
    return SetFileInformationByHandle(opened, FileBasicInfo, &basic, sizeof basic) != 0;
  };
  BY_HANDLE_FILE_INFORMATION found;
  if (!GetFileInformationByHandle(opened, &found) || !(found.dwFileAttributes & FILE_ATTRIBUTE_READONLY) ||
      !change(found.dwFileAttributes & ~DWORD{FILE_ATTRIBUTE_READONLY}))
    return ERROR_ACCESS_DENIED;
  const DWORD error = mark_removed(opened);
  if (error != ERROR_SUCCESS) change(found.dwFileAttributes);
  return error;
}

/// ERROR_SUCCESS when it is removed, or was not there.
DWORD try_to_remove(const place& where, const found_facts& found, const entry_identity* expected,
                    bool unprotects) {
  nt::handle opened;
  const DWORD access = DELETE | FILE_READ_ATTRIBUTES | (unprotects ? FILE_WRITE_ATTRIBUTES : 0);
  const DWORD error = where.open(access, shared_with_all, opened);
  if (error != ERROR_SUCCESS) return is_missing(error) ? ERROR_SUCCESS : error;
  entry_identity identity;
  const bool is_expected = !expected || (nt::identify(opened, identity) && identity == *expected);
  const found_facts now = nt::facts_of(opened);
  if (!is_expected || now.is_folder != found.is_folder || now.is_link != found.is_link ||
      !where.holds(opened))
    return ERROR_INVALID_REPARSE_DATA;
  return unprotects ? mark_removed_unprotected(opened) : mark_removed(opened);
}

// A folder that somebody else erases too, and holds for it, may be free a moment later.
bool remove_at(const place& where, const found_facts& found, const entry_identity* expected) {
  DWORD error = try_to_remove(where, found, expected, false);
  for (DWORD wait = 1; found.is_folder && error == ERROR_SHARING_VIOLATION && wait <= 16; wait *= 2) {
    Sleep(wait);
    error = try_to_remove(where, found, expected, false);
  }
  return error == ERROR_SUCCESS ||
         (error == ERROR_ACCESS_DENIED && try_to_remove(where, found, expected, true) == ERROR_SUCCESS);
}

}  // namespace

held_folder::held_folder(const std::wstring& path, bool follows, purpose use) {
  const std::wstring name = system_path(path);
  result_ = outcome::missing;
  if (name.empty()) return;
  nt::handle opened;
  const DWORD flags = FILE_FLAG_BACKUP_SEMANTICS | (follows ? 0 : FILE_FLAG_OPEN_REPARSE_POINT);
  result_ = outcome_of(open_folder(use == purpose::listing, [&](DWORD access, DWORD sharing) -> DWORD {
    opened.reset(CreateFileW(name.c_str(), access, sharing, nullptr, OPEN_EXISTING, flags, nullptr));
    return opened ? ERROR_SUCCESS : GetLastError();
  }));
  if (result_ != outcome::held) return;
  const found_facts found = nt::facts_of(opened);
  if (!found.is_folder)
    result_ = outcome::file;
  else if (!follows && (found.is_link || !nt::is_what_is_at(name, opened)))
    result_ = outcome::link;
  else
    handle_ = opened.release();
}

held_folder::held_folder(const held_folder& parent, const std::wstring& name, bool makes) {
  nt::handle opened;
  const DWORD error = open_folder(false, [&](DWORD access, DWORD sharing) {
    const nt::manner how{access, sharing, static_cast<ULONG>(makes ? FILE_OPEN_IF : FILE_OPEN),
                         FILE_DIRECTORY_FILE};
    return nt::open(parent.handle_, name, how, opened);
  });
  // Of a file in its place the system says ERROR_DIRECTORY, or that the name is taken.
  const bool is_file =
      error == ERROR_DIRECTORY || error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
  result_ = is_file ? outcome::file : outcome_of(error);
  if (result_ != outcome::held) return;
  if (nt::facts_of(opened).is_link || !nt::is_what_is_named(parent.handle_, name, opened))
    result_ = outcome::link;
  else
    handle_ = opened.release();
}

held_folder::~held_folder() {
  if (handle_) CloseHandle(handle_);
}

entry_identity held_folder::identity() const {
  entry_identity out;
  nt::identify(handle_, out);
  return out;
}

bool held_folder::is_at(const std::wstring& path) const { return leads_to(path, handle_); }

bool held_folder::remove(const std::wstring& name, const found_facts& found) const {
  return remove_at({handle_, name}, found, nullptr);
}

held_file::held_file(const held_folder& parent, const std::wstring& name) {
  const HANDLE folder = parent.handle();
  nt::handle opened;
  for (const DWORD sharing : {fixed_in_place, shared_with_all}) {
    const nt::manner how{FILE_READ_DATA | FILE_READ_ATTRIBUTES, sharing, FILE_OPEN, FILE_NON_DIRECTORY_FILE};
    if (nt::open(folder, name, how, opened) != ERROR_SHARING_VIOLATION) break;
  }
  if (opened && !nt::facts_of(opened).is_link && nt::is_what_is_named(folder, name, opened))
    handle_ = opened.release();
}

held_file::~held_file() {
  if (handle_) CloseHandle(handle_);
}

bool held_file::is_at(const std::wstring& path) const { return leads_to(path, handle_); }

bool remove_entry(const std::wstring& path, const found_facts& found, const entry_identity* expected) {
  const std::wstring name = system_path(path);
  return !name.empty() && remove_at({nullptr, name}, found, expected);
}

}  // namespace ruvo::platform
