// SPDX-License-Identifier: BSL-1.0

// The console of a program: opened with the first text, closed with the object.

#include "system/console.hpp"

#include <ruvo/console.hpp>
#include <ruvo/exc.hpp>
#include <ruvo/exc_table.hpp>

#include <mutex>

#include "system/errors.hpp"

namespace ruvo {

namespace {

exc::SystemException no_console() {
  constexpr const detail::error_row* row = detail::row_of(L"SystemException", detail::error_shape::place);
  return {row->number, std::wstring(row->text)};
}

}  // namespace

struct console::state {
  std::mutex guard;
};

console::console() : state_(std::make_unique<state>()) {}
console::~console() { close(); }

bool console::open(exception& err) {
  if (platform::open_console()) return true;
  no_console().copy_on(err);
  return false;
}

void console::write(const std::wstring& text) {
  const std::lock_guard lock(state_->guard);
  if (!platform::open_console()) throw no_console();
  if (!platform::write_console(text)) throw exc::systemErrorCode(platform::last_error());
}

void console::write_line(const std::wstring& text) { write(text + L"\r\n"); }
bool console::is_terminal() const noexcept { return platform::is_terminal(); }
void console::close() noexcept { platform::close_console(); }

}  // namespace ruvo
