// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::fake_context, for the tests of programs that use this library.

#include <ruvo/application.hpp>

#include <atomic>
#include <ctime>
#include <map>
#include <string>
#include <vector>

namespace ruvo {

/// An application whose services depend on nothing but what the test sets: the clock stands still,
/// identifiers are counted, the zone has one offset, and environment, account, system and folders are tables.
///
///     ruvo::fake_context fake;
///     const ruvo::thread_scope scope(fake);  // the values of this thread ask `fake` now
///     fake.clock = 1709211909;
///
/// Set it up before other threads use it. Folders are faked for listings only, also those of trees: what
/// else asks about a path or opens it still sees the disk. Conversions between code pages are the real ones.
class KESTA_API fake_context : public application {
 public:
  /// With the values below, no environment and no folders.
  fake_context();

  /// Checks out its threads.
  ~fake_context() override;

  long long clock = 0;   ///< the present, seconds since 1970 UTC
  int milliseconds = 0;  ///< the present's part of the second, 0-999
  long zone_offset = 0;  ///< local time minus UTC in seconds, all the year
  /// The first field of the next identifier; the others are zero.
  mutable std::atomic<unsigned long> next_id{1};
  wchar_t decimal_separator = L',';                  ///< of numbers, in place of set_separators()
  wchar_t thousands_separator = L'.';                ///< of numbers, likewise
  unsigned long thread_id = 1,                       ///< of every thread
      process_id = 1;                                ///< of the process
  std::map<std::wstring, std::wstring> environment;  ///< names, case and all, and values
  std::wstring user = L"usuario",                    ///< the account; empty: asking for it fails
      domain = L"EQUIPO",                            ///< of the account
      sid = L"S-1-5-21-1-2-3-1000";                  ///< of the account
  bundle os_info;                                    ///< of a Windows 11
  /// The entries of each folder by their names, in the order in which they are listed; one that is a key
  /// itself is a folder, others are what stands on the disk, or else empty files. Any other folder is not
  /// found.
  std::map<ruvo::file, std::vector<std::wstring>> folders;

  unsigned long getThreadID() const override;
  unsigned long getProcessID() const override;
  wchar_t get_decimal_separator() const override;
  wchar_t get_thousands_separator() const override;
  std::wstring uuid_gen(const std::wstring& pattern, const std::wstring& byte_pattern) const override;
  bool sistem_local_time(std::tm* record, long long seconds, exception* err) const override;
  bool sistem_local_lapse(long long& seconds, std::tm& record, exception* err) const override;
  std::wstring get_enviroment_var(const std::wstring& name) const override;
  using application::get_enviroment_var;
  bool get_current_user_and_domain(std::wstring& out_user, std::wstring& out_domain, std::wstring& out_sid,
                                   exception& err) const override;
  using application::get_current_user_and_domain;
  bundle get_os_info() const override;
  bool directory_list(const ruvo::file& folder, exception& err, fileFilter* filter, fileCallback* callback,
                      std::vector<ruvo::file>* out) const override;
  long long get_system_ticks() const override;
};

}  // namespace ruvo
