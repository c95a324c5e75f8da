#pragma once

// What the library needs from the system, in terms of the language. None of these throws for a refusal of the
// system; the results say so.

#include <string>
#include <string_view>

#include "time/zone.hpp"

namespace ruvo::platform {

/// The system's text for an error number, in one line and with its blanks; empty when it has none.
std::wstring system_message(unsigned long number);
/// The calling thread's last error number.
unsigned long last_error() noexcept;

unsigned long thread_id() noexcept;
unsigned long process_id() noexcept;

/// The user's separators as the system has them; may be empty.
std::wstring decimal_separator();
std::wstring thousands_separator();
/// Those of a locale ("es_ES" or "es-ES"); empty when it is not known.
std::wstring decimal_separator(std::string_view locale);
std::wstring thousands_separator(std::string_view locale);

/// Conversions in a code page; an unknown page or too long a text gives an empty result.
std::wstring from_code_page(std::string_view text, unsigned int page);
std::string to_code_page(std::wstring_view text, unsigned int page);

struct guid {
  unsigned long data1;
  unsigned short data2;
  unsigned short data3;
  unsigned char data4[8];
};
/// False when the system cannot make one.
bool make_guid(guid& out) noexcept;
/// Makes the calling thread a single-threaded apartment; one that already is something is left as it is.
void init_com() noexcept;

/// 100-nanosecond ticks since 1970-01-01 00:00:00 UTC.
long long clock_ticks() noexcept;
/// The zone's rules for a local year.
zone::rules zone_rules(int year) noexcept;
/// The zone's name for standard or daylight time.
std::wstring zone_name(bool daylight);

/// False when the variable does not exist.
bool environment_variable(const std::wstring& name, std::wstring& value);

/// The account of the process; false when the system does not tell.
bool current_account(std::wstring& user, std::wstring& domain, std::wstring& sid);

struct system_facts {
  unsigned long major = 0, minor = 0, build = 0;  // of the system itself, whatever the program was made for
  std::wstring service_pack;
  bool workstation = false;
  bool console_program = false;  // this process
};
/// False when the system does not tell.
bool read_system_facts(system_facts& out);

/// The file of a module, or of the program for a null handle; empty when the system does not tell.
std::wstring module_path(void* module);

/// Shows a line to a debugger.
void debug_line(const std::wstring& text) noexcept;

/// Makes sure of a standard output: the one that the process has, else a console; false when there is none.
bool open_console() noexcept;
/// Gives back a console that open_console() made.
void close_console() noexcept;
/// Whether the standard output is a console.
bool is_terminal() noexcept;
/// The text as it is to a console, in UTF-8 to a file or a pipe; false when not all was written.
bool write_console(std::wstring_view text);
/// The same to the standard error.
bool write_error(std::wstring_view text);

/// A file to append to, made if it is missing, which others may read, write, rename and erase meanwhile. Null
/// when it cannot be opened.
void* open_to_append(const std::wstring& path);
/// One write at the end of the file, whoever else writes. False when not all could be written; what was is
/// taken back then, unless somebody holds the turn to write.
bool append(void* file, std::string_view bytes) noexcept;
/// Waits until the system has written all to the disk.
void flush(void* file) noexcept;
void close(void* file) noexcept;
/// The whole of a file that others may be writing.
bool read_shared(const std::wstring& path, std::string& out);
/// Not a folder. False when it is not there or cannot be erased.
bool erase_file(const std::wstring& path);

/// Milliseconds that only go forwards.
unsigned long long steady_milliseconds() noexcept;

/// Names in a locale ("es_ES" or "es-ES"); empty when the locale is not known. Months count from 1, days of
/// the week from 0 = Sunday.
std::wstring month_name(std::string_view locale, int month, bool abbreviated);
std::wstring week_day_name(std::string_view locale, int day, bool abbreviated);
/// "AM" or "PM" in the locale; empty when the locale is not known or has none.
std::wstring half_day_name(std::string_view locale, bool afternoon);

}  // namespace ruvo::platform
