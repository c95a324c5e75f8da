// What the system tells of itself, of the account and of the program.

#include <cstddef>
#include <memory>
#include <vector>

#include "app/platform.hpp"
#include "app/win32.hpp"

namespace ruvo::platform {

namespace {

std::vector<std::byte> token_user() {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return {};
  DWORD size = 0;
  GetTokenInformation(token, TokenUser, nullptr, 0, &size);
  std::vector<std::byte> out(size);
  const bool known = size && GetTokenInformation(token, TokenUser, out.data(), size, &size);
  CloseHandle(token);
  if (!known) out.clear();
  return out;
}

bool account_of(PSID sid, std::wstring& user, std::wstring& domain) {
  DWORD user_size = 0, domain_size = 0;
  SID_NAME_USE use;
  LookupAccountSidW(nullptr, sid, nullptr, &user_size, nullptr, &domain_size, &use);
  if (!user_size || !domain_size) return false;
  // The sizes count the zero at the end, the lengths that come back do not.
  user.resize(user_size);
  domain.resize(domain_size);
  const bool known =
      LookupAccountSidW(nullptr, sid, user.data(), &user_size, domain.data(), &domain_size, &use);
  user.resize(known ? user_size : 0);
  domain.resize(known ? domain_size : 0);
  return known;
}

std::wstring text_of(PSID sid) {
  wchar_t* made = nullptr;
  if (!ConvertSidToStringSidW(sid, &made)) return {};
  const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(made, LocalFree);
  return made;
}

bool is_console_program() {
  const auto* const image = reinterpret_cast<const std::byte*>(GetModuleHandleW(nullptr));
  if (!image) return false;
  const auto* const header = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
  const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + header->e_lfanew);
  return headers->OptionalHeader.Subsystem == IMAGE_SUBSYSTEM_WINDOWS_CUI;
}

}  // namespace

bool current_account(std::wstring& user, std::wstring& domain, std::wstring& sid) {
  std::vector<std::byte> token = token_user();
  if (token.empty()) return false;
  const PSID account = reinterpret_cast<TOKEN_USER*>(token.data())->User.Sid;
  if (!account_of(account, user, domain)) return false;
  sid = text_of(account);
  return !sid.empty();
}

// GetVersionEx tells what the program's manifest asks for; this one tells the truth, and has no import
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
  constexpr std::size_t longest = 32768;
  std::wstring out(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = static_cast<DWORD>(out.size());
    const DWORD length = GetModuleFileNameW(static_cast<HMODULE>(module), out.data(), size);
    if (!length) return {};
    if (length < size || out.size() >= longest) {
      out.resize(length);
      return out;
    }
    out.resize(longest);
  }
}

void debug_line(const std::wstring& text) noexcept { OutputDebugStringW(text.c_str()); }

unsigned long long steady_milliseconds() noexcept { return GetTickCount64(); }

}  // namespace ruvo::platform
