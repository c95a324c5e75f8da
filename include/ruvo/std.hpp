// SPDX-License-Identifier: BSL-1.0
#pragma once

// kesta's values at home in the standard library: std::hash, <=>, std::format, std::chrono,
// std::filesystem::path, std::error_code, std::source_location, std::future with std::stop_token. What values
// hold without copies, and keys as ranges, is in <ruvo/views.hpp>; {fmt} in <ruvo/fmt.hpp>.

#include <ruvo/binary.hpp>
#include <ruvo/bundle.hpp>
#include <ruvo/color.hpp>
#include <ruvo/date.hpp>
#include <ruvo/datetime.hpp>
#include <ruvo/decimal.hpp>
#include <ruvo/error_code.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/json_pointer.hpp>
#include <ruvo/lapse.hpp>
#include <ruvo/list.hpp>
#include <ruvo/memo.hpp>
#include <ruvo/smtp/address.hpp>
#include <ruvo/task.hpp>
#include <ruvo/texto/encoding.hpp>
#include <ruvo/texto/words.hpp>
#include <ruvo/time.hpp>
#include <ruvo/var.hpp>
#include <ruvo/velda.hpp>
#include <ruvo/views.hpp>
#include <ruvo/xvar.hpp>

#include <chrono>
#include <compare>
#include <concepts>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <version>

#if defined(__cpp_lib_source_location)
#  include <source_location>
#endif
#if defined(__cpp_lib_jthread)
#  include <stop_token>
#endif
// libc++ has all that is used here before it says so.
#if defined(__cpp_lib_format) || (defined(_LIBCPP_VERSION) && _LIBCPP_VERSION >= 170000)
#  include <format>
#  define KESTA_HAS_FORMAT
#endif

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

// --- <=> where an order exists

// For exactly these types: what converts to one of them goes where it went before.

/// The order of `<`, which for var is that of texts, but of what is equal: decimals may be with two texts.
/// Values of two kinds with one text are neither equal nor one before the other.
template <std::derived_from<var> A, std::derived_from<var> B>
std::partial_ordering operator<=>(const A& a, const B& b) {
  const var &one = a, &other = b;
  if (one == other) return std::partial_ordering::equivalent;
  if (one < other) return std::partial_ordering::less;
  return other < one ? std::partial_ordering::greater : std::partial_ordering::unordered;
}
/// The order of `<`, by to_string(), which two different values may have in common.
template <class T>
requires(std::same_as<T, bundle> || std::same_as<T, list>) std::weak_ordering operator<=>(const T& a,
                                                                                          const T& b) {
  return a.to_string() <=> b.to_string();
}
/// The order of `<`: bytes.
template <std::same_as<binary> T>
std::strong_ordering operator<=>(const T& a, const T& b) noexcept {
  return a.compare(b) <=> 0;
}
/// The order of `<`: units of the texts.
template <std::same_as<memo> T>
std::strong_ordering operator<=>(const T& a, const T& b) noexcept {
  return a.to_string() <=> b.to_string();
}
template <std::same_as<file> T>
std::strong_ordering operator<=>(const T& a, const T& b) noexcept {
  return std::wstring_view(a.c_str()) <=> std::wstring_view(b.c_str());
}

namespace smtp {

/// The order of `<`: mail addresses without regard to case.
template <std::same_as<address> T>
std::weak_ordering operator<=>(const T& a, const T& b) noexcept {
  if (a < b) return std::weak_ordering::less;
  return b < a ? std::weak_ordering::greater : std::weak_ordering::equivalent;
}

}  // namespace smtp

// --- std::chrono

/// The instant in UTC, whatever the mode.
inline std::chrono::sys_seconds to_sys_seconds(const lapse& instant) {
  return std::chrono::sys_seconds(std::chrono::seconds(instant.get_lapso()));
}
/// The instant, with the mode in which its fields are read; parts of a second are cut towards the past.
template <class Duration>
datetime to_datetime(std::chrono::sys_time<Duration> instant, times::HUSO huso = times::GMT) {
  const auto seconds = std::chrono::floor<std::chrono::seconds>(instant).time_since_epoch();
  return datetime(static_cast<long long>(seconds.count()), huso);
}
/// The day in its own mode. Throws exc::CalendarException beyond the years that std::chrono::year holds.
inline std::chrono::year_month_day to_year_month_day(const date& day) {
  const int year = day.get_year();
  if (year < static_cast<int>((std::chrono::year::min)()) ||
      year > static_cast<int>((std::chrono::year::max)()))
    throw exc::CalendarException();
  return {std::chrono::year(year), std::chrono::month(static_cast<unsigned>(day.get_month())),
          std::chrono::day(static_cast<unsigned>(day.get_day()))};
}
/// The day. Throws exc::CalendarException for one that does not exist, 30 February for instance.
inline date to_date(std::chrono::year_month_day day, times::HUSO huso = times::GMT) {
  if (!day.ok()) throw exc::CalendarException();
  return date(static_cast<long>(static_cast<int>(day.year())), static_cast<long>(unsigned(day.month())),
              static_cast<long>(unsigned(day.day())), huso);
}
/// Seconds since midnight; `std::chrono::hh_mm_ss` takes them apart.
inline std::chrono::seconds to_seconds(const time& hour) { return std::chrono::seconds(hour.in_seconds()); }
/// The time of day so long after midnight; 24 hours are midnight again.
inline time to_time(std::chrono::seconds since_midnight, times::HUSO huso = times::GMT) {
  time made(0L, huso);
  made.set_in_seconds(static_cast<long>((since_midnight % std::chrono::hours(24)).count()));
  return made;
}

namespace detail {

/// A duration of whole seconds: neither the fraction of one, nor the average length of months and years.
template <class Duration>
concept is_exact_duration = std::convertible_to<Duration, std::chrono::seconds> &&
                            !std::same_as<typename Duration::period, std::chrono::months::period> &&
                            !std::same_as<typename Duration::period, std::chrono::years::period>;

/// Throws exc::CalendarException beyond 64 bits.
template <class Rep, class Period>
constexpr std::chrono::seconds seconds_of(std::chrono::duration<Rep, Period> by) {
  constexpr long long most = (std::numeric_limits<long long>::max)() / Period::num;
  if (std::cmp_greater(by.count(), most) || std::cmp_less(by.count(), -most)) throw exc::CalendarException();
  return by;
}

inline void move_instant(datetime& instant, std::chrono::seconds by, bool back) {
  using limits = std::numeric_limits<long long>;
  const long long from = instant.get_lapso(), step = by.count();
  const bool beyond = back ? (step < 0 ? from > (limits::max)() + step : from < (limits::min)() + step)
                           : (step > 0 ? from > (limits::max)() - step : from < (limits::min)() - step);
  if (beyond) throw exc::CalendarException();
  instant.set_lapso(back ? from - step : from + step);
}

inline int count_of_days(std::chrono::days by) {
  if (!std::in_range<int>(by.count())) throw exc::CalendarException();
  return static_cast<int>(by.count());
}

}  // namespace detail

/// Move the instant by exactly so much: a day has 24 hours. Durations finer than seconds, and months and
/// years, whose length is an average, are refused; lapse::add() moves by calendar months. Throw
/// exc::CalendarException beyond 64 bits of seconds.
template <std::same_as<datetime> T, class Rep, class Period>
requires detail::is_exact_duration<std::chrono::duration<Rep, Period>> T& operator+=(
    T& instant, std::chrono::duration<Rep, Period> by) {
  detail::move_instant(instant, detail::seconds_of(by), false);
  return instant;
}
template <std::same_as<datetime> T, class Rep, class Period>
requires detail::is_exact_duration<std::chrono::duration<Rep, Period>> T& operator-=(
    T& instant, std::chrono::duration<Rep, Period> by) {
  detail::move_instant(instant, detail::seconds_of(by), true);
  return instant;
}
template <std::same_as<datetime> T, class Rep, class Period>
requires detail::is_exact_duration<std::chrono::duration<Rep, Period>> T
operator+(T instant, std::chrono::duration<Rep, Period> by) {
  return instant += by;
}
template <std::same_as<datetime> T, class Rep, class Period>
requires detail::is_exact_duration<std::chrono::duration<Rep, Period>> T
operator-(T instant, std::chrono::duration<Rep, Period> by) {
  return instant -= by;
}
/// Move by days of the calendar; `std::chrono::weeks` are seven. Throw exc::CalendarException beyond 32 bits
/// of days.
template <std::same_as<date> T>
T& operator+=(T& day, std::chrono::days by) {
  return day += detail::count_of_days(by);
}
template <std::same_as<date> T>
T& operator-=(T& day, std::chrono::days by) {
  return day -= detail::count_of_days(by);
}
/// Move around midnight by hours, minutes and seconds. Throw exc::CalendarException beyond 64 bits of
/// seconds.
template <std::same_as<time> T, class Rep, class Period>
requires detail::is_exact_duration<std::chrono::duration<Rep, Period>> T& operator+=(
    T& hour, std::chrono::duration<Rep, Period> by) {
  constexpr std::chrono::seconds day = std::chrono::hours(24);
  const auto moved = (to_seconds(hour) + detail::seconds_of(by) % day + day) % day;
  return hour.set_in_seconds(static_cast<long>(moved.count()));
}
template <std::same_as<time> T, class Rep, class Period>
requires detail::is_exact_duration<std::chrono::duration<Rep, Period>> T& operator-=(
    T& hour, std::chrono::duration<Rep, Period> by) {
  return hour += -(detail::seconds_of(by) % std::chrono::hours(24));
}

// --- std::filesystem

/// The same path, and back; a file brings it into its one form.
inline std::filesystem::path to_path(const file& path) {
  if constexpr (std::same_as<std::filesystem::path::value_type, wchar_t>)
    return path.c_str();
  else
    return texto::to_utf_8(path);
}
inline file to_file(const std::filesystem::path& path) { return file(path.native()); }

// --- std::source_location

namespace detail {

#if defined(__cpp_lib_source_location)
using call_place = std::source_location;
#else
/// What std::source_location is, for compilers that its library does not serve yet.
class call_place {
 public:
  static constexpr call_place current(const char* file = __builtin_FILE(),
                                      unsigned line = __builtin_LINE()) noexcept {
    call_place made;
    made.file_ = file;
    made.line_ = line;
    return made;
  }
  constexpr const char* file_name() const noexcept { return file_; }
  constexpr unsigned line() const noexcept { return line_; }

 private:
  const char* file_ = "";
  unsigned line_ = 0;
};
#endif

/// "[facturas.cpp:58]": the name of the source without its folder.
inline std::wstring place_of(const call_place& at) {
  std::wstring name = texto::to_utf_16(at.file_name());
  name.erase(0, name.find_last_of(L"/\\") + 1);
  return L"[" + name + L':' + std::to_wstring(at.line()) + L']';
}

}  // namespace detail

/// The text and the place of the call, "sin cliente [facturas.cpp:58]", for entries of a log:
/// `log::warning(L"facturas", located(L"sin cliente"))`. Only who asks for a place pays for it.
inline std::wstring located(std::wstring text, const detail::call_place& at = detail::call_place::current()) {
  if (!text.empty()) text += L' ';
  return text += detail::place_of(at);
}
/// The failure with the place of the call behind its detail, for `throw located(exc::fileNotFound(path))`.
template <std::derived_from<exception> Failure>
Failure located(Failure failure, const detail::call_place& at = detail::call_place::current()) {
  failure.set_detail(located(failure.get_detail(), at));
  return failure;
}

// --- std::future and std::stop_token

#if defined(__cpp_lib_jthread)

namespace task {

/// The running task as the body of a future_call sees it; valid as long as the body runs.
class stoppable_steps {
 public:
  /// Made by future_call.
  stoppable_steps(steps of, std::stop_token stop) noexcept : of_(of), stop_(std::move(stop)) {}

  /// Reports the progress; false when the body should end: nothing is reported then.
  bool operator()(const xvar& progress) const { return !canceled() && of_(progress); }
  /// The same; throws exc::ProcessCanceled, which ends the body and reaches the future.
  void advance(const xvar& progress) const {
    if (!(*this)(progress)) throw exc::ProcessCanceled();
  }
  /// Whether the body should end, for bodies that report no progress.
  bool canceled() const noexcept { return stop_.stop_requested() || of_.canceled(); }
  /// For what waits by a std::stop_token, std::condition_variable_any for instance.
  const std::stop_token& token() const noexcept { return stop_; }

 private:
  steps of_;
  std::stop_token stop_;
};

/// A task::call whose end is a std::future, and that a std::stop_token ends:
///
///     task::future_call sum([](const xvar& input, task::stoppable_steps steps) -> xvar { return add(input,
///     steps); }); std::future<xvar> total = sum.start(lines, stop.get_token()); show(total.get());
///
/// The future gives what the body returns, or throws what it threw: a ruvo::exception as its own class, of
/// others what task::call makes of them. A body that was asked to end before it began is skipped, and the
/// future throws exc::ProcessCanceled. The destructor asks the body to end and waits for it.
class future_call {
 public:
  /// What runs on the new thread; it returns the result.
  using body = std::function<xvar(const xvar& input, stoppable_steps progress)>;

  /// Keeps both; `progress` is called on the thread of the task for what the body reports.
  explicit future_call(body work, std::function<void(const xvar& progress)> progress = {})
      : work_(std::move(work)),
        call_([this](const xvar& input, steps inner) { return run(input, inner); },
              {.finish = [this](const xvar& result) { result_.set_value(result); },
               .failure = [this](const exception& error) { fail(error); },
               .progress = std::move(progress)}) {}
  future_call(const future_call&) = delete;
  future_call& operator=(const future_call&) = delete;
  ~future_call() { request_stop(); }

  /// Runs the body on a new thread, after the end of an earlier run. `stop` and request_stop() ask it to end.
  /// Throws std::system_error when the system has no thread.
  std::future<xvar> start(const xvar& input, const std::stop_token& stop = {}) {
    if (call_.joinable()) call_.join();
    result_ = {};
    source_ = {};
    link_.emplace(stop, [source = source_]() mutable { source.request_stop(); });
    std::future<xvar> result = result_.get_future();
    call_.start(input);
    return result;
  }
  /// Asks the body to end, without waiting; any thread, once start() has returned.
  void request_stop() noexcept { source_.request_stop(); }

 private:
  xvar run(const xvar& input, steps inner) {
    const stoppable_steps all(inner, source_.get_token());
    if (all.canceled()) throw exc::ProcessCanceled();
    return work_(input, all);
  }
  void fail(const exception& error) noexcept {
    try {
      try {
        error.raise();
      } catch (...) {
        result_.set_exception(std::current_exception());
      }
    } catch (...) {  // the result was there already
    }
  }

  body work_;
  std::promise<xvar> result_;
  std::stop_source source_;
  std::optional<std::stop_callback<std::function<void()>>> link_;
  call call_;  // the last one: it ends before the others go
};

}  // namespace task

#endif

// --- texts for formatters

namespace detail {

/// What a formatter writes of a value.
template <class T>
std::wstring printed(const T& value) {
  if constexpr (std::derived_from<T, file>)
    return value.c_str();
  else if constexpr (std::derived_from<T, exception>)
    return value.get_mensaje();
  else
    return value.to_string();
}

/// A formatter over one of texts: what stands behind the colon is that of texts, or begins with "%" and is
/// what lapse::format() takes.
template <class T, class Char, class Text>
class text_formatter : public Text {
 public:
  /// Keeps a format of dates; leaves everything else to the formatter of texts.
  template <class Context>
  constexpr auto parse(Context& context) {
    if constexpr (std::derived_from<T, lapse>) {
      auto at = context.begin();
      if (at != context.end() && *at == '%') {
        const Char* const first = std::to_address(at);
        while (at != context.end() && *at != '}') ++at;
        pattern_ = {first, static_cast<std::size_t>(std::to_address(at) - first)};
        return at;
      }
    }
    return Text::parse(context);
  }

  /// As UTF-8 where characters are narrow.
  template <class Context>
  auto format(const T& value, Context& context) const {
    const std::wstring text = text_of(value);
    if constexpr (std::same_as<Char, wchar_t>)
      return Text::format(std::wstring_view(text), context);
    else
      return Text::format(std::string_view(texto::to_utf_8(text)), context);
  }

 private:
  std::wstring text_of(const T& value) const {
    if constexpr (std::derived_from<T, lapse>)
      if (!pattern_.empty()) return value.format(std::basic_string<Char>(pattern_));
    return printed(value);
  }

  std::basic_string_view<Char> pattern_{};
};

// --- hashes

inline std::size_t hash_of_text(std::wstring_view text) noexcept {
  return std::hash<std::wstring_view>()(text);
}
/// Of values that are equal, the texts are, but for decimals: 1.5 is equal to 1.50.
inline std::size_t hash_of(const var& value) {
  const auto text = as_text(value);
  if (!text && value.is_decimal() && *value.get_type() == typeid(decimal))
    return static_cast<decimal>(value).hash();
  return text ? hash_of_text(*text) : hash_of_text(value.to_string());
}
inline std::size_t hash_of(const bundle& value) { return hash_of_text(value.to_string()); }
inline std::size_t hash_of(const list& value) { return hash_of_text(value.to_string()); }
inline std::size_t hash_of(const memo& value) noexcept { return hash_of_text(value.to_string()); }
inline std::size_t hash_of(const file& value) noexcept { return hash_of_text(value.c_str()); }
inline std::size_t hash_of(const color& value) { return hash_of_text(value.to_string()); }
inline std::size_t hash_of(const binary& value) noexcept {
  const auto& bytes = value.get_store();
  return std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}
inline std::size_t hash_of(const date& value) { return std::hash<long>()(static_cast<long>(value)); }
inline std::size_t hash_of(const time& value) { return std::hash<long>()(static_cast<long>(value)); }
inline std::size_t hash_of(const datetime& value) noexcept {
  return std::hash<long long>()(value.get_lapso());
}
inline std::size_t hash_of(const exception& value) noexcept {
  return std::hash<unsigned long>()(value.get_raw_code());
}
inline std::size_t hash_of(const smtp::address& value) {
  std::wstring mail = value.get_mail();
  for (wchar_t& c : mail)
    if (c >= L'A' && c <= L'Z') c = static_cast<wchar_t>(c - L'A' + L'a');
  return hash_of_text(mail);
}
inline std::size_t hash_of(const serializer::json_pointer& value) { return hash_of_text(value.to_string()); }

/// A std::hash by hash_of(): equal values have equal hashes.
template <class T>
struct standard_hash {
  std::size_t operator()(const T& value) const { return hash_of(value); }
};

}  // namespace detail

}  // namespace ruvo

#define KESTA_HASH(type) \
  template <>            \
  struct std::hash<type> : ruvo::detail::standard_hash<type> {};
KESTA_HASH(ruvo::var)
KESTA_HASH(ruvo::xvar)
KESTA_HASH(ruvo::bundle)
KESTA_HASH(ruvo::list)
KESTA_HASH(ruvo::memo)
KESTA_HASH(ruvo::binary)
KESTA_HASH(ruvo::date)
KESTA_HASH(ruvo::time)
KESTA_HASH(ruvo::datetime)
KESTA_HASH(ruvo::velda::date)
KESTA_HASH(ruvo::color)
KESTA_HASH(ruvo::file)
KESTA_HASH(ruvo::exception)
KESTA_HASH(ruvo::smtp::address)
KESTA_HASH(ruvo::serializer::json_pointer)
#undef KESTA_HASH

/// Calls what(type) for each type that std::format and fmt::format write, beside exceptions.
#define KESTA_FORMATTED(what)                                                                              \
  what(ruvo::var) what(ruvo::xvar) what(ruvo::bundle) what(ruvo::list) what(ruvo::memo) what(ruvo::binary) \
      what(ruvo::decimal) what(ruvo::date) what(ruvo::time) what(ruvo::datetime) what(ruvo::velda::date)   \
          what(ruvo::color) what(ruvo::file) what(ruvo::smtp::address)

#if defined(KESTA_HAS_FORMAT)
#  define KESTA_FORMATTER(type)                                                                \
    template <>                                                                                \
    struct std::formatter<type, char>                                                          \
        : ruvo::detail::text_formatter<type, char, std::formatter<std::string_view, char>> {}; \
    template <>                                                                                \
    struct std::formatter<type, wchar_t>                                                       \
        : ruvo::detail::text_formatter<type, wchar_t, std::formatter<std::wstring_view, wchar_t>> {};
KESTA_FORMATTED(KESTA_FORMATTER)
#  undef KESTA_FORMATTER
/// Of exceptions the message.
template <std::derived_from<ruvo::exception> Failure, class Char>
struct std::formatter<Failure, Char>
    : ruvo::detail::text_formatter<Failure, Char, std::formatter<std::basic_string_view<Char>, Char>> {};
#endif

#include <ruvo/names_back.hpp>
