// SPDX-License-Identifier: BSL-1.0
#include "system/process.hpp"

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/utf.hpp"

namespace ruvo::platform {

unsigned long thread_id() noexcept {
  static std::atomic<unsigned long> used{0};
  thread_local const unsigned long id = ++used;
  return id;
}
unsigned long process_id() noexcept { return 4; }
bool is_process_ending() noexcept { return false; }

void init_com() noexcept {}

bool environment_variable(const std::wstring& name, std::wstring& value) {
  const char* const found = std::getenv(texto::to_utf_8(name).c_str());
  if (found) value = texto::to_utf_16(std::string_view(found));
  return found != nullptr;
}

bool read_system_facts(system_facts& out) {
  out = {10, 0, 22631, L"", true, true};
  return true;
}

std::wstring module_path(void*) {
  std::error_code error;
  return texto::to_utf_16(std::filesystem::read_symlink("/proc/self/exe", error).string());
}

}  // namespace ruvo::platform
