// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the system knows of a file or a folder. Paths are those that ruvo::file holds, of any length; one that
// is empty or holds a NUL names nothing, nor does one with ":" behind its drive.

#include <string>

namespace ruvo::platform {

struct entry_kind {
  bool is_folder = false;
  bool is_link = false;  // leads elsewhere: a symbolic link, a junction, a mounted volume
  bool operator==(const entry_kind&) const = default;
};

struct entry_facts : entry_kind {
  bool read_only = false;
  bool hidden = false;
  unsigned long long size = 0;                        // of a file
  long long modified = 0, accessed = 0, changed = 0;  // seconds since 1970-01-01 00:00:00 UTC
};

/// Whether a question about a link is one about what it leads to, or about the link.
enum class links { follow, keep };

/// What stands at the path. False when there is nothing, or the system does not say.
bool read_facts(const std::wstring& path, links how, entry_facts& out);

/// Whether the system says that nothing stands at the path. False, too, when it does not say.
bool is_missing(const std::wstring& path);

/// What distinguishes a file or folder from all others.
struct entry_identity {
  unsigned long long volume = 0, index = 0;
  bool operator==(const entry_identity&) const = default;
};

struct owner_numbers {
  unsigned long user = 0, group = 0;
};
bool read_owner(const std::wstring& path, owner_numbers& out);

/// Whether the rights allow it, whoever else has the file open.
bool may_read(const std::wstring& path);
bool may_write(const std::wstring& path);
/// Whether somebody, this process counted, has the file open.
bool is_held(const std::wstring& path);

/// Whether a path, which need not exist, is a folder or lies below it, under whatever name.
bool is_inside(const std::wstring& path, const std::wstring& folder);

}  // namespace ruvo::platform
