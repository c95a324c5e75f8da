// SPDX-License-Identifier: BSL-1.0

// The task made of lambdas.

#include <ruvo/exc.hpp>
#include <ruvo/task.hpp>

#include <exception>
#include <utility>

#include "exc/detail.hpp"

namespace ruvo::task {

bool steps::operator()(const xvar& progress) const { return of_->advance(progress); }
void steps::advance(const xvar& progress) const { of_->advance_or_throw(progress); }
bool steps::canceled() const noexcept { return of_->is_canceled(); }

call::relay::relay(handlers whom) : whom_(std::move(whom)) {}
call::relay::~relay() = default;

void call::relay::on_start() {}
void call::relay::on_progress(xvar* progress) {
  if (whom_.progress) whom_.progress(*progress);
}
void call::relay::on_finish(xvar* result) {
  if (whom_.finish) whom_.finish(*result);
}
void call::relay::on_cancel() {
  if (whom_.cancel) whom_.cancel();
}
void call::relay::on_failure(const exception& error) {
  if (whom_.failure) whom_.failure(error);
}

call::call(body work, handlers whom) : relay_(std::move(whom)), body_(std::move(work)) {
  set_callback(relay_);
}

// All members are still there: a run that has not begun may fail and report it.
call::~call() {
  if (joinable()) cancel();
  settle();
}

void call::work(const xvar& input) {
  try {
    run(input);
  } catch (...) {
    fail();
  }
  try {
    end_run();
  } catch (...) {  // what the listener throws is dropped
  }
}

void call::run(const xvar& input) {
  if (is_canceled()) throw exc::ProcessCanceled();
  xvar result = body_(input, steps(*this));
  set_mensaje(result);
}

void call::fail() noexcept {
  try {
    try {
      throw;  // cppcheck-suppress rethrowNoCurrentException ; called by handlers only
    } catch (const exception& error) {
      on_failure(error);
    } catch (const std::exception& error) {
      on_failure(exc::UnCatch(&error));
    } catch (...) {
      on_failure(detail::about(exc::ThreadException(), detail::in_flight));
    }
  } catch (...) {  // nobody is left to report it to
  }
}

}  // namespace ruvo::task
