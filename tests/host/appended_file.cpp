// SPDX-License-Identifier: BSL-1.0
#include "system/appended_file.hpp"

#include <cerrno>
#include <cstddef>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include "names.hpp"

namespace ruvo::platform {

appended_file::appended_file(const std::wstring& path)
    : file_(handle_of(open(host_name(path).c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC, 0644))) {}

bool appended_file::append(std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor_of(file_.get()), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::size_t appended_file::read_start(char* to, std::size_t room) noexcept {
  const ssize_t got = pread(descriptor_of(file_.get()), to, room, 0);
  return got > 0 ? static_cast<std::size_t>(got) : 0;
}

void appended_file::flush() noexcept { fsync(descriptor_of(file_.get())); }

bool read_shared(const std::wstring& path, std::string& out) {
  std::FILE* const file = std::fopen(host_name(path).c_str(), "rb");
  if (!file) return false;
  char buffer[4096];
  while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, file)) out.append(buffer, got);
  const bool done = !std::ferror(file);
  std::fclose(file);
  return done;
}

}  // namespace ruvo::platform
