// SPDX-License-Identifier: BSL-1.0
#include "system/account.hpp"

namespace ruvo::platform {

bool current_account(std::wstring& user, std::wstring& domain, std::wstring& sid) {
  user = L"usuario";
  domain = L"EQUIPO";
  sid = L"S-1-5-21-1-2-3-1000";
  return true;
}

}  // namespace ruvo::platform
