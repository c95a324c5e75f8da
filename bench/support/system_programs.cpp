// SPDX-License-Identifier: BSL-1.0
#include "support/system_programs.hpp"

#include <stdexcept>

#ifndef NOMINMAX
#  define NOMINMAX
#endif
#include <windows.h>
// After it.
#include <psapi.h>

namespace bench {

namespace {

std::string own_file() {
  char path[MAX_PATH];
  return {path, GetModuleFileNameA(nullptr, path, sizeof path)};
}

/// All that comes out of a pipe until its other end is closed.
std::string drained(HANDLE pipe) {
  std::string out;
  char part[512];
  DWORD got = 0;
  while (ReadFile(pipe, part, sizeof part, &got, nullptr) && got > 0) out.append(part, got);
  return out;
}

}  // namespace

std::string output_of(const std::string& name, const std::string& arguments) {
  std::string file = own_file();
  if (!name.empty()) file = file.substr(0, file.find_last_of('\\') + 1) + name + ".exe";
  std::string command = '"' + file + "\" " + arguments;
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  HANDLE from = nullptr, to = nullptr;
  if (!CreatePipe(&from, &to, &inherited, 0)) throw std::runtime_error("no pipe");
  SetHandleInformation(from, HANDLE_FLAG_INHERIT, 0);
  STARTUPINFOA how{};
  how.cb = sizeof how;
  how.dwFlags = STARTF_USESTDHANDLES;
  how.hStdOutput = to;
  how.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION started{};
  const bool runs = CreateProcessA(file.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                   &how, &started);
  CloseHandle(to);
  std::string out = drained(from);
  CloseHandle(from);
  if (!runs) throw std::runtime_error("cannot start " + file);
  DWORD code = 1;
  WaitForSingleObject(started.hProcess, INFINITE);
  GetExitCodeProcess(started.hProcess, &code);
  CloseHandle(started.hThread);
  CloseHandle(started.hProcess);
  if (code != 0) throw std::runtime_error(command + " failed");
  return out;
}

memory_use own_memory() {
  PROCESS_MEMORY_COUNTERS use{};
  K32GetProcessMemoryInfo(GetCurrentProcess(), &use, sizeof use);
  return {static_cast<double>(use.WorkingSetSize) / 1e6, static_cast<double>(use.PeakWorkingSetSize) / 1e6};
}

}  // namespace bench
