// SPDX-License-Identifier: BSL-1.0

// The context's answers to the rooms below.

#include "base/services.hpp"

#include <ruvo/application.hpp>

namespace ruvo::services {

long long ticks(const context& user) { return user.get_system_ticks(); }

bool break_down(const context& user, long long seconds, bool local, std::tm& record, exception* err) {
  return local ? user.sistem_local_time(&record, seconds, err) : user.sistem_gmt_time(&record, seconds, err);
}

bool build(const context& user, std::tm& record, bool local, long long& seconds, exception* err) {
  return local ? user.sistem_local_lapse(seconds, record, err) : user.sistem_gmt_lapse(seconds, record, err);
}

const std::string& locale(const context& user) { return user.get_locale(); }

separators of_this_thread() {
  const application* const app = application::theApp();
  return app ? separators{app->get_decimal_separator(), app->get_thousands_separator()} : separators{};
}

std::wstring new_uuid() { return current_context().uuid_gen(L"%08X-%04X-%04X", L"%02X"); }

bool list_folder(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                 std::vector<file>* out) {
  return current_context().directory_list(folder, err, filter, callback, out);
}

}  // namespace ruvo::services
