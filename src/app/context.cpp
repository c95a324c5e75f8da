// SPDX-License-Identifier: BSL-1.0

// The default services of a context, from the system, and its map of named values.

#include <ruvo/context.hpp>
#include <ruvo/exc.hpp>

#include <utility>

#include "app/pattern.hpp"
#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"
#include "files/listing.hpp"
#include "system/account.hpp"
#include "system/clock.hpp"
#include "system/code_page.hpp"
#include "system/guid.hpp"
#include "system/locale.hpp"
#include "system/process.hpp"
#include "time/zone.hpp"

namespace ruvo {

namespace {

/// Copies a failure of the calendar to `*err`, unless that is null, and gives `done`.
bool done_or_reported(bool done, long long seconds, exception* err) {
  if (!done && err) *err = detail::not_in_calendar(L"segundos", seconds);
  return done;
}

struct account {
  std::wstring user, domain, sid;
};

account current_account(const context& services) {
  account out;
  exception err;
  if (!services.get_current_user_and_domain(out.user, out.domain, out.sid, err))
    throw exc::systemUserDomain();
  return out;
}

struct version_name {
  unsigned long major, minor, build;  // the first that has the name
  const wchar_t* name;
};

constexpr version_name version_names[] = {
    {10, 0, 22000, L"Windows 11"},     {10, 0, 0, L"Windows 10"}, {6, 3, 0, L"Windows 8.1"},
    {6, 2, 0, L"Windows 8"},           {6, 1, 0, L"Windows 7"},   {6, 0, 0, L"Windows Vista"},
    {5, 2, 0, L"Windows Server 2003"}, {5, 1, 0, L"Windows XP"},  {5, 0, 0, L"Windows 2000"},
};

const wchar_t* system_name(const platform::system_facts& facts) {
  if (facts.major == 0) return L"Unknown Windows Version";
  for (const version_name& one : version_names)
    if (one.major == facts.major && one.minor == facts.minor && facts.build >= one.build) return one.name;
  return L"Windows";
}

}  // namespace

context::context() = default;
context::~context() = default;

unsigned long context::getThreadID() const { return platform::thread_id(); }
unsigned long context::getProcessID() const { return platform::process_id(); }

wchar_t context::get_decimal_separator() const {
  if (decimal_) return decimal_;
  const std::wstring text = platform::decimal_separator();
  return text.empty() ? L',' : text.front();
}

wchar_t context::get_thousands_separator() const {
  if (thousands_) return thousands_;
  const std::wstring text = platform::thousands_separator();
  return text.empty() ? L'.' : text.front();
}

std::wstring context::to_16_bits(const std::string& text, unsigned int code_page) const {
  return platform::from_code_page(text, code_page);
}

std::string context::to_8_bits(const std::wstring& text, unsigned int code_page) const {
  return platform::to_code_page(text, code_page);
}

std::string context::UTF8_to_ANSI(const std::string& text) const {
  constexpr unsigned int system_page = 0;
  return to_8_bits(texto::to_utf_16(text), system_page);
}

std::wstring context::uuid_gen(const std::wstring& pattern, const std::wstring& byte_pattern) const {
  platform::guid made;
  if (!platform::make_guid(made)) return {};
  return print_guid(made, pattern, byte_pattern);
}

std::wstring context::uuid_short(int n) const {
  if (n <= 0) return {};
  return uuid_gen(L"%08X%04X%04X", L"%02X").substr(0, static_cast<std::size_t>(n));
}

bool context::sistem_gmt_time(std::tm* record, long long seconds, exception* err) const {
  return done_or_reported(record && civil::break_down(seconds, *record), seconds, err);
}

bool context::sistem_local_time(std::tm* record, long long seconds, exception* err) const {
  return done_or_reported(record && zone::break_down(seconds, *record), seconds, err);
}

bool context::sistem_gmt_lapse(long long& seconds, std::tm& record, exception*) const {
  seconds = civil::build(record);
  return true;
}

bool context::sistem_local_lapse(long long& seconds, std::tm& record, exception*) const {
  seconds = zone::build(record);
  return true;
}

std::wstring context::get_enviroment_var(const std::wstring& name) const {
  std::wstring value;
  const bool is_name = name.find(L'\0') == name.npos;
  if (!is_name || !platform::environment_variable(name, value)) throw exc::systemEnviromentVarNotFound(name);
  return value;
}

bool context::get_enviroment_var(std::wstring& value, exception& err, const std::wstring& name) const {
  try {
    value = get_enviroment_var(name);
    return true;
  } catch (const exception& error) {
    error.copy_on(err);
    return false;
  }
}

std::wstring context::get_current_user() const { return current_account(*this).user; }
std::wstring context::get_current_domain() const { return current_account(*this).domain; }

std::wstring context::get_current_user_and_domain() const {
  const account found = current_account(*this);
  return found.domain + L'\\' + found.user;
}

bool context::get_current_user_and_domain(std::wstring& user, std::wstring& domain, std::wstring& sid,
                                          exception& err) const {
  account found;
  if (!platform::current_account(found.user, found.domain, found.sid)) {
    exc::systemUserDomain().copy_on(err);
    return false;
  }
  user = std::move(found.user);
  domain = std::move(found.domain);
  sid = std::move(found.sid);
  return true;
}

bundle context::get_os_info() const {
  platform::system_facts facts;
  if (!platform::read_system_facts(facts)) facts = {};
  std::wstring version;
  append_pattern(version, L"%u.%u", {facts.major, facts.minor});
  std::wstring print = system_name(facts) + (L' ' + version) + L'.';
  texto::append_unsigned(print, facts.build);
  if (!facts.service_pack.empty()) print += L' ' + facts.service_pack;
  const bool supported = facts.major > 6 || (facts.major == 6 && facts.minor >= 1);

  bundle out;
  out[L"windows"] = system_name(facts);
  out[L"version"] = version;
  out[L"numero_compilacion"] = static_cast<long>(facts.build);
  out[L"service_pack"] = facts.service_pack;
  out[L"huella"] = print;
  out[L"soporte"] = supported;
  out[L"desktop"] = facts.workstation;
  out[L"subsistema"] = facts.console_program ? L"consola" : L"ventanas";
  return out;
}

bool context::directory_list(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                             std::vector<file>* out) const {
  return files::list_folder(folder, err, filter, callback, out);
}

long long context::get_system_ticks() const { return platform::clock_ticks(); }

xvar& context::operator[](const std::wstring& key) { return values_[key]; }
xvar& context::operator[](const std::string& key) { return values_[texto::to_utf_16(key)]; }
const xvar& context::at(const std::wstring& key) const { return values_.at(key); }
const xvar& context::at(const std::string& key) const { return values_.at(texto::to_utf_16(key)); }
context::iterator context::find(const std::wstring& key) { return values_.find(key); }
context::const_iterator context::find(const std::wstring& key) const { return values_.find(key); }
context::iterator context::find(const std::string& key) { return values_.find(texto::to_utf_16(key)); }
context::const_iterator context::find(const std::string& key) const {
  return values_.find(texto::to_utf_16(key));
}
context::size_type context::count(const std::wstring& key) const { return values_.count(key); }
context::size_type context::count(const std::string& key) const {
  return values_.count(texto::to_utf_16(key));
}
context::size_type context::erase(const std::wstring& key) { return values_.erase(key); }
context::size_type context::erase(const std::string& key) { return values_.erase(texto::to_utf_16(key)); }
context::iterator context::erase(const_iterator where) { return values_.erase(where); }
void context::clear() noexcept { values_.clear(); }

void context::set_app_path(const file& path) { app_path_ = path; }
void context::set_locale(const std::string& name) { locale_ = name; }

void context::set_separators(wchar_t decimal, wchar_t thousands) noexcept {
  decimal_ = decimal;
  thousands_ = thousands;
}

bool context::use_locale_separators() {
  const std::wstring decimal = platform::decimal_separator(locale_);
  const std::wstring thousands = platform::thousands_separator(locale_);
  if (decimal.empty() || thousands.empty()) return false;
  set_separators(decimal.front(), thousands.front());
  return true;
}

}  // namespace ruvo
