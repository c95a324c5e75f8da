// SPDX-License-Identifier: BSL-1.0

// The account of the process: its name, its domain and its identifier.

#include "system/account.hpp"

#include <cstddef>
#include <vector>

#include "system/handle.hpp"
#include "system/win32/late.hpp"
#include "system/win32/text.hpp"
#include "system/win32/win32.hpp"

namespace ruvo::platform {

namespace {

std::vector<std::byte> token_user() {
  HANDLE opened = nullptr;
  if (!late::security().open_token(GetCurrentProcess(), TOKEN_QUERY, &opened)) return {};
  const handle token(opened);
  DWORD size = 0;
  late::security().token_facts(token.get(), TokenUser, nullptr, 0, &size);
  std::vector<std::byte> out(size);
  const bool known = size && late::security().token_facts(token.get(), TokenUser, out.data(), size, &size);
  if (!known) out.clear();
  return out;
}

bool account_of(PSID sid, std::wstring& user, std::wstring& domain) {
  DWORD user_size = 0, domain_size = 0;
  SID_NAME_USE use;
  late::security().account_of(nullptr, sid, nullptr, &user_size, nullptr, &domain_size, &use);
  if (!user_size || !domain_size) return false;
  // The sizes count the zero at the end, the lengths that come back do not.
  user.resize(user_size);
  domain.resize(domain_size);
  const bool known =
      late::security().account_of(nullptr, sid, user.data(), &user_size, domain.data(), &domain_size, &use);
  user.resize(known ? user_size : 0);
  domain.resize(known ? domain_size : 0);
  return known;
}

std::wstring sid_text(PSID sid) {
  wchar_t* made = nullptr;
  if (!late::security().sid_text(sid, &made)) return {};
  const local_text owner(made, LocalFree);
  return made;
}

}  // namespace

bool current_account(std::wstring& user, std::wstring& domain, std::wstring& sid) {
  std::vector<std::byte> token = token_user();
  if (token.empty()) return false;
  const PSID account = reinterpret_cast<TOKEN_USER*>(token.data())->User.Sid;
  if (!account_of(account, user, domain)) return false;
  sid = sid_text(account);
  return !sid.empty();
}

}  // namespace ruvo::platform
