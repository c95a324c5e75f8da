// SPDX-License-Identifier: BSL-1.0

// The entries of a folder, read in blocks.

#include "system/folder_reader.hpp"

#include <array>
#include <cstddef>
#include <string_view>

#include "system/win32/facts.hpp"
#include "system/win32/nt.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

entry_facts facts_of(const nt::folder_record& found) noexcept {
  const auto& [created, accessed, written, changed] = found.times;
  return platform::facts_of(entry_record{found.attributes, found.tag,
                                         static_cast<unsigned long long>(found.size.QuadPart),
                                         accessed.QuadPart, written.QuadPart, changed.QuadPart});
}

bool is_dots(std::wstring_view name) noexcept { return name == L"." || name == L".."; }

}  // namespace

struct folder_reader::state {
  const nt::folder_record* first() const noexcept {
    return reinterpret_cast<const nt::folder_record*>(buffer.data());
  }
  /// The next record; null behind the last one.
  const nt::folder_record* next() noexcept {
    if (at && at->next)
      at = reinterpret_cast<const nt::folder_record*>(reinterpret_cast<const std::byte*>(at) + at->next);
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
  alignas(nt::folder_record) std::array<std::byte, 1 << 15> buffer;
  const nt::folder_record* at = nullptr;
  bool is_new = true;
  DWORD error = ERROR_SUCCESS;
};

folder_reader::folder_reader(const held_folder& folder) : state_(new state) { state_->folder = folder.get(); }

folder_reader::~folder_reader() = default;

bool folder_reader::next(found_entry& out) {
  while (const nt::folder_record* const record = state_->next()) {
    const std::wstring_view name(record->name, record->name_bytes / sizeof(wchar_t));
    if (is_dots(name)) continue;
    out.name.assign(name);
    static_cast<entry_facts&>(out) = facts_of(*record);
    return true;
  }
  return false;
}

bool folder_reader::failed() const noexcept { return state_->error != ERROR_NO_MORE_FILES && state_->error; }

}  // namespace ruvo::platform
