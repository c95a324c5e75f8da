// The system's services for the build that runs on the host under its checkers: what the tests need of them,
// from the standard library alone, in a world of fixed settings (Central European Time, Spanish and English
// names, '.' and ',' as separators, code page 1252).

#include "app/platform.hpp"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>

#include "app/thread_slot.hpp"
#include "base/utf.hpp"

namespace ruvo::platform {

namespace {

constexpr unsigned int ansi = 0, latin = 1252, utf_8 = 65001;

/// What code page 1252 has from 0x80 to 0x9F; 0 where it has nothing.
constexpr char16_t latin_extras[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                       0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char to_latin(char16_t unit) {
  if (unit < 0x80 || (unit >= 0xA0 && unit <= 0xFF)) return static_cast<char>(unit);
  for (int i = 0; i < 32; ++i)
    if (latin_extras[i] == unit) return static_cast<char>(0x80 + i);
  return '?';
}

wchar_t from_latin(unsigned char byte) {
  const bool is_extra = byte >= 0x80 && byte < 0xA0 && latin_extras[byte - 0x80];
  return static_cast<wchar_t>(is_extra ? latin_extras[byte - 0x80] : byte);
}

struct language {
  std::string_view names[2];
  const wchar_t* months[12];
  const wchar_t* days[7];  // from Sunday
  bool has_halves;
};

constexpr language languages[] = {
    {{"es_ES", "es-ES"},
     {L"enero", L"febrero", L"marzo", L"abril", L"mayo", L"junio", L"julio", L"agosto", L"septiembre",
      L"octubre", L"noviembre", L"diciembre"},
     {L"domingo", L"lunes", L"martes", L"miércoles", L"jueves", L"viernes", L"sábado"},
     false},
    {{"en_US", "en-US"},
     {L"January", L"February", L"March", L"April", L"May", L"June", L"July", L"August", L"September",
      L"October", L"November", L"December"},
     {L"Sunday", L"Monday", L"Tuesday", L"Wednesday", L"Thursday", L"Friday", L"Saturday"},
     true},
};

const language* find(std::string_view locale) {
  locale = locale.substr(0, locale.find_first_of(".@"));
  for (const language& one : languages)
    if (locale == one.names[0] || locale == one.names[1]) return &one;
  return nullptr;
}

std::wstring shortened(const wchar_t* name, bool abbreviated) {
  return std::wstring(name).substr(0, abbreviated ? 3 : std::wstring::npos);
}

struct slot {
  ~slot() {
    void* const old = value;
    value = nullptr;
    ended = true;
    if (old) release_thread_pointer(old);
  }
  void* value = nullptr;
  bool ended = false;
};
thread_local slot the_slot;

}  // namespace

std::wstring system_message(unsigned long number) {
  return number == 2 ? L"No such file. " : number == 5 ? L"Access denied. " : L"";
}
unsigned long last_error() noexcept { return 0; }

unsigned long thread_id() noexcept {
  static std::atomic<unsigned long> used{0};
  thread_local const unsigned long id = ++used;
  return id;
}
unsigned long process_id() noexcept { return 4; }

std::wstring decimal_separator() { return L"."; }
std::wstring thousands_separator() { return L","; }

std::wstring decimal_separator(std::string_view locale) {
  const language* const found = find(locale);
  return !found ? L"" : found == languages ? L"," : L".";
}

std::wstring thousands_separator(std::string_view locale) {
  const language* const found = find(locale);
  return !found ? L"" : found == languages ? L"." : L",";
}

std::wstring from_code_page(std::string_view text, unsigned int page) {
  if (page == utf_8) return texto::to_utf_16(text);
  std::wstring out;
  if (page != ansi && page != latin) return out;
  for (const char c : text) out.push_back(from_latin(static_cast<unsigned char>(c)));
  return out;
}

std::string to_code_page(std::wstring_view text, unsigned int page) {
  if (page == utf_8) return texto::to_utf_8(text);
  std::string out;
  if (page != ansi && page != latin) return out;
  for (const wchar_t c : text) out.push_back(to_latin(static_cast<char16_t>(c)));
  return out;
}

bool make_guid(guid& out) noexcept {
  thread_local std::mt19937 random{static_cast<unsigned>(thread_id())};
  out.data1 = static_cast<unsigned long>(random());
  out.data2 = static_cast<unsigned short>(random());
  out.data3 = static_cast<unsigned short>(random());
  for (unsigned char& byte : out.data4) byte = static_cast<unsigned char>(random());
  return true;
}

void init_com() noexcept {}

long long clock_ticks() noexcept {
  using ticks = std::chrono::duration<long long, std::ratio<1, 10000000>>;
  return std::chrono::duration_cast<ticks>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// The clock changes at 1:00 UTC on the last Sundays of March and October.
zone::rules zone_rules(int year) noexcept {
  constexpr long long hour = 3600;
  zone::rules out;
  out.standard = -hour;
  out.daylight = -2 * hour;
  out.has_daylight = true;
  out.daylight_begin = zone::moment(year, {3, 0, 5, 0, 1 * hour});
  out.daylight_end = zone::moment(year, {10, 0, 5, 0, 1 * hour});
  return out;
}

// Some zones have names that begin with one of UTC.
std::wstring zone_name(bool daylight) { return daylight ? L"GMT+2" : L"GMT+1"; }

bool environment_variable(const std::wstring& name, std::wstring& value) {
  const char* const found = std::getenv(texto::to_utf_8(name).c_str());
  if (found) value = texto::to_utf_16(std::string_view(found));
  return found != nullptr;
}

std::wstring month_name(std::string_view locale, int month, bool abbreviated) {
  const language* const found = find(locale);
  return found ? shortened(found->months[month - 1], abbreviated) : std::wstring();
}

std::wstring week_day_name(std::string_view locale, int day, bool abbreviated) {
  const language* const found = find(locale);
  return found ? shortened(found->days[day], abbreviated) : std::wstring();
}

std::wstring half_day_name(std::string_view locale, bool afternoon) {
  const language* const found = find(locale);
  return found && found->has_halves ? afternoon ? L"PM" : L"AM" : L"";
}

void* thread_pointer() noexcept { return the_slot.value; }
bool keeps_thread_pointer() noexcept { return !the_slot.ended; }

bool set_thread_pointer(void* value) noexcept {
  if (the_slot.ended) return false;
  the_slot.value = value;
  return true;
}

}  // namespace ruvo::platform
