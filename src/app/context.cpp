#include <ruvo/context.hpp>
#include <ruvo/exc.hpp>

#include "app/pattern.hpp"
#include "app/platform.hpp"
#include "texto/utf.hpp"
#include "time/civil.hpp"
#include "time/zone.hpp"

namespace ruvo {

namespace {

bool tell(bool done, exception* err) {
  if (!done) exc::CalendarException().copy_on(err);
  return done;
}

}  // namespace

context::context() = default;
context::~context() = default;

unsigned long context::getThreadID() const { return platform::thread_id(); }
unsigned long context::getProcessID() const { return platform::process_id(); }

wchar_t context::get_decimal_separator() const {
  const std::wstring text = platform::decimal_separator();
  return text.empty() ? L',' : text.front();
}

wchar_t context::get_thousands_separator() const {
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
  std::wstring out;
  append_pattern(out, pattern, {made.data1, made.data2, made.data3});
  for (const unsigned char byte : made.data4) append_pattern(out, byte_pattern, {byte});
  return out;
}

std::wstring context::uuid_short(int n) const {
  if (n <= 0) return {};
  return uuid_gen(L"%08X%04X%04X", L"%02X").substr(0, static_cast<std::size_t>(n));
}

bool context::sistem_gmt_time(std::tm* record, long long seconds, exception* err) const {
  return tell(record && civil::break_down(seconds, *record), err);
}

bool context::sistem_local_time(std::tm* record, long long seconds, exception* err) const {
  return tell(record && zone::break_down(seconds, *record), err);
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
  if (!platform::environment_variable(name, value)) throw exc::systemEnviromentVarNotFound(name);
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

}  // namespace ruvo
