// SPDX-License-Identifier: BSL-1.0

// The static face of the application's logger.

#include <ruvo/application.hpp>

#include <exception>

#include "app/lost_entries.hpp"
#include "base/quietly.hpp"

namespace ruvo {

void log::assertion(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().assertion(first, second); });
}
void log::assertion(const std::wstring& first, const std::exception& error) noexcept {
  quietly([&] { application::traza().assertion(first, error); });
}
void log::assertion(const std::wstring& first, const std::exception_ptr& error) noexcept {
  quietly([&] { application::traza().assertion(first, error); });
}
void log::failure(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().failure(first, second); });
}
void log::failure(const std::wstring& first, const std::exception& error) noexcept {
  quietly([&] { application::traza().failure(first, error); });
}
void log::warning(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().warning(first, second); });
}
void log::warning(const std::wstring& first, const std::exception& error) noexcept {
  quietly([&] { application::traza().warning(first, error); });
}
void log::info(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().info(first, second); });
}
void log::debug(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().debug(first, second); });
}
void log::sql(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().sql(first, second); });
}
void log::verbose(const std::wstring& first, const std::wstring& second) noexcept {
  quietly([&] { application::traza().verbose(first, second); });
}
void log::set_level(long level) noexcept {
  quietly([&] { application::traza().setLevel(level); });
}
long log::get_level() noexcept {
  long level = logger::default_level;
  quietly([&] { level = application::traza().get_level(); });
  return level;
}
void log::set_callback(IOnLog* callback) noexcept {
  quietly([&] { application::traza().set_callback(callback); });
}
void log::flush() noexcept {
  quietly([&] { application::traza().flush(); });
}
double log::time(const std::wstring& text) noexcept {
  double milliseconds = 0;
  quietly([&] { milliseconds = application::traza().time(text); });
  return milliseconds;
}
unsigned long long log::get_lost() noexcept { return reg::lost_entries(); }

}  // namespace ruvo
