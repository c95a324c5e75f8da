// SPDX-License-Identifier: BSL-1.0
#pragma once

// What the tests of tasks and pools share: a callback that notes its calls, and scripted tasks.

#include <ruvo/exc.hpp>
#include <ruvo/jobs.hpp>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

/// Notes its calls, in words.
class recorder : public ruvo::task::ilistener {
 public:
  void on_start() override { add(L"start"); }
  /// With a mark behind values that have qualities.
  void on_progress(ruvo::xvar* value) override {
    add(L"progress " + value->to_string() + (value->is_qualified() ? L"*" : L""));
  }
  void on_finish(ruvo::xvar* value) override { add(L"finish " + value->to_string()); }
  void on_cancel() override { add(L"cancel"); }
  void on_failure(const ruvo::exception& error) override {
    add(L"failure " + std::to_wstring(error.get_rango()) + L"/" + std::to_wstring(error.get_code()) + L" " +
        error.get_mensaje());
  }

  std::wstring noted() const {
    const std::lock_guard lock(guard_);
    return noted_;
  }

  /// Called after each note, with the note.
  std::function<void(const std::wstring&)> then;

 private:
  void add(const std::wstring& what) {
    {
      const std::lock_guard lock(guard_);
      noted_ += (noted_.empty() ? L"" : L", ") + what;
    }
    if (then) then(what);
  }

  mutable std::mutex guard_;
  std::wstring noted_;
};

/// A task over a function that sees the protected operations.
class scripted : public ruvo::task::async {
 public:
  using script = std::function<void(scripted&, const ruvo::xvar&)>;

  explicit scripted(script of, ruvo::task::ilistener* listener = nullptr)
      : async(listener), of_(std::move(of)) {}
  ~scripted() override {
    if (joinable()) cancel();
  }
  void work(const ruvo::xvar& input) override { of_(*this, input); }

  using async::advance;
  using async::advance_or_throw;
  using async::set_mensaje;
  using async::set_progress;

 private:
  script of_;
};

/// Waits until it is so; false after ten seconds.
inline bool comes_true(const std::function<bool()>& so) {
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!so()) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::yield();
  }
  return true;
}

/// A body that waits until its task is canceled, and ends without a result.
inline void until_canceled(scripted& task, const ruvo::xvar&) {
  while (!task.is_canceled()) std::this_thread::yield();
}

/// A body that ends with its input as the result.
inline void finish(scripted& task, const ruvo::xvar& input) {
  ruvo::xvar result(input);
  task.set_mensaje(result);
}

/// Knows how often, and by which identifier last, a task was over.
struct listener : ruvo::sync::on_round_off {
  void on_run_off(std::wstring uuid) override {
    last = std::move(uuid);
    ++count;
  }
  std::wstring last;
  std::atomic<int> count{0};
};
