// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the rooms below the application ask of the user's choices: the clock and the calendar, separators, the
// names' locale, identifiers, the listing of folders. The context answers, by its virtual operations; the
// functions are defined beside it (src/app/services.cpp), so that no room below includes it.

#include <ruvo/fwd.hpp>

#include <atomic>
#include <ctime>
#include <string>
#include <vector>

namespace ruvo {

/// The calling thread's application; a process-wide context with the default services when it has none.
context& current_context() noexcept;

namespace services {

/// How many applications there are.
extern std::atomic<int> applications;

/// Whether there is no application at all, and the default services answer: for UTC those of base/civil.hpp.
inline bool are_default() noexcept { return applications.load(std::memory_order_acquire) == 0; }

/// 100-nanosecond ticks since 1970-01-01 00:00:00 UTC.
long long ticks(const context& user);
/// Seconds to a calendar record and back, in UTC or local time; false on failure, as the services have it,
/// which `err` may be null for.
bool break_down(const context& user, long long seconds, bool local, std::tm& record, exception* err);
bool build(const context& user, std::tm& record, bool local, long long& seconds, exception* err);
/// The locale of the names of months and days.
const std::string& locale(const context& user);

struct separators {
  wchar_t decimal = L',';
  wchar_t thousands = L'.';
};
/// Those of the calling thread's application, and the ones above when it has none.
separators of_this_thread();

/// An identifier in the layout that tasks and mail messages have; empty when the system has none to give.
std::wstring new_uuid();

bool list_folder(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                 std::vector<file>* out);

}  // namespace services

}  // namespace ruvo
