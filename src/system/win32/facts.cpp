// SPDX-License-Identifier: BSL-1.0

// The system's records of files and folders, in our terms.

#include "system/win32/facts.hpp"

#include "system/win32/late.hpp"

namespace ruvo::platform {

namespace {

constexpr long long ticks_a_second = 10'000'000, from_1601_to_1970 = 11'644'473'600;

/// Seconds since 1970, rounded down.
long long seconds(long long ticks_since_1601) noexcept {
  return ticks_since_1601 / ticks_a_second - from_1601_to_1970;
}

// Reparse points that do not lead elsewhere stand for what they hold: files kept in a cloud, or compressed.
entry_kind kind_of(DWORD attributes, DWORD tag) noexcept {
  entry_kind out;
  out.is_folder = attributes & FILE_ATTRIBUTE_DIRECTORY;
  out.is_link = attributes & FILE_ATTRIBUTE_REPARSE_POINT && (!tag || IsReparseTagNameSurrogate(tag));
  return out;
}

}  // namespace

long long ticks_from(long long seconds_since_1970) noexcept {
  return (seconds_since_1970 + from_1601_to_1970) * ticks_a_second;
}

entry_facts facts_of(const entry_record& record) noexcept {
  entry_facts out{kind_of(record.attributes, record.tag)};
  out.read_only = record.attributes & FILE_ATTRIBUTE_READONLY;
  out.hidden = record.attributes & FILE_ATTRIBUTE_HIDDEN;
  out.size = out.is_folder ? 0 : record.size;
  out.modified = seconds(record.written);
  out.accessed = seconds(record.accessed);
  out.changed = record.changed ? seconds(record.changed) : out.modified;
  return out;
}

entry_kind kind_of(HANDLE opened) noexcept {
  FILE_ATTRIBUTE_TAG_INFO found{FILE_ATTRIBUTE_REPARSE_POINT, 0};
  if (!GetFileInformationByHandleEx(opened, FileAttributeTagInfo, &found, sizeof found)) {
    BY_HANDLE_FILE_INFORMATION older;
    if (GetFileInformationByHandle(opened, &older)) found.FileAttributes = older.dwFileAttributes;
  }
  return kind_of(found.FileAttributes, found.ReparseTag);
}

bool read_identity(HANDLE opened, entry_identity& out) noexcept {
  BY_HANDLE_FILE_INFORMATION found;
  if (!opened || !GetFileInformationByHandle(opened, &found)) return false;
  out = {found.dwVolumeSerialNumber, joined(found.nFileIndexHigh, found.nFileIndexLow)};
  return true;
}

std::vector<unsigned char> security_of(HANDLE opened, SECURITY_INFORMATION wanted) {
  DWORD size = 0;
  late::security().security_of(opened, wanted, nullptr, 0, &size);
  std::vector<unsigned char> out(size);
  if (!late::security().security_of(opened, wanted, out.data(), size, &size)) out.clear();
  return out;
}

}  // namespace ruvo::platform
