// SPDX-License-Identifier: BSL-1.0

// The callbacks and the runnable base, instantiated for xvar and bundle.

#include <ruvo/bundle.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/ilock.hpp>
#include <ruvo/sync.hpp>
#include <ruvo/xvar.hpp>

#include <type_traits>
#include <utility>

#include "exc/detail.hpp"
#include "jobs/identifier.hpp"

namespace ruvo {

ilock::ilock() = default;
ilock::ilock(const ilock&) = default;
ilock::ilock(ilock&&) noexcept = default;
ilock& ilock::operator=(const ilock&) = default;
ilock& ilock::operator=(ilock&&) noexcept = default;
ilock::~ilock() = default;

namespace sync {

on_round_off::on_round_off() = default;
on_round_off::on_round_off(const on_round_off&) = default;
on_round_off::on_round_off(on_round_off&&) noexcept = default;
on_round_off& on_round_off::operator=(const on_round_off&) = default;
on_round_off& on_round_off::operator=(on_round_off&&) noexcept = default;
on_round_off::~on_round_off() = default;

cautionary::cautionary() = default;
cautionary::~cautionary() = default;

cautionary::cautionary(const cautionary& other) : listener_(other.listener_.load()) {}

cautionary& cautionary::operator=(const cautionary& other) {
  listener_.store(other.listener_.load());
  return *this;
}

void cautionary::fire_on_stop(std::wstring uuid) {
  if (on_round_off* const listener = listener_.load()) listener->on_run_off(std::move(uuid));
}

void cautionary::set_listener(on_round_off* listener) { listener_.store(listener); }

void cautionary::forget_listener(on_round_off* listener) noexcept {
  listener_.compare_exchange_strong(listener, nullptr);
}

template <class In, class Out>
async_callback<In, Out>::async_callback() = default;
template <class In, class Out>
async_callback<In, Out>::async_callback(const async_callback&) = default;
template <class In, class Out>
async_callback<In, Out>::async_callback(async_callback&&) noexcept = default;
template <class In, class Out>
async_callback<In, Out>& async_callback<In, Out>::operator=(const async_callback&) = default;
template <class In, class Out>
async_callback<In, Out>& async_callback<In, Out>::operator=(async_callback&&) noexcept = default;
template <class In, class Out>
async_callback<In, Out>::~async_callback() = default;

template <class In, class Progress, class Out>
issueable<In, Progress, Out>::issueable(callback_type* callback)
    : callback_(callback), uuid_(jobs::new_identifier()) {
  static_assert(std::is_same_v<Progress, Out>, "a callback knows one type of values");
}

template <class In, class Progress, class Out>
issueable<In, Progress, Out>::~issueable() {
  settle();
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::on_start() {
  if (callback_type* const to = callback_.load()) to->on_start();
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::on_progress(Progress* progress) {
  if (callback_type* const to = callback_.load()) to->on_progress(progress);
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::on_finish(Out* result) {
  try {
    if (callback_type* const to = callback_.load()) to->on_finish(result);
  } catch (...) {
    this->fire_on_stop(uuid_);
    open_.store(false);
    throw;
  }
  this->fire_on_stop(uuid_);
  open_.store(false);
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::on_cancel() {
  if (callback_type* const to = callback_.load()) to->on_cancel();
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::on_failure(const exception& error) {
  if (callback_type* const to = callback_.load()) to->on_failure(error);
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::start(const In& input) {
  this->on_start();
  detached_.store(false);
  // The copy is made here: the caller's input may be gone before the thread begins.
  worker_.start([this, kept = In(input)] {
    open_.store(true);
    if (!dying_.load()) this->work(kept);
    if (canceled_.load()) end_quietly();
  });
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::cancel() noexcept {
  canceled_.store(true);
  bool ended = false, unfinished = false;
  try {
    worker_.join();
    ended = !detached_.load();
    unfinished = ended && open_.load();
    worker_.notify([this] { this->on_cancel(); });
  } catch (...) {
    worker_.notify([this] { report(*this); });
  }
  if (unfinished && !worker_.joinable()) end_quietly();  // on_cancel() may have started it anew
}

template <class In, class Progress, class Out>
bool issueable<In, Progress, Out>::is_canceled() const noexcept {
  return canceled_.load();
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::silence() noexcept {
  callback_.store(nullptr);
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::set_callback(callback_type& callback) noexcept {
  callback_.store(&callback);
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::join() {
  worker_.join();
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::detach() {
  if (worker_.detach()) detached_.store(true);
}

template <class In, class Progress, class Out>
bool issueable<In, Progress, Out>::joinable() const {
  return worker_.joinable();
}

template <class In, class Progress, class Out>
std::thread::id issueable<In, Progress, Out>::get_id() const {
  return worker_.get_id();
}

template <class In, class Progress, class Out>
std::wstring issueable<In, Progress, Out>::get_uuid() const {
  return uuid_;
}

template <class In, class Progress, class Out>
bool issueable<In, Progress, Out>::operator==(const issueable& other) const noexcept {
  return uuid_ == other.uuid_;
}

template <class In, class Progress, class Out>
bool issueable<In, Progress, Out>::operator<(const issueable& other) const noexcept {
  return other.uuid_ < uuid_;
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::end_run() {
  if (!open_.load()) return;
  this->fire_on_stop(uuid_);
  open_.store(false);
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::settle() noexcept {
  dying_.store(true);
  if (worker_.joinable()) {
    canceled_.store(true);
    try {
      worker_.join();
      if (callback_type* const to = callback_.load()) worker_.notify([to] { to->on_cancel(); });
    } catch (...) {
      if (callback_type* const to = callback_.load()) worker_.notify([to] { report(*to); });
    }
  }
  if (!detached_.load()) end_quietly();
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::end_quietly() noexcept {
  try {
    end_run();
  } catch (...) {  // what the listener throws is dropped
  }
}

template <class In, class Progress, class Out>
void issueable<In, Progress, Out>::report(callback_type& to) noexcept {
  try {
    to.on_failure(detail::about(exc::ThreadException(), detail::in_flight));
  } catch (...) {  // nobody is left to report it to
  }
}

template class KESTA_TEMPLATE_DEF async_callback<xvar, xvar>;
template class KESTA_TEMPLATE_DEF async_callback<bundle, bundle>;
template class KESTA_TEMPLATE_DEF issueable<xvar, xvar, xvar>;
template class KESTA_TEMPLATE_DEF issueable<bundle, bundle, bundle>;

}  // namespace sync

}  // namespace ruvo
