// SPDX-License-Identifier: BSL-1.0

// Identifiers for tasks, and a substitute where the context gives none.

#include "jobs/identifier.hpp"

#include <atomic>

#include "base/services.hpp"

namespace ruvo::jobs {

namespace {

constinit std::atomic<unsigned long long> numbered{0};

/// The layout of the others.
std::wstring next_number() {
  constexpr int digits = 16;
  std::wstring text = L"00000000-0000-0000";
  unsigned long long rest = ++numbered;
  text.resize(text.size() + digits);
  for (auto at = text.rbegin(); at != text.rbegin() + digits; ++at, rest /= digits)
    *at = L"0123456789ABCDEF"[rest % digits];
  return text;
}

}  // namespace

std::wstring new_identifier() {
  std::wstring made = services::new_uuid();
  return made.empty() ? next_number() : made;
}

}  // namespace ruvo::jobs
