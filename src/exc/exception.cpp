// SPDX-License-Identifier: BSL-1.0

// The one type of errors: its code, its message and its report.

#include <ruvo/exception.hpp>

#include <charconv>
#include <new>
#include <ostream>
#include <string_view>
#include <utility>

#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "exc/classes.hpp"
#include "system/errors.hpp"

namespace ruvo {

namespace {

constexpr std::uint32_t success = 0xEBB80000;

void add_line(std::string& report, std::string_view label, unsigned long value) {
  char digits[16];
  const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
  report.append(label).append(": ").append(digits, end).append("\r\n");
}

std::string report_of(const exception& error, std::string_view mensaje) {
  std::string report;
  report.reserve(80 + mensaje.size());
  add_line(report, "CODE", error.get_code());
  add_line(report, "RANGE", error.get_rango());
  add_line(report, "FACILITY", error.get_facility());
  add_line(report, "CUSTOMER", error.get_customer());
  add_line(report, "SEVERITY", error.get_severity());
  report.append("MESSAGE: ").append(mensaje).append("\r\n");
  return report;
}

}  // namespace

struct exception::texts {
  std::string mensaje;
  std::string report;
  std::wstring detail;
  std::uint64_t position = 0;
};

std::uint64_t detail::error_class::position(const exception& error) noexcept {
  return error.texts_->position;
}
void detail::error_class::set_position(exception& error, std::uint64_t position) noexcept {
  error.texts_->position = position;
}

exception::exception() : code_(success) {
  static const std::shared_ptr<texts> ok = exception(success, L"OK").texts_;
  texts_ = ok;
}

exception::exception(const std::wstring& mensaje, unsigned long code, unsigned long rango,
                     unsigned long facility)
    : exception(detail::raw_code(facility, rango, code), mensaje) {}

exception::exception(unsigned long raw, const std::wstring& mensaje)
    : code_(static_cast<std::uint32_t>(raw)) {
  std::string text = texto::to_utf_8(std::wstring_view(mensaje));
  std::string report = report_of(*this, text);
  texts_ = std::make_shared<texts>(texts{std::move(text), std::move(report), {}, 0});
}

exception::exception(const exception& other) noexcept = default;
exception& exception::operator=(const exception& other) noexcept = default;
exception::~exception() = default;

const char* exception::what() const noexcept { return texts_->report.c_str(); }

std::wstring exception::get_mensaje() const { return texto::to_utf_16(std::string_view(texts_->mensaje)); }
exception::operator std::wstring() const { return texto::to_utf_16(std::string_view(texts_->report)); }

std::wstring exception::get_detail() const {
  const bool of_the_system = code_ != 0 && !get_customer();
  return texts_->detail.empty() && of_the_system ? winerror_message(code_) : texts_->detail;
}

void exception::set_detail(const std::wstring& detail) noexcept {
  try {
    const auto changed = std::make_shared<texts>(*texts_);
    changed->detail = detail;
    texts_ = changed;
  } catch (const std::bad_alloc&) {  // the message says enough
  }
}

void exception::copy_on(exception* target) const noexcept {
  if (target) *target = *this;
}
void exception::copy_on(exception& target) const noexcept { target = *this; }

void exception::clear() { *this = exception(); }

void exception::set_mensaje(std::wstring mensaje) {
  const auto changed = std::make_shared<texts>(*texts_);
  changed->mensaje = texto::to_utf_8(std::wstring_view(mensaje));
  texts_ = changed;
}

void exception::append_to_mensaje(std::wstring tail) {
  const auto changed = std::make_shared<texts>(*texts_);
  texto::append_utf_8(changed->mensaje, tail);
  texts_ = changed;
}

void exception::copy_what() {
  const auto changed = std::make_shared<texts>(*texts_);
  changed->report = report_of(*this, texts_->mensaje);
  texts_ = changed;
}

std::wstring exception::winerror_message(unsigned long number) {
  const std::wstring text = platform::system_message(number);
  return std::wstring(texto::trimmed(text));
}

std::wostream& operator<<(std::wostream& out, const exception& error) { return out << std::wstring(error); }

namespace kesta {

exception::exception(unsigned long code, const std::wstring& mensaje, unsigned long rango)
    : ruvo::exception(mensaje, code, rango, detail::module_facility) {}
exception::exception(const exception& other) noexcept = default;
exception& exception::operator=(const exception& other) noexcept = default;
exception::~exception() = default;

}  // namespace kesta

}  // namespace ruvo
