// SPDX-License-Identifier: BSL-1.0

// Lines at the end of a file that other programs write to as well.

#include "system/appended_file.hpp"

#include <cstddef>

#include "system/win32/open.hpp"
#include "system/win32/path.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

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
  const handle writer(ReOpenFile(file, FILE_WRITE_DATA, shared_with_all, 0));
  if (!writer) return;
  FILE_END_OF_FILE_INFO end;
  if (GetFileSizeEx(writer.get(), &end.EndOfFile) && end.EndOfFile.QuadPart >= static_cast<LONGLONG>(count)) {
    end.EndOfFile.QuadPart -= static_cast<LONGLONG>(count);
    SetFileInformationByHandle(writer.get(), FileEndOfFileInfo, &end, sizeof end);
  }
}

}  // namespace

// Without the right to write elsewhere the system itself puts each write at the end; the right to read is for
// the lock and the start.
appended_file::appended_file(const std::wstring& path)
    : file_(CreateFileW(system_path(path).c_str(), FILE_APPEND_DATA | FILE_READ_DATA | SYNCHRONIZE,
                        shared_with_all, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {}

bool appended_file::append(std::string_view bytes) noexcept {
  const turn_lock lock(file_.get());
  const std::size_t written = write_all(file_.get(), bytes);
  if (written == bytes.size()) return true;
  if (written && lock.owns()) cut_back(file_.get(), written);
  return false;
}

std::size_t appended_file::read_start(char* to, std::size_t room) noexcept {
  OVERLAPPED start{};
  DWORD got = 0;
  return ReadFile(file_.get(), to, static_cast<DWORD>(room), &got, &start) ? got : 0;
}

void appended_file::flush() noexcept { FlushFileBuffers(file_.get()); }

bool read_shared(const std::wstring& path, std::string& out) {
  const handle file(CreateFileW(system_path(path).c_str(), GENERIC_READ, shared_with_all, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return false;
  char buffer[16384];
  DWORD got = 0;
  bool done;
  while ((done = ReadFile(file.get(), buffer, sizeof buffer, &got, nullptr)) && got) out.append(buffer, got);
  return done;
}

}  // namespace ruvo::platform
