#include "app/win32.hpp"
#include "files/listing_platform.hpp"
#include "files/win32_path.hpp"

namespace ruvo::platform {

namespace {

constexpr DWORD shared_with_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class scoped_handle {
 public:
  scoped_handle(const std::wstring& name, DWORD flags)
      : handle_(CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, shared_with_all, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS | flags, nullptr)) {}
  scoped_handle(const scoped_handle&) = delete;
  scoped_handle& operator=(const scoped_handle&) = delete;
  ~scoped_handle() {
    if (*this) CloseHandle(handle_);
  }
  explicit operator bool() const noexcept { return handle_ != INVALID_HANDLE_VALUE; }
  operator HANDLE() const noexcept { return handle_; }

 private:
  HANDLE handle_;
};

/// Other reparse points stand for what they hold: files kept in a cloud, or compressed.
bool leads_elsewhere(DWORD attributes, DWORD tag) noexcept {
  return attributes & FILE_ATTRIBUTE_REPARSE_POINT && (!tag || IsReparseTagNameSurrogate(tag));
}

/// The tag of a reparse point; 0 when the system does not tell.
DWORD reparse_tag(const std::wstring& name) {
  const scoped_handle point(name, FILE_FLAG_OPEN_REPARSE_POINT);
  FILE_ATTRIBUTE_TAG_INFO found;
  if (!point || !GetFileInformationByHandleEx(point, FileAttributeTagInfo, &found, sizeof found)) return 0;
  return found.ReparseTag;
}

template <class Record>
void read_record(const Record& record, DWORD tag, found_facts& out) noexcept {
  out.is_folder = record.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
  out.is_link = leads_elsewhere(record.dwFileAttributes, tag);
  out.size =
      out.is_folder ? 0 : static_cast<unsigned long long>(record.nFileSizeHigh) << 32 | record.nFileSizeLow;
}

bool is_dots(const wchar_t* name) noexcept {
  return name[0] == L'.' && (!name[1] || (name[1] == L'.' && !name[2]));
}

/// What tells a file or folder from all others.
struct identity {
  DWORD volume, high, low;
  bool operator==(const identity&) const = default;
};

bool identify(const std::wstring& name, identity& out) {
  const scoped_handle entry(name, 0);
  BY_HANDLE_FILE_INFORMATION found;
  if (!entry || !GetFileInformationByHandle(entry, &found)) return false;
  out = {found.dwVolumeSerialNumber, found.nFileIndexHigh, found.nFileIndexLow};
  return true;
}

bool is_folder(const std::wstring& path) {
  found_facts found;
  return look_at(path, found) && found.is_folder;
}

bool is_gone(DWORD error) noexcept { return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND; }

}  // namespace

struct folder_reader::state {
  HANDLE search = INVALID_HANDLE_VALUE;
  WIN32_FIND_DATAW record;
  bool has_record = false;
  DWORD error = ERROR_SUCCESS;
};

folder_reader::folder_reader(const std::wstring& path) : state_(std::make_unique<state>()) {
  std::wstring pattern = system_path(path);
  state_->error = ERROR_PATH_NOT_FOUND;
  if (pattern.empty()) return;
  pattern.append(pattern.back() == L'\\' ? L"*" : L"\\*");
  state_->search = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &state_->record, FindExSearchNameMatch,
                                    nullptr, FIND_FIRST_EX_LARGE_FETCH);
  state_->has_record = state_->search != INVALID_HANDLE_VALUE;
  state_->error = state_->has_record ? ERROR_SUCCESS : GetLastError();
  // A drive without anything; other folders have at least the entry ".".
  if (state_->error == ERROR_FILE_NOT_FOUND && is_folder(path)) state_->error = ERROR_NO_MORE_FILES;
}

folder_reader::~folder_reader() {
  if (state_->search != INVALID_HANDLE_VALUE) FindClose(state_->search);
}

bool folder_reader::next(found_entry& out) {
  state& now = *state_;
  for (; now.error == ERROR_SUCCESS; now.has_record = false) {
    if (!now.has_record && !FindNextFileW(now.search, &now.record)) {
      now.error = GetLastError();
      break;
    }
    if (is_dots(now.record.cFileName)) continue;
    out.name.assign(now.record.cFileName);
    read_record(now.record, now.record.dwReserved0, out);
    now.has_record = false;
    return true;
  }
  return false;
}

bool folder_reader::failed() const noexcept {
  return state_->error != ERROR_SUCCESS && state_->error != ERROR_NO_MORE_FILES;
}

bool look_at(const std::wstring& path, found_facts& out) {
  const std::wstring name = system_path(path);
  WIN32_FILE_ATTRIBUTE_DATA record;
  if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &record)) return false;
  const bool is_point = record.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT;
  read_record(record, is_point ? reparse_tag(name) : 0, out);
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

bool remove_entry(const std::wstring& path, bool is_folder) {
  const std::wstring name = system_path(path);
  if (name.empty()) return false;
  const auto remove = [&] { return is_folder ? RemoveDirectoryW(name.c_str()) : DeleteFileW(name.c_str()); };
  if (remove() || is_gone(GetLastError())) return true;
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY)) return false;
  if (!SetFileAttributesW(name.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY})) return false;
  if (remove()) return true;
  SetFileAttributesW(name.c_str(), attributes);
  return false;
}

}  // namespace ruvo::platform
