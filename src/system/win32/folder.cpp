// SPDX-License-Identifier: BSL-1.0

// Folders held open, and what is done in them.

#include "system/folder.hpp"

#include <utility>

#include "system/win32/facts.hpp"
#include "system/win32/nt.hpp"
#include "system/win32/open.hpp"
#include "system/win32/path.hpp"
#include "system/win32/text.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

using outcome = held_folder::outcome;

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

/// A name in a folder that is open, or a full path. Links are not followed.
struct place {
  HANDLE folder;
  const std::wstring& name;

  DWORD open(DWORD access, DWORD sharing, handle& out) const {
    if (folder) return nt::open(folder, name, {access, sharing, FILE_OPEN, 0}, out);
    out = open_existing(name, access, sharing, FILE_FLAG_OPEN_REPARSE_POINT);
    return error_of(static_cast<bool>(out));
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
  const DWORD error = error_of(SetFileInformationByHandle(opened, extended, &bits, sizeof bits));
  // What really stands in the way is what the older call reports as well.
  if (error == ERROR_SUCCESS || error == ERROR_DIR_NOT_EMPTY || error == ERROR_SHARING_VIOLATION)
    return error;
  FILE_DISPOSITION_INFO removed{TRUE};
  return error_of(SetFileInformationByHandle(opened, FileDispositionInfo, &removed, sizeof removed));
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
DWORD try_to_remove(const place& where, const entry_kind& found, const entry_identity* expected,
                    bool unprotects) {
  handle opened;
  const DWORD access = DELETE | FILE_READ_ATTRIBUTES | (unprotects ? FILE_WRITE_ATTRIBUTES : 0);
  const DWORD error = where.open(access, shared_with_all, opened);
  if (error != ERROR_SUCCESS) return is_missing(error) ? ERROR_SUCCESS : error;
  entry_identity identity;
  const bool is_expected = !expected || (nt::identify(opened.get(), identity) && identity == *expected);
  if (!is_expected || kind_of(opened.get()) != found || !where.holds(opened.get()))
    return ERROR_INVALID_REPARSE_DATA;
  return unprotects ? mark_removed_unprotected(opened.get()) : mark_removed(opened.get());
}

// A folder that somebody else removes too, and holds for it, may be free a moment later.
bool remove_at(const place& where, const entry_kind& found, const entry_identity* expected) {
  const DWORD error =
      insist([&] { return try_to_remove(where, found, expected, false); },
             [&](DWORD reason) { return found.is_folder && reason == ERROR_SHARING_VIOLATION; });
  return error == ERROR_SUCCESS ||
         (error == ERROR_ACCESS_DENIED && try_to_remove(where, found, expected, true) == ERROR_SUCCESS);
}

}  // namespace

bool make_folder(const std::wstring& path) {
  entry_facts found;
  return CreateDirectoryW(system_path(path).c_str(), nullptr) ||
         (read_facts(path, links::keep, found) && found.is_folder);
}

bool make_new_folder(const std::wstring& path) {
  return CreateDirectoryW(system_path(path).c_str(), nullptr);
}

bool remove_folder(const std::wstring& path) { return RemoveDirectoryW(system_path(path).c_str()); }

std::wstring temporary_folder() {
  return text_from([](wchar_t* out, DWORD size) { return GetTempPathW(size, out); });
}

held_folder::held_folder(const std::wstring& path, bool follows, purpose use) {
  const std::wstring name = system_path(path);
  result_ = outcome::missing;
  if (name.empty()) return;
  handle opened;
  const DWORD flags = follows ? 0 : FILE_FLAG_OPEN_REPARSE_POINT;
  result_ = outcome_of(open_folder(use == purpose::listing, [&](DWORD access, DWORD sharing) {
    opened = open_existing(name, access, sharing, flags);
    return error_of(static_cast<bool>(opened));
  }));
  if (result_ != outcome::held) return;
  const entry_kind found = kind_of(opened.get());
  if (!found.is_folder)
    result_ = outcome::file;
  else if (!follows && (found.is_link || !nt::is_what_is_at(name, opened.get())))
    result_ = outcome::link;
  else
    folder_ = std::move(opened);
}

held_folder::held_folder(const held_folder& parent, const std::wstring& name, bool makes) {
  handle opened;
  const DWORD error = open_folder(false, [&](DWORD access, DWORD sharing) {
    const nt::manner how{access, sharing, static_cast<ULONG>(makes ? FILE_OPEN_IF : FILE_OPEN),
                         FILE_DIRECTORY_FILE};
    return nt::open(parent.get(), name, how, opened);
  });
  // Of a file in its place the system says ERROR_DIRECTORY, or that the name is taken.
  const bool is_file =
      error == ERROR_DIRECTORY || error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
  result_ = is_file ? outcome::file : outcome_of(error);
  if (result_ != outcome::held) return;
  if (kind_of(opened.get()).is_link || !nt::is_what_is_named(parent.get(), name, opened.get()))
    result_ = outcome::link;
  else
    folder_ = std::move(opened);
}

entry_identity held_folder::identity() const {
  entry_identity out;
  nt::identify(get(), out);
  return out;
}

bool held_folder::is_at(const std::wstring& path) const { return nt::leads_to(path, get()); }

bool held_folder::remove(const std::wstring& name, const entry_kind& found) const {
  return remove_at({get(), name}, found, nullptr);
}

held_file::held_file(const held_folder& parent, const std::wstring& name) {
  const HANDLE folder = parent.get();
  handle opened;
  for (const DWORD sharing : {fixed_in_place, shared_with_all}) {
    const nt::manner how{FILE_READ_DATA | FILE_READ_ATTRIBUTES, sharing, FILE_OPEN, FILE_NON_DIRECTORY_FILE};
    if (nt::open(folder, name, how, opened) != ERROR_SHARING_VIOLATION) break;
  }
  if (opened && !kind_of(opened.get()).is_link && nt::is_what_is_named(folder, name, opened.get()))
    file_ = std::move(opened);
}

bool held_file::is_at(const std::wstring& path) const { return nt::leads_to(path, file_.get()); }

bool remove_found(const std::wstring& path, const entry_kind& found, const entry_identity* expected) {
  const std::wstring name = system_path(path);
  return !name.empty() && remove_at({nullptr, name}, found, expected);
}

}  // namespace ruvo::platform
