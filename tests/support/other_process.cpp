// SPDX-License-Identifier: BSL-1.0
#include "support/other_process.hpp"

#ifdef _WIN32
#  ifndef NOMINMAX
#    define NOMINMAX
#  endif
#  include <windows.h>

struct other_process::state {
  HANDLE process = nullptr;
};

other_process::other_process(const std::string& test) : state_(std::make_unique<state>()) {
  char program[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, program, sizeof program);
  if (!length || length >= sizeof program) return;
  std::string line = '"' + std::string(program) + "\" --gtest_also_run_disabled_tests --gtest_filter=" + test;
  STARTUPINFOA start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;  // none of them
  PROCESS_INFORMATION started{};
  if (!CreateProcessA(program, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started))
    return;
  CloseHandle(started.hThread);
  state_->process = started.hProcess;
}

bool other_process::runs() const {
  return state_->process && WaitForSingleObject(state_->process, 0) == WAIT_TIMEOUT;
}

void other_process::end() {
  if (!state_->process) return;
  TerminateProcess(state_->process, 1);
  WaitForSingleObject(state_->process, INFINITE);
  CloseHandle(state_->process);
  state_->process = nullptr;
}

#else

#  include <csignal>

#  include <fcntl.h>
#  include <spawn.h>
#  include <sys/wait.h>
#  include <unistd.h>

struct other_process::state {
  pid_t process = 0;
};

other_process::other_process(const std::string& test) : state_(std::make_unique<state>()) {
  std::string program = "/proc/self/exe", disabled = "--gtest_also_run_disabled_tests";
  std::string filter = "--gtest_filter=" + test;
  char* arguments[] = {program.data(), disabled.data(), filter.data(), nullptr};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  if (posix_spawn(&state_->process, program.c_str(), &actions, nullptr, arguments, environ))
    state_->process = 0;
  posix_spawn_file_actions_destroy(&actions);
}

bool other_process::runs() const {
  return state_->process && waitpid(state_->process, nullptr, WNOHANG) == 0;
}

void other_process::end() {
  if (!state_->process) return;
  kill(state_->process, SIGKILL);
  waitpid(state_->process, nullptr, 0);
  state_->process = 0;
}

#endif

other_process::~other_process() { end(); }
