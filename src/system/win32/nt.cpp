// SPDX-License-Identifier: BSL-1.0

// The system's calls below its documented ones, found at run time.

#include "system/win32/nt.hpp"

#include <array>
#include <cstddef>
#include <memory>

#include "system/win32/facts.hpp"
#include "system/win32/path.hpp"

namespace ruvo::platform::nt {

namespace {

using open_call = NTSTATUS(NTAPI*)(PHANDLE, ACCESS_MASK, OBJECT_ATTRIBUTES*, IO_STATUS_BLOCK*, PLARGE_INTEGER,
                                   ULONG, ULONG, ULONG, ULONG, void*, ULONG);
using read_call = NTSTATUS(NTAPI*)(HANDLE, HANDLE, void*, void*, IO_STATUS_BLOCK*, void*, ULONG, int, BOOLEAN,
                                   UNICODE_STRING*, BOOLEAN);
using ask_call = NTSTATUS(NTAPI*)(HANDLE, IO_STATUS_BLOCK*, void*, ULONG, int);
using error_call = ULONG(NTAPI*)(NTSTATUS);

/// Every process has this library, and it is never unloaded.
template <class Call>
Call find(const char* name) noexcept {
  const HMODULE system = GetModuleHandleW(L"ntdll.dll");
  const FARPROC found = system ? GetProcAddress(system, name) : nullptr;
  return reinterpret_cast<Call>(reinterpret_cast<void (*)()>(found));
}

struct calls {
  open_call open = find<open_call>("NtCreateFile");
  read_call read = find<read_call>("NtQueryDirectoryFile");
  ask_call ask = find<ask_call>("NtQueryInformationFile");
  error_call error = find<error_call>("RtlNtStatusToDosError");
  // Wine opens what a link leads to, even when the link itself is asked for.
  bool follows_links = find<void (*)()>("wine_get_version") != nullptr;
};

const calls& system() {
  static const calls out;
  return out;
}

// How NtQueryDirectoryFile numbers what it gives.
constexpr int full_records = 2, identified_records = 37;

/// The same with a number for the entry.
struct identified_record {
  ULONG next, index;
  LARGE_INTEGER times[4], size, allocated;
  ULONG attributes, name_bytes, tag;
  char short_name_bytes;
  wchar_t short_name[12];
  LARGE_INTEGER id;
  wchar_t name[1];
};

bool fill(UNICODE_STRING& out, const std::wstring& text) noexcept {
  const std::size_t bytes = text.size() * sizeof(wchar_t);
  if (bytes > 0xFFFE) return false;
  out.Buffer = const_cast<wchar_t*>(text.data());
  out.Length = out.MaximumLength = static_cast<USHORT>(bytes);
  return true;
}

DWORD query(HANDLE folder, void* buffer, ULONG size, int kind, UNICODE_STRING* name, bool from_start) {
  IO_STATUS_BLOCK done;
  const NTSTATUS status =
      system().read(folder, nullptr, nullptr, nullptr, &done, buffer, size, kind, FALSE, name, from_start);
  return status == 0 ? ERROR_SUCCESS : system().error(status);
}

bool read_index(HANDLE opened, unsigned long long& out) noexcept {
  constexpr int internal = 6;  // FileInternalInformation
  IO_STATUS_BLOCK done;
  return system().ask && system().ask(opened, &done, &out, sizeof out, internal) == 0;
}

/// A folder's own word on what has a name in it: no link, and the very folder that is open.
bool lists_as_itself(HANDLE folder, const std::wstring& name, HANDLE opened) {
  handle fresh;  // a folder that was read already gives what it was
  const manner to_list{FILE_LIST_DIRECTORY | SYNCHRONIZE, manner().sharing, FILE_OPEN, FILE_DIRECTORY_FILE};
  UNICODE_STRING mask;
  alignas(identified_record) std::array<std::byte, 1024> buffer;
  if (!fill(mask, name) || open(folder, {}, to_list, fresh) != ERROR_SUCCESS ||
      query(fresh.get(), buffer.data(), static_cast<ULONG>(buffer.size()), identified_records, &mask, true) !=
          ERROR_SUCCESS)
    return false;
  const auto& record = *reinterpret_cast<const identified_record*>(buffer.data());
  unsigned long long index;
  return !(record.attributes & FILE_ATTRIBUTE_REPARSE_POINT) && read_index(opened, index) &&
         index == static_cast<unsigned long long>(record.id.QuadPart);
}

/// The full name of what is open, without its drive.
std::wstring full_name(HANDLE opened) {
  constexpr std::size_t most = sizeof(FILE_NAME_INFO) + 0xFFFF;
  const std::unique_ptr<std::byte[]> buffer(new std::byte[most]);
  if (!GetFileInformationByHandleEx(opened, FileNameInfo, buffer.get(), static_cast<DWORD>(most))) return {};
  const auto& found = *reinterpret_cast<const FILE_NAME_INFO*>(buffer.get());
  return std::wstring(found.FileName, found.FileNameLength / sizeof(wchar_t));
}

/// Without the dots and spaces at the end of components, which Wine keeps of some and not of others.
std::wstring trimmed(const std::wstring& path) {
  std::wstring out;
  for (const wchar_t unit : path + L'\\') {
    if (unit == L'\\') {
      out.resize(out.find_last_not_of(L". \\") + 1);
      if (out.empty()) continue;
    }
    out += unit;
  }
  return out;
}

bool is_named_so(HANDLE folder, const std::wstring& name, HANDLE opened) {
  const std::wstring expected = trimmed(full_name(folder) + L'\\' + name), found = trimmed(full_name(opened));
  return CompareStringOrdinal(expected.c_str(), -1, found.c_str(), -1, TRUE) == CSTR_EQUAL;
}

}  // namespace

DWORD open(HANDLE folder, const std::wstring& name, const manner& how, handle& out) {
  if (!system().open || !system().read || !system().error) return ERROR_CALL_NOT_IMPLEMENTED;
  UNICODE_STRING text;
  if (!fill(text, name)) return ERROR_FILENAME_EXCED_RANGE;
  OBJECT_ATTRIBUTES what;
  InitializeObjectAttributes(&what, &text, OBJ_CASE_INSENSITIVE, folder, nullptr);
  constexpr ULONG always =
      FILE_SYNCHRONOUS_IO_NONALERT | FILE_OPEN_FOR_BACKUP_INTENT | FILE_OPEN_REPARSE_POINT;
  IO_STATUS_BLOCK done;
  HANDLE opened = nullptr;
  const NTSTATUS status =
      system().open(&opened, how.access | SYNCHRONIZE, &what, &done, nullptr, FILE_ATTRIBUTE_NORMAL,
                    how.sharing, how.disposition, how.options | always, nullptr, 0);
  if (status < 0) return system().error(status);
  out = handle(opened);
  return ERROR_SUCCESS;
}

DWORD read_records(HANDLE folder, void* buffer, ULONG size, bool from_start) {
  if (!system().read || !system().error) return ERROR_CALL_NOT_IMPLEMENTED;
  return query(folder, buffer, size, full_records, nullptr, from_start);
}

// Wine asks another process for the volume's number, which takes longer than all the rest.
bool identify(HANDLE opened, entry_identity& out) noexcept {
  return system().follows_links ? opened && read_index(opened, out.index) : read_identity(opened, out);
}

bool leads_to(const std::wstring& path, HANDLE opened) {
  const handle now = open_existing(system_path(path), FILE_READ_ATTRIBUTES);
  entry_identity expected, found;
  return identify(opened, expected) && identify(now.get(), found) && expected == found;
}

bool is_what_is_named(HANDLE folder, const std::wstring& name, HANDLE opened) {
  if (!system().follows_links) return true;
  return kind_of(opened).is_folder ? lists_as_itself(folder, name, opened)
                                   : is_named_so(folder, name, opened);
}

bool is_what_is_at(const std::wstring& path, HANDLE opened) {
  if (!system().follows_links) return true;
  const std::size_t cut = path.rfind(L'\\');
  if (cut == path.npos || cut + 1 == path.size()) return true;  // a root
  const handle folder = open_existing(path.substr(0, cut + 1), FILE_READ_ATTRIBUTES);
  return folder && is_what_is_named(folder.get(), path.substr(cut + 1), opened);
}

}  // namespace ruvo::platform::nt
