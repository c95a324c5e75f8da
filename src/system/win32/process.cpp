// SPDX-License-Identifier: BSL-1.0

// The process, its module and the version of the system.

#include "system/process.hpp"

#include <cstddef>
#include <utility>

#include "system/win32/late.hpp"
#include "system/win32/text.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

bool is_console_program() {
  const auto* const image = reinterpret_cast<const std::byte*>(GetModuleHandleW(nullptr));
  if (!image) return false;
  const auto* const header = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + header->e_lfanew);
  return headers->OptionalHeader.Subsystem == IMAGE_SUBSYSTEM_WINDOWS_CUI;
}

using shutdown_call = BOOLEAN(NTAPI*)();

shutdown_call find_shutdown_call() noexcept {
  const HMODULE system = GetModuleHandleW(L"ntdll.dll");
  const FARPROC found = system ? GetProcAddress(system, "RtlDllShutdownInProgress") : nullptr;
  return reinterpret_cast<shutdown_call>(reinterpret_cast<void*>(found));
}

// Not found when it is asked: a thread that loads a library might wait for the one that asks.
const shutdown_call is_shut_down = find_shutdown_call();

}  // namespace

unsigned long thread_id() noexcept { return GetCurrentThreadId(); }
unsigned long process_id() noexcept { return GetCurrentProcessId(); }
bool is_process_ending() noexcept { return is_shut_down && is_shut_down(); }

void init_com() noexcept { late::com().initialize(nullptr, COINIT_APARTMENTTHREADED); }

bool environment_variable(const std::wstring& name, std::wstring& value) {
  std::wstring out = text_from([&](wchar_t* room, DWORD size) {
    SetLastError(ERROR_SUCCESS);
    return GetEnvironmentVariableW(name.c_str(), room, size);
  });
  if (out.empty() && GetLastError() != ERROR_SUCCESS) return false;
  value = std::move(out);
  return true;
}

// GetVersionEx gives what the program's manifest asks for; this one gives the truth, and has no import
// library.
bool read_system_facts(system_facts& out) {
  using read_version = LONG(WINAPI*)(OSVERSIONINFOEXW*);
  const HMODULE system = GetModuleHandleW(L"ntdll.dll");
  const FARPROC found = system ? GetProcAddress(system, "RtlGetVersion") : nullptr;
  const auto read = reinterpret_cast<read_version>(reinterpret_cast<void*>(found));
  OSVERSIONINFOEXW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (!read || read(&version) < 0) return false;
  out.major = version.dwMajorVersion;
  out.minor = version.dwMinorVersion;
  out.build = version.dwBuildNumber;
  out.service_pack = version.szCSDVersion;
  out.workstation = version.wProductType == VER_NT_WORKSTATION;
  out.console_program = is_console_program();
  return true;
}

std::wstring module_path(void* module) {
  return text_from([module](wchar_t* out, DWORD size) {
    const DWORD length = GetModuleFileNameW(static_cast<HMODULE>(module), out, size);
    return length < size ? length : 2 * size;  // a path that does not fit is cut off
  });
}

}  // namespace ruvo::platform
