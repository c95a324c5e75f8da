// SPDX-License-Identifier: BSL-1.0

// The parts of a log line, and the names of the files by day.

#include "app/log_line.hpp"

#include <ruvo/context.hpp>
#include <ruvo/logger.hpp>

#include <algorithm>
#include <ctime>

#include "app/pattern.hpp"
#include "base/civil.hpp"
#include "base/numbers.hpp"
#include "base/services.hpp"

namespace ruvo::reg {

namespace {

constexpr std::wstring_view prefix = L"kesta_";
constexpr std::wstring_view extension = L".log";
constexpr std::size_t day_digits = 8;

constexpr long long ticks_per_second = 10000000;
constexpr long long ticks_per_millisecond = 10000;

constexpr const wchar_t* level_names[] = {L"",     L"ASSERTION", L"FAILURE", L"WARNING",
                                          L"INFO", L"DEBUG",     L"SQL",     L"VERBOSE"};

bool is_control(wchar_t unit) noexcept {
  const auto c = static_cast<char16_t>(unit);
  const bool ends_line = c == 0x2028 || c == 0x2029;
  return c < 0x20 || (c >= 0x7F && c < 0xA0) || ends_line;
}

/// Whether a number is a day that the system's clock, which begins in 1601, can show.
bool is_day(long number) noexcept {
  const long year = number / 10000, day = number % 100;
  const int month = static_cast<int>(number / 100 % 100);
  return year >= 1601 && month >= 1 && month <= 12 && day >= 1 && day <= civil::month_days(year, month);
}

}  // namespace

moment moment_of(long long ticks) {
  const long long seconds = civil::floor_div(ticks, ticks_per_second);
  std::tm record{};
  current_context().sistem_local_time(&record, seconds, nullptr);
  const auto field = [](int value) { return static_cast<unsigned long>(std::max(value, 0)); };
  return {field(record.tm_year + 1900),
          field(record.tm_mon + 1),
          field(record.tm_mday),
          field(record.tm_hour),
          field(record.tm_min),
          field(record.tm_sec),
          static_cast<unsigned long>((ticks - seconds * ticks_per_second) / ticks_per_millisecond)};
}

moment present_moment() { return moment_of(current_context().get_system_ticks()); }

void append_stamp(std::wstring& out, const moment& when) {
  append_pattern(out, L"[%04u-%02u-%02u %02u:%02u:%02u.%03u]",
                 {when.year, when.month, when.day, when.hour, when.minute, when.second, when.millisecond});
}

void append_clean(std::wstring& out, std::wstring_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == L'\r' && at + 1 < text.size() && text[at + 1] == L'\n') continue;
    out += is_control(text[at]) ? L' ' : text[at];
  }
}

void append_entry(std::wstring& out, long level, std::wstring_view first, std::wstring_view second) {
  const std::wstring name = level_name(level);
  if (name.empty())
    texto::append_integer(out, level);
  else
    out += name;
  for (const std::wstring_view text : {first, second}) {
    if (text.empty()) continue;
    out += L": ";
    append_clean(out, text);
  }
}

std::wstring name_of_day(long day) {
  std::wstring out(prefix);
  append_pattern(out, L"%08u", {static_cast<unsigned long>(std::max(day, 0L))});
  return out += extension;
}

long day_of_name(std::wstring_view name) noexcept {
  if (name.size() != prefix.size() + day_digits + extension.size() || !name.starts_with(prefix) ||
      !name.ends_with(extension))
    return 0;
  long day = 0;
  for (const wchar_t c : name.substr(prefix.size(), day_digits)) {
    if (c < L'0' || c > L'9') return 0;
    day = day * 10 + (c - L'0');
  }
  return is_day(day) ? day : 0;
}

long days_before(const moment& when, int days) {
  const long long today = civil::days_from_date(static_cast<long>(when.year), static_cast<int>(when.month),
                                                static_cast<long>(when.day));
  const civil::date_fields then = civil::date_from_days(today - days);
  return static_cast<long>(then.year * 10000 + then.month * 100 + then.day);
}

std::wstring level_name(long level) {
  return level < ASSERTION || level > VERBOSE ? std::wstring() : std::wstring(level_names[level]);
}

std::wstring format_name(const date& day) { return name_of_day(static_cast<long>(day)); }

std::wstring time_stamp() {
  std::wstring out;
  append_stamp(out, present_moment());
  return out;
}

}  // namespace ruvo::reg
