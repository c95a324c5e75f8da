// Files that lines are appended to, and the console.

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>

#include "app/platform.hpp"
#include "app/win32.hpp"
#include "base/utf.hpp"
#include "files/win32_path.hpp"

namespace ruvo::platform {

namespace {

constexpr DWORD shared_with_all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::atomic<bool> made_console{false};

/// Gives how many bytes were written: less than all when the system refuses to go on.
std::size_t write_all(HANDLE file, std::string_view bytes) noexcept {
  constexpr std::size_t most = 1u << 30;
  std::size_t done = 0;
  while (done < bytes.size()) {
    const DWORD size = static_cast<DWORD>(std::min(bytes.size() - done, most));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data() + done, size, &written, nullptr) || !written) break;
    done += written;
  }
  return done;
}

// A console takes some 32,000 units at once, and must not be given half a character.
bool write_units(HANDLE console, std::wstring_view text) noexcept {
  constexpr std::size_t most = 8192;
  while (!text.empty()) {
    std::size_t size = std::min(text.size(), most);
    if (size < text.size() && IS_HIGH_SURROGATE(text[size - 1])) --size;
    DWORD written = 0;
    if (!WriteConsoleW(console, text.data(), static_cast<DWORD>(size), &written, nullptr) || !written)
      return false;
    text.remove_prefix(written);
  }
  return true;
}

/// Takes turns with whoever else appends to a file: finding its end and writing there is one step on a local
/// Windows disk only, not on a share or under Wine. What is locked is a byte far behind any data, so readers
/// are not disturbed. Who waits in vain, for a process that hangs, goes on without.
class turn_lock {
 public:
  explicit turn_lock(HANDLE file) noexcept : file_(file) {
    constexpr unsigned long long longest_wait = 200;  // milliseconds
    const unsigned long long end = GetTickCount64() + longest_wait;
    while (!(owns_ = try_lock()) && GetLastError() == ERROR_LOCK_VIOLATION && GetTickCount64() < end)
      Sleep(0);
  }
  turn_lock(const turn_lock&) = delete;
  turn_lock& operator=(const turn_lock&) = delete;
  ~turn_lock() {
    OVERLAPPED where = place();
    if (owns_) UnlockFileEx(file_, 0, 1, 0, &where);
  }
  bool owns() const noexcept { return owns_; }

 private:
  static OVERLAPPED place() noexcept {
    OVERLAPPED out{};
    out.Offset = 0xFFFFFFF0;
    out.OffsetHigh = 0x7FFFFFFF;
    return out;
  }
  bool try_lock() noexcept {
    OVERLAPPED where = place();
    return LockFileEx(file_, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &where) != 0;
  }

  HANDLE file_;
  bool owns_ = false;
};

/// Takes the last bytes of a file away: a line that the disk had room for in part, which the next one would
/// follow. The right to change the file's size is asked for only then.
void cut_back(HANDLE file, std::size_t count) noexcept {
  const HANDLE writer = ReOpenFile(file, FILE_WRITE_DATA, shared_with_all, 0);
  if (writer == INVALID_HANDLE_VALUE) return;
  FILE_END_OF_FILE_INFO end;
  if (GetFileSizeEx(writer, &end.EndOfFile) && end.EndOfFile.QuadPart >= static_cast<LONGLONG>(count)) {
    end.EndOfFile.QuadPart -= static_cast<LONGLONG>(count);
    SetFileInformationByHandle(writer, FileEndOfFileInfo, &end, sizeof end);
  }
  CloseHandle(writer);
}

HANDLE standard(DWORD which) noexcept {
  const HANDLE out = GetStdHandle(which);
  return out == INVALID_HANDLE_VALUE ? nullptr : out;
}

HANDLE output() noexcept { return standard(STD_OUTPUT_HANDLE); }

bool is_console(HANDLE out) noexcept {
  DWORD mode;
  return GetConsoleMode(out, &mode) != 0;
}

bool write_text(HANDLE out, std::wstring_view text) {
  if (!out) return false;
  if (is_console(out)) return write_units(out, text);
  const std::string bytes = texto::to_utf_8(text);
  return write_all(out, bytes) == bytes.size();
}

}  // namespace

bool open_console() noexcept {
  if (output()) return true;
  if (!AttachConsole(ATTACH_PARENT_PROCESS) && !AllocConsole()) return false;
  made_console = true;
  return output() != nullptr;
}

void close_console() noexcept {
  if (made_console.exchange(false)) FreeConsole();
}

bool is_terminal() noexcept { return is_console(output()); }

bool write_console(std::wstring_view text) { return write_text(output(), text); }
bool write_error(std::wstring_view text) { return write_text(standard(STD_ERROR_HANDLE), text); }

// Without the right to write elsewhere the system itself puts each write at the end; the right to read is for
// the lock.
void* open_to_append(const std::wstring& path) {
  const HANDLE file = CreateFileW(system_path(path).c_str(), FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE,
                                  shared_with_all, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : file;
}

bool append(void* file, std::string_view bytes) noexcept {
  const turn_lock lock(file);
  const std::size_t written = write_all(file, bytes);
  if (written == bytes.size()) return true;
  if (written && lock.owns()) cut_back(file, written);
  return false;
}

void flush(void* file) noexcept { FlushFileBuffers(file); }
void close(void* file) noexcept { CloseHandle(file); }

bool read_shared(const std::wstring& path, std::string& out) {
  const HANDLE file = CreateFileW(system_path(path).c_str(), GENERIC_READ, shared_with_all, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return false;
  const struct closer {
    ~closer() { CloseHandle(file); }
    HANDLE file;
  } closing{file};
  char buffer[16384];
  DWORD got = 0;
  bool done;
  while ((done = ReadFile(file, buffer, sizeof buffer, &got, nullptr)) && got) out.append(buffer, got);
  return done;
}

bool erase_file(const std::wstring& path) { return DeleteFileW(system_path(path).c_str()) != 0; }

}  // namespace ruvo::platform
