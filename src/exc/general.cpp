// SPDX-License-Identifier: BSL-1.0

// The general errors that have a constructor of their own.

#include <ruvo/exc.hpp>

#include <exception>
#include <string>
#include <string_view>

#include "base/utf.hpp"
#include "exc/classes.hpp"
#include "exc/detail.hpp"

namespace ruvo {

using detail::error_class;
using detail::error_row;

KESTA_EXC_ROW(Incorrect, place)

exception exception::correct() { return exc::OkResult(); }

exception exception::incorrect() { return {rows::Incorrect->code(), std::wstring(rows::Incorrect->text)}; }

namespace exc {

KESTA_EXC_ROW(UnCatch, own)
KESTA_EXC_ROW(UnKnown, own)
KESTA_EXC_ROW(RunTime, own)

namespace {

std::wstring text_or(std::wstring text, const error_row* otherwise) {
  return text.empty() ? std::wstring(otherwise->text) : text;
}

std::wstring text_of(const std::exception* error, const error_row* otherwise) {
  if (!error) return std::wstring(otherwise->text);
  const char* const text = error->what();
  return text ? texto::to_utf_16(std::string_view(text)) : std::wstring();
}

std::wstring text_of(std::exception_ptr error) {
  std::wstring text = std::wstring(rows::RunTime->text) + L": ";
  if (!error) return text;
  try {
    std::rethrow_exception(error);
  } catch (const exception& held) {
    text += held.get_mensaje();
  } catch (const std::exception& held) {
    text += text_of(&held, rows::RunTime);
  } catch (...) {
    // Nothing is known of it.
  }
  return text;
}

}  // namespace

UnCatch::UnCatch(const std::exception* error)
    : ruvo::exception(rows::UnCatch->code(), text_of(error, rows::UnCatch)) {
  error_class::mark(*this, rows::UnCatch);
  if (error) detail::take_after(*this, *error);
}
UnCatch::~UnCatch() = default;

UnKnown::UnKnown(const std::exception* error)
    : ruvo::exception(rows::UnKnown->code(), text_of(error, rows::UnKnown)) {
  error_class::mark(*this, rows::UnKnown);
  if (error) detail::take_after(*this, *error);
}
UnKnown::UnKnown(const std::string& text)
    : ruvo::exception(rows::UnKnown->code(),
                      text_or(texto::to_utf_16(std::string_view(text)), rows::UnKnown)) {
  error_class::mark(*this, rows::UnKnown);
}
UnKnown::~UnKnown() = default;

RunTime::RunTime(const std::wstring& text)
    : ruvo::exception(rows::RunTime->code(), text_or(text, rows::RunTime)) {
  error_class::mark(*this, rows::RunTime);
}
RunTime::RunTime(std::exception_ptr error) : ruvo::exception(rows::RunTime->code(), text_of(error)) {
  error_class::mark(*this, rows::RunTime);
  detail::take_after(*this, error);
}
RunTime::~RunTime() = default;

}  // namespace exc

}  // namespace ruvo
