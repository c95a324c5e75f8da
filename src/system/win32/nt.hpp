// SPDX-License-Identifier: BSL-1.0
#pragma once

// The system's own calls, which open what has a name in a folder that is open, whatever has the folder's
// name.

#include <string>

#include "system/entry.hpp"
#include "system/win32/open.hpp"

namespace ruvo::platform::nt {

/// How something is opened; links are opened themselves.
struct manner {
  DWORD access = FILE_READ_ATTRIBUTES;
  DWORD sharing = shared_with_all;
  ULONG disposition = FILE_OPEN;
  ULONG options = 0;
};

/// Opens what has a name in a folder; the folder itself for an empty name. Gives ERROR_SUCCESS or the number
/// of the failure.
DWORD open(HANDLE folder, const std::wstring& name, const manner& how, handle& out);

/// What a folder says of one entry.
struct folder_record {
  ULONG next;
  ULONG index;
  LARGE_INTEGER times[4];
  LARGE_INTEGER size;
  LARGE_INTEGER allocated;
  ULONG attributes;
  ULONG name_bytes;
  ULONG tag;  // of a reparse point
  wchar_t name[1];
};

/// Reads the next records of a folder. Gives ERROR_SUCCESS, ERROR_NO_MORE_FILES or the number of the failure.
DWORD read_records(HANDLE folder, void* buffer, ULONG size, bool from_start);

/// What is open; under Wine its volume is left out.
bool identify(HANDLE opened, entry_identity& out) noexcept;
/// Whether a path, as ruvo::file holds it, leads to what is open.
bool leads_to(const std::wstring& path, HANDLE opened);

/// Whether what was opened under a name in a folder is what has the name there: not so if the system has
/// followed a link although it was asked not to, as Wine does.
bool is_what_is_named(HANDLE folder, const std::wstring& name, HANDLE opened);
/// The same of a full path.
bool is_what_is_at(const std::wstring& path, HANDLE opened);

}  // namespace ruvo::platform::nt
