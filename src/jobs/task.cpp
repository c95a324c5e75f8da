// SPDX-License-Identifier: BSL-1.0

// The bases of tasks: progress and result.

#include <ruvo/exc.hpp>
#include <ruvo/task.hpp>

namespace ruvo::task {

namespace {

/// Assignment alone would keep the qualities of the value before.
void copy(xvar& to, const xvar& from) {
  to.clear();
  to = from;
}

}  // namespace

async::async(ilistener* listener) : issueable(listener) {}
async::~async() { settle(); }

void async::set_progress(xvar& value) {
  copy(progress_, value);
  on_progress(&progress_);
}

void async::set_mensaje(xvar& value) {
  copy(mensaje_, value);
  on_finish(&mensaje_);
}

bool async::advance(const xvar& value) {
  if (is_canceled()) return false;
  copy(progress_, value);
  on_progress(&progress_);
  return true;
}

void async::advance_or_throw(const xvar& value) {
  if (!advance(value)) throw exc::ProcessCanceled();
}

bundle::bundle(ibunlistener* listener) : issueable(listener) {}
bundle::~bundle() { settle(); }

void bundle::set_progress(ruvo::bundle& value) {
  progress_ = value;
  on_progress(&progress_);
}

void bundle::set_mensaje(ruvo::bundle& value) {
  mensaje_ = value;
  on_finish(&mensaje_);
}

bool bundle::advance(const ruvo::bundle& value) {
  if (is_canceled()) return false;
  progress_ = value;
  on_progress(&progress_);
  return true;
}

void bundle::advance_or_throw(const ruvo::bundle& value) {
  if (!advance(value)) throw exc::ProcessCanceled();
}

}  // namespace ruvo::task
