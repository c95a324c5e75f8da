// SPDX-License-Identifier: BSL-1.0

// How the details of failures are made and added to texts.

#include "exc/detail.hpp"

#include <memory>
#include <new>
#include <stdexcept>

#include "base/numbers.hpp"
#include "base/utf.hpp"
#include "exc/classes.hpp"

namespace ruvo {

namespace {

using shared_text = std::shared_ptr<const std::wstring>;

std::wstring text_or_empty(const shared_text& text) { return text ? *text : std::wstring(); }

void replace(shared_text& text, const std::wstring& by) noexcept {
  try {
    text = std::make_shared<const std::wstring>(by);
  } catch (const std::bad_alloc&) {  // it is lost, nothing else is
  }
}

}  // namespace

namespace exc {

MissingElement::MissingElement(const char* what) : std::out_of_range(what) {}
MissingElement::MissingElement(const MissingElement& other) noexcept = default;
MissingElement& MissingElement::operator=(const MissingElement& other) noexcept = default;
MissingElement::~MissingElement() = default;
std::wstring MissingElement::get_detail() const { return text_or_empty(detail_); }
void MissingElement::set_detail(const std::wstring& detail) noexcept { replace(detail_, detail); }

NullValue::NullValue() noexcept = default;
NullValue::NullValue(const NullValue& other) noexcept = default;
NullValue& NullValue::operator=(const NullValue& other) noexcept = default;
NullValue::~NullValue() = default;
std::wstring NullValue::get_detail() const { return text_or_empty(detail_); }
void NullValue::set_detail(const std::wstring& detail) noexcept { replace(detail_, detail); }

}  // namespace exc

namespace detail {

namespace {
constexpr wchar_t null_value[] = L"valor nulo";
}

std::wstring quoted(std::wstring_view text) {
  constexpr std::size_t most = 200;
  std::wstring out(1, L'"');
  if (text.size() <= most) {
    out.append(text);
  } else {
    const bool between_surrogates = texto::is_low_surrogate(text[most]);
    out.append(text.substr(0, between_surrogates ? most - 1 : most)).push_back(L'\x2026');
  }
  out.push_back(L'"');
  return out;
}

std::wstring detail_of(const std::exception& error) {
  if (const auto* const own = dynamic_cast<const exception*>(&error)) return own->get_detail();
  if (const auto* const own = dynamic_cast<const exc::MissingElement*>(&error)) return own->get_detail();
  return {};
}

std::wstring detail_of(const std::exception_ptr& error) {
  if (!error) return {};
  try {
    std::rethrow_exception(error);
  } catch (const std::exception& held) {
    return detail_of(held);
  } catch (const exc::NullValue& held) {
    return with_detail(null_value, held.get_detail());
  } catch (...) {
    return {};
  }
}

void take_after(exception& failure, const std::exception& cause) noexcept {
  add_detail(failure, [&cause] { return detail_of(cause); });
  if (const auto* const own = dynamic_cast<const exception*>(&cause)) {
    error_class::set_position(failure, error_class::position(*own));
  }
}

void take_after(exception& failure, const std::exception_ptr& cause) noexcept {
  try {
    if (cause) std::rethrow_exception(cause);
  } catch (const std::exception& held) {
    take_after(failure, held);
  } catch (...) {
    add_detail(failure, [&cause] { return detail_of(cause); });
  }
}

std::wstring in_flight() {
  const std::exception_ptr error = std::current_exception();
  if (!error) return {};
  try {
    std::rethrow_exception(error);
  } catch (const exception& held) {
    return with_detail(held.get_mensaje(), held.get_detail());
  } catch (const std::exception& held) {
    const char* const what = held.what();
    return with_detail(texto::to_utf_16(std::string_view(what ? what : "")), detail_of(held));
  } catch (...) {
    return detail_of(error);
  }
}

std::wstring with_detail(std::wstring text, const std::wstring& detail) {
  if (text.find(detail) == text.npos) text.append(L" (").append(detail).push_back(L')');
  return text;
}

exc::MissingElement missing_key(std::wstring_view key) {
  return about(exc::MissingElement("invalid map<K, T> key"), [key] { return L"clave " + quoted(key); });
}

exc::MissingElement missing_index(unsigned long long index, unsigned long long size) {
  return about(exc::MissingElement("invalid vector subscript"), [index, size] {
    std::wstring text = L"índice ";
    texto::append_unsigned(text, index);
    text.append(L", elementos ");
    texto::append_unsigned(text, size);
    return text;
  });
}

exc::CalendarException not_in_calendar(const wchar_t* what, long long value) {
  return about(exc::CalendarException(), [=] {
    std::wstring text = what;
    text.push_back(L' ');
    texto::append_integer(text, value);
    return text;
  });
}

exc::NullValue no_entry(std::wstring_view path) {
  return about(exc::NullValue(), [path] { return L"ruta " + quoted(path); });
}

}  // namespace detail

}  // namespace ruvo
