#include <array>
#include <cstddef>
#include <string_view>

#include "app/win32.hpp"
#include "files/listing_platform.hpp"
#include "files/win32_nt.hpp"
#include "files/win32_path.hpp"

namespace ruvo::platform {

namespace {

nt::handle open_to_ask(const std::wstring& name, DWORD flags) {
  constexpr DWORD shared_with_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  return nt::handle(CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, shared_with_all, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr));
}

/// The tag of a reparse point; 0 when the system does not tell.
DWORD reparse_tag(const std::wstring& name) {
  const nt::handle point(open_to_ask(name, FILE_FLAG_OPEN_REPARSE_POINT));
  FILE_ATTRIBUTE_TAG_INFO found;
  if (!point || !GetFileInformationByHandleEx(point, FileAttributeTagInfo, &found, sizeof found)) return 0;
  return found.ReparseTag;
}

void set_facts(DWORD attributes, DWORD tag, unsigned long long size, found_facts& out) noexcept {
  out.is_folder = attributes & FILE_ATTRIBUTE_DIRECTORY;
  out.is_link = nt::leads_elsewhere(attributes, tag);
  out.size = out.is_folder ? 0 : size;
}

bool is_dots(std::wstring_view name) noexcept { return name == L"." || name == L".."; }

/// What tells a file or folder from all others.
struct identity {
  DWORD volume, high, low;
  bool operator==(const identity&) const = default;
};

bool identify(const std::wstring& name, identity& out) {
  const nt::handle entry(open_to_ask(name, 0));
  BY_HANDLE_FILE_INFORMATION found;
  if (!entry || !GetFileInformationByHandle(entry, &found)) return false;
  out = {found.dwVolumeSerialNumber, found.nFileIndexHigh, found.nFileIndexLow};
  return true;
}

}  // namespace

struct folder_reader::state {
  const nt::entry_record* first() const noexcept {
    return reinterpret_cast<const nt::entry_record*>(buffer.data());
  }
  /// The next record; null behind the last one.
  const nt::entry_record* next() noexcept {
    if (at && at->next)
      at = reinterpret_cast<const nt::entry_record*>(reinterpret_cast<const std::byte*>(at) + at->next);
    else
      at = read() ? first() : nullptr;
    return at;
  }
  bool read() noexcept {
    if (error != ERROR_SUCCESS) return false;
    error = nt::read_records(folder, buffer.data(), static_cast<ULONG>(buffer.size()), is_new);
    // A drive without anything; other folders have at least the entry ".".
    if (is_new && error == ERROR_FILE_NOT_FOUND) error = ERROR_NO_MORE_FILES;
    is_new = false;
    return error == ERROR_SUCCESS;
  }

  HANDLE folder = nullptr;
  alignas(nt::entry_record) std::array<std::byte, 1 << 15> buffer;
  const nt::entry_record* at = nullptr;
  bool is_new = true;
  DWORD error = ERROR_SUCCESS;
};

folder_reader::folder_reader(const held_folder& folder) : state_(new state) {
  state_->folder = folder.handle();
}

folder_reader::~folder_reader() = default;

bool folder_reader::next(found_entry& out) {
  while (const nt::entry_record* const record = state_->next()) {
    const std::wstring_view name(record->name, record->name_bytes / sizeof(wchar_t));
    if (is_dots(name)) continue;
    out.name.assign(name);
    set_facts(record->attributes, record->tag, static_cast<unsigned long long>(record->size.QuadPart), out);
    return true;
  }
  return false;
}

bool folder_reader::failed() const noexcept { return state_->error != ERROR_NO_MORE_FILES && state_->error; }

bool look_at(const std::wstring& path, found_facts& out) {
  const std::wstring name = system_path(path);
  WIN32_FILE_ATTRIBUTE_DATA record;
  if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &record)) return false;
  const bool is_point = record.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
  const unsigned long long high = record.nFileSizeHigh;
  set_facts(record.dwFileAttributes, is_point ? reparse_tag(name) : 0, high << 32 | record.nFileSizeLow, out);
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
