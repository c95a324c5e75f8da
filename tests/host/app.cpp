// The host's files to append to, account and console, for the build that runs under its checkers.

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "app/platform.hpp"
#include "base/utf.hpp"
#include "names.hpp"

namespace ruvo::platform {

bool current_account(std::wstring& user, std::wstring& domain, std::wstring& sid) {
  user = L"usuario";
  domain = L"EQUIPO";
  sid = L"S-1-5-21-1-2-3-1000";
  return true;
}

bool read_system_facts(system_facts& out) {
  out = {10, 0, 22631, L"", true, true};
  return true;
}

std::wstring module_path(void*) {
  std::error_code error;
  return texto::to_utf_16(std::filesystem::read_symlink("/proc/self/exe", error).string());
}

void debug_line(const std::wstring&) noexcept {}

bool open_console() noexcept { return true; }
void close_console() noexcept {}

bool is_terminal() noexcept { return isatty(STDOUT_FILENO) != 0; }

namespace {

bool write_text(std::FILE* out, std::wstring_view text) {
  const std::string bytes = texto::to_utf_8(text);
  return std::fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
}

}  // namespace

bool write_console(std::wstring_view text) { return write_text(stdout, text); }
bool write_error(std::wstring_view text) { return write_text(stderr, text); }

void* open_to_append(const std::wstring& path) {
  return handle_of(open(host_name(path).c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644));
}

bool append(void* file, std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor_of(file), bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

void flush(void* file) noexcept { fsync(descriptor_of(file)); }
void close(void* file) noexcept { ::close(descriptor_of(file)); }

bool read_shared(const std::wstring& path, std::string& out) {
  std::FILE* const file = std::fopen(host_name(path).c_str(), "rb");
  if (!file) return false;
  char buffer[4096];
  while (const std::size_t got = std::fread(buffer, 1, sizeof buffer, file)) out.append(buffer, got);
  const bool done = !std::ferror(file);
  std::fclose(file);
  return done;
}

bool erase_file(const std::wstring& path) { return unlink(host_name(path).c_str()) == 0; }

unsigned long long steady_milliseconds() noexcept {
  using namespace std::chrono;
  return static_cast<unsigned long long>(
      duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

}  // namespace ruvo::platform
