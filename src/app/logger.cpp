// SPDX-License-Identifier: BSL-1.0

// Entries on their way to the callback and to the file of the day.

#include <ruvo/context.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/logger.hpp>

#include <atomic>
#include <chrono>
#include <mutex>
#include <utility>
#include <vector>

#include "app/day_log.hpp"
#include "app/lost_entries.hpp"
#include "app/pattern.hpp"
#include "base/numbers.hpp"
#include "base/quietly.hpp"
#include "base/services.hpp"
#include "base/utf.hpp"
#include "exc/detail.hpp"
#include "system/appended_file.hpp"
#include "system/file.hpp"

namespace ruvo {

namespace {

using clock = std::chrono::steady_clock;

// The second text of an entry, made when somebody takes it.

const std::wstring& entry_text(const std::wstring& text) noexcept { return text; }

std::wstring entry_text(const std::exception& error) {
  if (const auto* const own = dynamic_cast<const exception*>(&error))
    return detail::with_detail(own->get_mensaje(), own->get_detail());
  return detail::with_detail(texto::to_utf_16(error.what()), detail::detail_of(error));
}

std::wstring entry_text(const std::exception_ptr& error) {
  if (!error) return {};
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& known) {
    return entry_text(known);
  } catch (...) {
    return detail::with_detail(exception::incorrect().get_mensaje(), detail::detail_of(error));
  }
}

std::wstring entry_text(std::chrono::microseconds passed) {
  std::wstring out;
  texto::append_integer(out, passed.count() / 1000);
  append_pattern(out, L".%03u ms", {static_cast<unsigned long>(passed.count() % 1000)});
  return out;
}

/// Notes that the calling thread is at work in something, and knows whether it was before: what takes entries
/// may make entries, and those must not come back to it without end.
class visit {
 public:
  explicit visit(const void* place) noexcept : place_(place), outer_(innermost) { innermost = this; }
  visit(const visit&) = delete;
  visit& operator=(const visit&) = delete;
  ~visit() { innermost = outer_; }

  bool is_first() const noexcept {
    for (const visit* each = outer_; each; each = each->outer_)
      if (each->place_ == place_) return false;
    return true;
  }

 private:
  static constinit thread_local const visit* innermost;

  const void* place_;
  const visit* outer_;
};

constinit thread_local const visit* visit::innermost = nullptr;

constexpr int days_kept = 7;

}  // namespace

IOnLog::~IOnLog() = default;
void IOnLog::flush() {}

struct logger::state {
  mutable std::mutex guard;
  std::wstring name;
  reg::day_log days;
  std::atomic<long> level;
  std::atomic<IOnLog*> callback{nullptr};
  std::atomic<clock::time_point> started{clock::now()};

  std::atomic<bool> to_file{false};

  template <class Second>
  void take(long entry_level, const std::wstring& first, const Second& second) noexcept {
    if (entry_level > level.load(std::memory_order_relaxed)) return;
    IOnLog* const to = callback.load(std::memory_order_acquire);
    const bool kept = to_file.load(std::memory_order_relaxed);
    bool taken = false;
    if (to || kept) {
      quietly([&] {
        const std::wstring& text = entry_text(second);
        if (to) taken = call(*to, entry_level, first, text);
        if (kept && write(entry_level, first, text)) taken = true;
      });
    }
    if (!taken) reg::lose_entry();
  }

 private:
  /// False when the entry comes from the callback itself, or the callback throws. What it does with the
  /// others is not looked at.
  bool call(IOnLog& to, long entry_level, const std::wstring& first, const std::wstring& second) noexcept {
    const visit here(&callback);
    if (!here.is_first()) return false;
    bool returned = false;
    quietly([&] {
      to.on_log(entry_level, second, first);
      returned = true;
    });
    return returned;
  }

  bool write(long entry_level, const std::wstring& first, const std::wstring& second) {
    const visit here(&days);
    if (!here.is_first()) return false;  // from the services that a time stamp asks
    std::wstring line;
    reg::append_entry(line, entry_level, first, second);
    return days.write(reg::present_moment(), line);
  }
};

const long logger::default_level;

logger::logger(const std::wstring& name, long level) : state_(std::make_unique<state>()) {
  state_->name = name;
  state_->level = level;
}
logger::~logger() = default;

logger& logger::set_name(const std::wstring& name) {
  const std::lock_guard lock(state_->guard);
  state_->name = name;
  return *this;
}

logger& logger::set_path(const ruvo::file& folder) {
  state_->days.set_folder(folder);
  return *this;
}

logger& logger::setLevel(long level) noexcept {
  state_->level = level;
  return *this;
}

logger& logger::set_callback(IOnLog* callback) noexcept {
  state_->callback = callback;
  return *this;
}

logger& logger::set_entries_to_file(bool wanted) noexcept {
  state_->to_file = wanted;
  return *this;
}

std::wstring logger::get_name() const {
  const std::lock_guard lock(state_->guard);
  return state_->name;
}

ruvo::file logger::get_path() const { return state_->days.folder(); }
long logger::get_level() const noexcept { return state_->level; }

void logger::log(long level, const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(level, first, second);
}

void logger::assertion(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::ASSERTION, first, second);
}
void logger::assertion(const std::wstring& first, const std::exception& error) noexcept {
  state_->take(reg::ASSERTION, first, error);
}
void logger::assertion(const std::wstring& first, const std::exception_ptr& error) noexcept {
  state_->take(reg::ASSERTION, first, error);
}
void logger::failure(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::FAILURE, first, second);
}
void logger::failure(const std::wstring& first, const std::exception& error) noexcept {
  state_->take(reg::FAILURE, first, error);
}
void logger::warning(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::WARNING, first, second);
}
void logger::warning(const std::wstring& first, const std::exception& error) noexcept {
  state_->take(reg::WARNING, first, error);
}
void logger::info(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::INFO, first, second);
}
void logger::debug(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::DEBUG, first, second);
}
void logger::sql(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::SQL, first, second);
}
void logger::verbose(const std::wstring& first, const std::wstring& second) noexcept {
  state_->take(reg::VERBOSE, first, second);
}

double logger::time(const std::wstring& text) noexcept {
  const auto passed =
      std::chrono::duration_cast<std::chrono::microseconds>(clock::now() - state_->started.load());
  state_->take(reg::INFO, text, passed);
  return static_cast<double>(passed.count()) / 1000;
}

void logger::reset_time() noexcept { state_->started = clock::now(); }

void logger::log(const std::wstring& text) noexcept {
  bool written = false;
  quietly([&] {
    std::wstring line;
    reg::append_clean(line, text);
    written = state_->days.write(reg::present_moment(), line);
  });
  if (!written) reg::lose_entry();
}

void logger::flush() noexcept {
  quietly([&] { state_->days.flush(); });
  if (IOnLog* const to = state_->callback.load(std::memory_order_acquire)) quietly([&] { to->flush(); });
}

ruvo::file logger::file(const date& day) const { return state_->days.path_of(static_cast<long>(day)); }

std::wstring logger::read(const date& day) const noexcept {
  std::wstring out;
  quietly([&] {
    std::string bytes;
    if (!get_path().empty() && platform::read_shared(file(day), bytes)) out = texto::to_utf_16(bytes);
  });
  return out;
}

bool logger::erase(const date& day) noexcept {
  bool erased = false;
  quietly([&] {
    state_->days.let_go();
    erased = !get_path().empty() && platform::remove_file(file(day));
  });
  return erased;
}

std::size_t logger::clean_week() noexcept {
  std::size_t erased = 0;
  quietly([&] {
    const ruvo::file folder = get_path();
    if (folder.empty()) return;
    const long oldest_kept = reg::days_before(reg::present_moment(), days_kept - 1);
    std::vector<ruvo::file> entries;
    exception err;
    current_context().directory_list(folder, err, nullptr, nullptr, &entries);
    for (const ruvo::file& entry : entries) {
      const long day = reg::day_of_name(entry.get_name());
      if (day && day < oldest_kept && platform::remove_file(entry)) ++erased;
    }
  });
  return erased;
}

}  // namespace ruvo
