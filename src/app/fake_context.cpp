// SPDX-License-Identifier: BSL-1.0

// The services of a context for tests: fixed answers instead of the system's.

#include <ruvo/exc.hpp>
#include <ruvo/fake_context.hpp>
#include <ruvo/files.hpp>

#include "app/pattern.hpp"
#include "base/civil.hpp"
#include "files/listing.hpp"
#include "system/entry.hpp"
#include "system/guid.hpp"

namespace ruvo {

fake_context::fake_context() : application(nullptr) {
  os_info[L"windows"] = L"Windows 11";
  os_info[L"version"] = L"10.0";
  os_info[L"numero_compilacion"] = 22631L;
  os_info[L"service_pack"] = L"";
  os_info[L"huella"] = L"Windows 11 10.0.22631";
  os_info[L"soporte"] = true;
  os_info[L"desktop"] = true;
  os_info[L"subsistema"] = L"consola";
}
fake_context::~fake_context() = default;

unsigned long fake_context::getThreadID() const { return thread_id; }
unsigned long fake_context::getProcessID() const { return process_id; }
wchar_t fake_context::get_decimal_separator() const { return decimal_separator; }
wchar_t fake_context::get_thousands_separator() const { return thousands_separator; }

std::wstring fake_context::uuid_gen(const std::wstring& pattern, const std::wstring& byte_pattern) const {
  platform::guid made{};
  made.data1 = next_id++;
  return print_guid(made, pattern, byte_pattern);
}

bool fake_context::sistem_local_time(std::tm* record, long long seconds, exception* err) const {
  return sistem_gmt_time(record, civil::has_record(seconds) ? seconds + zone_offset : seconds, err);
}

bool fake_context::sistem_local_lapse(long long& seconds, std::tm& record, exception* err) const {
  const bool done = sistem_gmt_lapse(seconds, record, err);
  if (done) seconds -= zone_offset;
  return done;
}

std::wstring fake_context::get_enviroment_var(const std::wstring& name) const {
  const auto found = environment.find(name);
  if (found == environment.end()) throw exc::systemEnviromentVarNotFound(name);
  return found->second;
}

bool fake_context::get_current_user_and_domain(std::wstring& out_user, std::wstring& out_domain,
                                               std::wstring& out_sid, exception& err) const {
  if (user.empty()) {
    exc::systemUserDomain().copy_on(err);
    return false;
  }
  out_user = user;
  out_domain = domain;
  out_sid = sid;
  return true;
}

bundle fake_context::get_os_info() const { return os_info; }

bool fake_context::directory_list(const ruvo::file& folder, exception& err, fileFilter* filter,
                                  fileCallback* callback, std::vector<ruvo::file>* out) const {
  const auto found = folders.find(folder);
  const bool exists = found != folders.end();
  if (exists) {
    files::listed_file entry;
    for (const std::wstring& name : found->second) {
      const ruvo::file path(folder, name);
      platform::entry_facts facts;
      if (folders.contains(path))
        facts.is_folder = true;
      else if (!platform::read_facts(path, platform::links::keep, facts))
        facts = {};
      entry.set(path, facts);
      if (callback && callback->can_stop()) break;
      if (filter && !filter->accept(entry)) continue;
      if (out) out->push_back(entry);
      if (callback) callback->onRead(entry);
    }
  } else {
    const exc::fileNotFound error(folder);
    error.copy_on(err);
    if (callback) callback->onFailure(error);
  }
  if (callback) callback->onFinish();
  return exists;
}

long long fake_context::get_system_ticks() const { return clock * 10000000 + milliseconds * 10000LL; }

}  // namespace ruvo
