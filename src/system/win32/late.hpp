// SPDX-License-Identifier: BSL-1.0
#pragma once

// Functions of system libraries that are loaded when one of them is first called: with these two libraries
// and what they need in turn, a program takes twice as long to start.

#include <type_traits>

#include "system/win32/win32.hpp"

namespace ruvo::platform::late {

/// A function found by its name. Where it is missing, its result is that of a failure, FALSE or null or an
/// HRESULT, and the last error ERROR_PROC_NOT_FOUND.
template <class Call>
class function;

template <class Result, class... Arguments>
class function<Result(WINAPI*)(Arguments...)> {
 public:
  function(HMODULE library, const char* name) noexcept {
    const FARPROC found = library ? GetProcAddress(library, name) : nullptr;
    call_ = reinterpret_cast<call>(reinterpret_cast<void (*)()>(found));
  }

  Result operator()(Arguments... arguments) const noexcept {
    if (call_) return call_(arguments...);
    SetLastError(ERROR_PROC_NOT_FOUND);
    if constexpr (std::is_same_v<Result, HRESULT>) return HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
    return {};
  }

 private:
  using call = Result(WINAPI*)(Arguments...);

  call call_;
};

/// A library of the system's own folder, which stays; null if it cannot be loaded.
HMODULE library(const wchar_t* name) noexcept;

struct security_calls {
  HMODULE from = library(L"advapi32.dll");
  function<decltype(&ConvertSidToStringSidW)> sid_text{from, "ConvertSidToStringSidW"};
  function<decltype(&EncryptFileW)> encrypt{from, "EncryptFileW"};
  function<decltype(&GetKernelObjectSecurity)> security_of{from, "GetKernelObjectSecurity"};
  function<decltype(&GetSecurityDescriptorGroup)> group_of{from, "GetSecurityDescriptorGroup"};
  function<decltype(&GetSecurityDescriptorOwner)> owner_of{from, "GetSecurityDescriptorOwner"};
  function<decltype(&GetTokenInformation)> token_facts{from, "GetTokenInformation"};
  function<decltype(&IsValidSid)> is_sid{from, "IsValidSid"};
  function<decltype(&LookupAccountSidW)> account_of{from, "LookupAccountSidW"};
  function<decltype(&OpenProcessToken)> open_token{from, "OpenProcessToken"};
  function<BOOLEAN(WINAPI*)(void*, ULONG)> random{from, "SystemFunction036"};  // documented as RtlGenRandom
};

struct com_calls {
  HMODULE from = library(L"ole32.dll");
  function<decltype(&CoCreateGuid)> make_guid{from, "CoCreateGuid"};
  function<decltype(&CoInitializeEx)> initialize{from, "CoInitializeEx"};
};

const security_calls& security() noexcept;
const com_calls& com() noexcept;

}  // namespace ruvo::platform::late
