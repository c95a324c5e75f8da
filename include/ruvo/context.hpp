// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::context, the services that the library takes from the machine and the user.

#include <ruvo/bundle.hpp>
#include <ruvo/file.hpp>

#include <ctime>
#include <map>
#include <string>
#include <vector>

namespace ruvo {

/// The services of a thread, each a virtual operation with a default that works everywhere, and a map of
/// named values for the application's own use.
///
/// The services may be called from any thread and share no state. The map, the settings, the path, the
/// locale and the separators carry no lock: set them up before other threads use the object. Narrow text is
/// UTF-8 unless a code page says otherwise.
class KESTA_API context {
 public:
  using map_type = std::map<std::wstring, xvar>;  ///< The named values.
  using key_type = map_type::key_type;
  using mapped_type = map_type::mapped_type;
  using value_type = map_type::value_type;
  using iterator = map_type::iterator;
  using const_iterator = map_type::const_iterator;
  using size_type = map_type::size_type;
  using allocator_type = map_type::allocator_type;

  /// No named values, no settings, no path, the locale "C".
  context();

  context(const context&) = delete;
  context& operator=(const context&) = delete;
  virtual ~context();

  /// The system's id of the calling thread.
  virtual unsigned long getThreadID() const;
  /// The system's id of the process.
  virtual unsigned long getProcessID() const;

  /// The decimal separator that was set, or else the user's; ',' when the system has none.
  virtual wchar_t get_decimal_separator() const;
  /// The separator of thousands that was set, or else the user's; '.' when the system has none.
  virtual wchar_t get_thousands_separator() const;

  /// Conversions between a code page (0 is the system's, 65001 UTF-8) and UTF-16; empty for an unknown page.
  virtual std::wstring to_16_bits(const std::string& text, unsigned int code_page) const;
  virtual std::string to_8_bits(const std::wstring& text, unsigned int code_page) const;
  /// UTF-8 text in the system's code page.
  virtual std::string UTF8_to_ANSI(const std::string& text) const;

  /// A new identifier: its 32-bit and its two 16-bit numbers through `pattern`, then each of its eight bytes
  /// through `byte_pattern`, both in the manner of printf with the conversions d i u o x X c. Empty when the
  /// system has none to give.
  virtual std::wstring uuid_gen(const std::wstring& pattern, const std::wstring& byte_pattern) const;
  /// The first n of 32 hexadecimal digits; empty for n below 1.
  virtual std::wstring uuid_short(int n) const;

  /// Seconds since 1970 to a calendar record in UTC, in the proleptic Gregorian calendar, before 1970 too.
  /// False, with an exc::CalendarException, for a null record and when the year does not fit it; `err` may be
  /// null.
  virtual bool sistem_gmt_time(std::tm* record, long long seconds, exception* err) const;
  /// The same in local time, by the system's rules for the year.
  virtual bool sistem_local_time(std::tm* record, long long seconds, exception* err) const;
  /// Back from a record in UTC to seconds. Fields out of their range are carried over; the record's tm_wday,
  /// tm_yday and tm_isdst are not read, and the record stays as it is. True.
  virtual bool sistem_gmt_lapse(long long& seconds, std::tm& record, exception* err) const;
  /// The same for a record in local time. Of the two instants that a repeated hour names the first is taken;
  /// an hour that a clock change skips is moved on by the length of the change.
  virtual bool sistem_local_lapse(long long& seconds, std::tm& record, exception* err) const;

  /// The value of an environment variable; throws exc::systemEnviromentVarNotFound.
  virtual std::wstring get_enviroment_var(const std::wstring& name) const;
  /// The same with a result object; false on failure, when `value` stays as it was.
  virtual bool get_enviroment_var(std::wstring& value, exception& err, const std::wstring& name) const;

  /// The account that the process runs under; the third gives "DOMAIN\user". Throw exc::systemUserDomain.
  virtual std::wstring get_current_user() const;
  virtual std::wstring get_current_domain() const;
  virtual std::wstring get_current_user_and_domain() const;
  /// The same with the account's identifier ("S-1-5-..."); false on failure, when the texts stay as they
  /// were.
  virtual bool get_current_user_and_domain(std::wstring& user, std::wstring& domain, std::wstring& sid,
                                           exception& err) const;

  /// The operating system:
  /// - "windows": its name, "Windows 11" to "Windows 2000", by its version; "Windows" for a version without a
  ///   name, "Unknown Windows Version" when the system does not give one
  /// - "version": "10.0"; "numero_compilacion": the build, 22631
  /// - "service_pack": "Service Pack 1" or empty
  /// - "huella": all that in a line, "Windows 7 6.1.7601 Service Pack 1"
  /// - "soporte": whether this library supports it (Windows 7 and later)
  /// - "desktop": whether it is made for workstations, not for servers
  /// - "subsistema": what this process was made for, "consola" or "ventanas"
  virtual bundle get_os_info() const;

  /// Lists a folder: each entry but "." and ".." that the filter takes is passed to the callback and
  /// appended to `out`; any of the three may be null. False on failure.
  virtual bool directory_list(const file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                              std::vector<file>* out) const;

  /// The present: 100-nanosecond ticks since 1970-01-01 00:00:00 UTC.
  virtual long long get_system_ticks() const;

  /// The value under the key, inserted with a null value when missing.
  xvar& operator[](const std::wstring& key);
  xvar& operator[](const std::string& key);
  /// The value under the key; a missing one throws std::out_of_range.
  const xvar& at(const std::wstring& key) const;
  const xvar& at(const std::string& key) const;

  /// The named values as those of std::map, in the order of their keys; narrow keys are UTF-8.
  iterator find(const std::wstring& key);
  const_iterator find(const std::wstring& key) const;
  iterator find(const std::string& key);
  const_iterator find(const std::string& key) const;
  size_type count(const std::wstring& key) const;
  size_type count(const std::string& key) const;
  size_type erase(const std::wstring& key);
  size_type erase(const std::string& key);
  iterator erase(const_iterator where);
  iterator begin() noexcept { return values_.begin(); }
  iterator end() noexcept { return values_.end(); }
  const_iterator begin() const noexcept { return values_.begin(); }
  const_iterator end() const noexcept { return values_.end(); }
  const_iterator cbegin() const noexcept { return values_.cbegin(); }
  const_iterator cend() const noexcept { return values_.cend(); }
  size_type size() const noexcept { return values_.size(); }
  bool empty() const noexcept { return values_.empty(); }
  size_type max_size() const noexcept { return values_.max_size(); }
  void clear() noexcept;
  allocator_type get_allocator() const noexcept { return values_.get_allocator(); }

  /// The folder that the application's folders lie in; empty for none.
  void set_app_path(const file& path);
  const file& get_app_path() const noexcept { return app_path_; }

  /// The settings, for the application's own use.
  bundle& settings() noexcept { return settings_; }
  const bundle& settings() const noexcept { return settings_; }

  /// The locale name ("es_ES", "es-ES") that calendar values use when none is given; "C" when empty.
  void set_locale(const std::string& name);
  const std::string& get_locale() const noexcept { return locale_; }

  /// Fixes the separators for every user; 0 means the user's again. An override of the services has
  /// the last word.
  void set_separators(wchar_t decimal, wchar_t thousands) noexcept;
  /// Settles those of get_locale(), and so of application::init(), which leaves them alone. False when the
  /// system does not know the locale ("C" has none): nothing is changed then.
  bool use_locale_separators();

 private:
  map_type values_;
  bundle settings_;
  file app_path_;
  std::string locale_;
  wchar_t decimal_ = 0, thousands_ = 0;
};

}  // namespace ruvo
