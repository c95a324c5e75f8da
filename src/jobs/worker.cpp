#include <ruvo/sync.hpp>

#include <exception>
#include <system_error>
#include <utility>

namespace ruvo::detail {

namespace {

std::system_error refused(std::errc why) { return std::system_error(std::make_error_code(why)); }

}  // namespace

worker::worker() = default;
worker::~worker() = default;

void worker::start(std::function<void()> body) {
  const std::lock_guard lock(guard_);
  if (id_ != std::thread::id()) std::terminate();
  thread_ = std::thread(std::move(body));
  id_ = thread_.get_id();
}

bool worker::join() {
  std::unique_lock lock(guard_);
  if (id_ == std::thread::id()) return false;
  if (id_ == std::this_thread::get_id()) throw refused(std::errc::resource_deadlock_would_occur);
  if (!thread_.joinable()) {
    ended_.wait(lock, [this, before = joins_] { return joins_ != before; });
    return true;
  }
  std::thread thread = std::move(thread_);
  lock.unlock();
  try {
    thread.join();
  } catch (...) {
    lock.lock();
    thread_ = std::move(thread);
    ++joins_;
    ended_.notify_all();
    throw;
  }
  lock.lock();
  id_ = {};
  ++joins_;
  ended_.notify_all();
  return true;
}

bool worker::detach() {
  const std::lock_guard lock(guard_);
  if (id_ == std::thread::id()) return false;
  if (!thread_.joinable()) throw refused(std::errc::invalid_argument);
  thread_.detach();
  id_ = {};
  return true;
}

bool worker::joinable() const { return get_id() != std::thread::id(); }

std::thread::id worker::get_id() const {
  const std::lock_guard lock(guard_);
  return id_;
}

}  // namespace ruvo::detail
