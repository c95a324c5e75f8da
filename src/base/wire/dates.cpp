// SPDX-License-Identifier: BSL-1.0

// The dates of HTTP and of mail.

#include "base/wire/dates.hpp"

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/ascii.hpp"
#include "base/civil.hpp"
#include "base/wire/tokens.hpp"

namespace ruvo::wire {

namespace {

constexpr std::wstring_view day_names[] = {L"Sunday",   L"Monday", L"Tuesday", L"Wednesday",
                                           L"Thursday", L"Friday", L"Saturday"};
constexpr std::size_t short_name = 3;
constexpr std::wstring_view month_names = L"JanFebMarAprMayJunJulAugSepOctNovDec";

// --- writing

void append_digits(std::wstring& out, long long number, int digits) {
  for (long long power = digits == 4 ? 1000 : 10; power > 0; power /= 10)
    out.push_back(static_cast<wchar_t>(L'0' + number / power % 10));
}

/// "Sun, 06 Nov 1994 08:49:37 "
std::wstring date_and_time(long long seconds) {
  const long long days = civil::floor_div(seconds, civil::seconds_per_day);
  const long long rest = seconds - days * civil::seconds_per_day;
  constexpr long long farthest = 10000 * 366;  // of days: more than four digits of a year reach
  if (days < -farthest || days > farthest) return {};
  const civil::date_fields date = civil::date_from_days(days);
  if (date.year < 0 || date.year > 9999) return {};
  std::wstring out(day_names[civil::week_day(days)].substr(0, short_name));
  out += L", ";
  append_digits(out, date.day, 2);
  out.append(L" ").append(month_names.substr(static_cast<std::size_t>(date.month - 1) * 3, short_name));
  out += L" ";
  append_digits(out, date.year, 4);
  for (const auto& [mark, part] : {std::pair(L' ', rest / 3600), {L':', rest / 60 % 60}, {L':', rest % 60}}) {
    out.push_back(mark);
    append_digits(out, part, 2);
  }
  return out + L" ";
}

// --- reading

bool is_day_name(std::wstring_view name, bool whole) noexcept {
  return std::any_of(std::begin(day_names), std::end(day_names), [&](std::wstring_view day) {
    return is_same_name(name, whole ? day : day.substr(0, short_name));
  });
}

/// Takes parts of a date off the front of a text.
class date_cursor {
 public:
  explicit date_cursor(std::wstring_view text) noexcept : text_(text) {}

  bool at_end() const noexcept { return text_.empty(); }
  std::wstring_view rest() const noexcept { return text_; }
  bool take(wchar_t expected) noexcept {
    if (text_.empty() || text_.front() != expected) return false;
    text_.remove_prefix(1);
    return true;
  }
  std::wstring_view letters() noexcept {
    const auto end = std::find_if_not(text_.begin(), text_.end(), texto::is_alpha);
    const std::wstring_view taken = text_.substr(0, static_cast<std::size_t>(end - text_.begin()));
    text_.remove_prefix(taken.size());
    return taken;
  }
  /// At least and at most so many digits.
  bool number(int& value, std::size_t least, std::size_t most) noexcept {
    std::size_t size = 0;
    for (value = 0; size < text_.size() && size < most && texto::is_digit(text_[size]); ++size)
      value = value * 10 + (text_[size] - L'0');
    text_.remove_prefix(size);
    digits_ = size;
    return size >= least;
  }
  /// Of the last number.
  std::size_t digits() const noexcept { return digits_; }
  bool month(int& value) noexcept {
    const std::wstring_view name = letters();
    value = name.size() == short_name ? month_number(name) : 0;
    return value != 0;
  }
  bool clock(int& hour, int& minute, int& second) noexcept {
    return number(hour, 2, 2) && take(L':') && number(minute, 2, 2) && take(L':') && number(second, 2, 2);
  }
  /// Blanks and comments, which may be nested. False where a comment does not end.
  bool skip() noexcept {
    int depth = 0;
    for (; !text_.empty(); text_.remove_prefix(1)) {
      const wchar_t c = text_.front();
      if (c == L'(') {
        ++depth;
      } else if (c == L')' && depth > 0) {
        --depth;
      } else if (depth > 0) {
        if (c == L'\\' && text_.size() > 1) text_.remove_prefix(1);
      } else if (!texto::is_space(c)) {
        break;
      }
    }
    return depth == 0;
  }

 private:
  std::wstring_view text_;
  std::size_t digits_ = 0;
};

struct date_parts {
  int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;

  std::optional<long long> seconds() const { return seconds_of(year, month, day, hour, minute, second); }
};

/// " 06 Nov 1994 08:49:37 GMT" behind the comma.
bool read_fixed(date_cursor& from, date_parts& out) {
  return from.take(L' ') && from.number(out.day, 2, 2) && from.take(L' ') && from.month(out.month) &&
         from.take(L' ') && from.number(out.year, 4, 4) && from.take(L' ') &&
         from.clock(out.hour, out.minute, out.second) && is_same_name(from.rest(), L" GMT");
}

/// " 06-Nov-94 08:49:37 GMT" behind the comma.
bool read_850(date_cursor& from, date_parts& out) {
  return from.take(L' ') && from.number(out.day, 2, 2) && from.take(L'-') && from.month(out.month) &&
         from.take(L'-') && from.number(out.year, 2, 2) && from.take(L' ') &&
         from.clock(out.hour, out.minute, out.second) && is_same_name(from.rest(), L" GMT");
}

/// " Nov  6 08:49:37 1994" behind the day.
bool read_asctime(date_cursor& from, date_parts& out) {
  if (!from.take(L' ') || !from.month(out.month) || !from.take(L' ')) return false;
  const bool one_digit = from.take(L' ');
  return from.number(out.day, one_digit ? 1 : 2, one_digit ? 1 : 2) && from.take(L' ') &&
         from.clock(out.hour, out.minute, out.second) && from.take(L' ') && from.number(out.year, 4, 4) &&
         from.at_end();
}

/// Two digits of a year are those of the last one that is not more than 50 years ahead.
std::optional<long long> in_century(date_parts parts, long long now) {
  constexpr int far = 50, century = 100;
  std::tm today;
  if (!civil::break_down(now, today)) return std::nullopt;
  const long long limit = today.tm_year + 1900LL + far;
  const long long two_digits = parts.year;
  const long long year =
      limit - (limit - two_digits - century * civil::floor_div(limit - two_digits, century));
  const auto in_year = [](long long seconds, long long of) {
    return seconds - civil::days_from_date(of, 1, 1) * civil::seconds_per_day;
  };
  const auto at = [&](long long of) {
    return seconds_of(of, parts.month, parts.day, parts.hour, parts.minute, parts.second);
  };
  const std::optional<long long> found = at(year);
  const bool too_far = found && year == limit && in_year(*found, year) > in_year(now, limit - far);
  return too_far ? at(year - century) : found;
}

// --- mail

struct named_zone {
  std::wstring_view name;
  int hours;
};
constexpr named_zone known_zones[] = {{L"UT", 0},   {L"GMT", 0},  {L"Z", 0},    {L"EST", -5},
                                      {L"EDT", -4}, {L"CST", -6}, {L"CDT", -5}, {L"MST", -7},
                                      {L"MDT", -6}, {L"PST", -8}, {L"PDT", -7}};

bool read_zone_number(date_cursor& from, zoned_instant& out) {
  const bool west = from.take(L'-');
  int hours, minutes;
  if (!west && !from.take(L'+')) return false;
  if (!from.number(hours, 2, 2) || !from.number(minutes, 2, 2) || minutes > 59) return false;
  const int east = hours * 60 + minutes;
  out.minutes_east = west ? -east : east;
  if (west && east == 0) out.zone = zone_of_writer::unstated;
  return true;
}

/// Nothing, a number, or a name, of which those that are not known say nothing.
bool read_zone(date_cursor& from, zoned_instant& out) {
  const std::wstring_view name = from.letters();
  if (name.empty() && !from.at_end()) return read_zone_number(from, out);
  if (name.empty()) {
    out.zone = zone_of_writer::unstated;
    return true;
  }
  const auto* const known =
      std::find_if(std::begin(known_zones), std::end(known_zones),
                   [&](const named_zone& zone) { return is_same_name(zone.name, name); });
  if (known == std::end(known_zones))
    out.zone = zone_of_writer::foreign;
  else
    out.minutes_east = known->hours * 60;
  return true;
}

/// "Sun, " may be left out.
bool read_weekday(date_cursor& from) {
  if (!from.skip()) return false;
  const std::wstring_view name = from.letters();
  if (name.empty()) return true;
  return (is_day_name(name, false) || is_day_name(name, true)) && from.skip() && from.take(L',') &&
         from.skip();
}

bool read_date(date_cursor& from, date_parts& out) {
  if (!from.number(out.day, 1, 2) || !from.skip() || !from.month(out.month) || !from.skip()) return false;
  if (!from.number(out.year, 2, 4)) return false;
  if (from.digits() == 2) out.year += out.year < 50 ? 2000 : 1900;
  if (from.digits() == 3) out.year += 1900;
  return from.skip();
}

bool read_clock(date_cursor& from, date_parts& out) {
  if (!from.number(out.hour, 1, 2) || !from.skip() || !from.take(L':') || !from.skip()) return false;
  if (!from.number(out.minute, 2, 2) || !from.skip()) return false;
  return !from.take(L':') || (from.skip() && from.number(out.second, 2, 2) && from.skip());
}

}  // namespace

int month_number(std::wstring_view name) noexcept {
  if (name.size() < short_name) return 0;
  for (int month = 0; month < 12; ++month) {
    const std::wstring_view known = month_names.substr(static_cast<std::size_t>(month) * 3, short_name);
    if (is_same_name(name.substr(0, short_name), known)) return month + 1;
  }
  return 0;
}

std::optional<long long> seconds_of(long long year, int month, int day, int hour, int minute, int second) {
  const bool is_date = month >= 1 && month <= 12 && day >= 1 && day <= civil::month_days(year, month);
  const bool is_time = hour >= 0 && hour < 24 && minute >= 0 && minute < 60 && second >= 0 && second <= 60;
  if (!is_date || !is_time) return std::nullopt;
  return civil::days_from_date(year, month, day) * civil::seconds_per_day + hour * 3600LL + minute * 60LL +
         second;
}

std::wstring http_date(long long seconds) {
  std::wstring out = date_and_time(seconds);
  return out.empty() ? out : out + L"GMT";
}

std::optional<long long> read_http_date(std::wstring_view text, long long now) {
  date_cursor from(text);
  const std::wstring_view day = from.letters();
  date_parts parts;
  if (is_day_name(day, false) && from.take(L','))
    return read_fixed(from, parts) ? parts.seconds() : std::nullopt;
  if (is_day_name(day, true) && from.take(L','))
    return read_850(from, parts) ? in_century(parts, now) : std::nullopt;
  return is_day_name(day, false) && read_asctime(from, parts) ? parts.seconds() : std::nullopt;
}

std::wstring mail_date(const zoned_instant& when) {
  constexpr int most_minutes = 100 * 60;
  if (when.minutes_east <= -most_minutes || when.minutes_east >= most_minutes) return {};
  if (!civil::has_record(when.seconds)) return {};
  const bool is_known = when.zone == zone_of_writer::known;
  const int east = is_known ? when.minutes_east : 0, distance = east < 0 ? -east : east;
  std::wstring out = date_and_time(when.seconds + east * 60LL);
  if (out.empty()) return out;
  out.push_back(east < 0 || !is_known ? L'-' : L'+');
  append_digits(out, distance / 60, 2);
  append_digits(out, distance % 60, 2);
  return out;
}

std::optional<zoned_instant> read_mail_date(std::wstring_view text) {
  date_cursor from(text);
  date_parts parts;
  zoned_instant made;
  if (!read_weekday(from) || !read_date(from, parts) || !read_clock(from, parts)) return std::nullopt;
  if (!read_zone(from, made) || !from.skip() || !from.at_end()) return std::nullopt;
  const std::optional<long long> local = parts.seconds();
  if (!local) return std::nullopt;
  made.seconds = *local - made.minutes_east * 60LL;
  return made;
}

}  // namespace ruvo::wire
