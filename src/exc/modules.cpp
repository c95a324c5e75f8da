// SPDX-License-Identifier: BSL-1.0

// The errors of the library's own modules: the families, and what has a constructor of its own.

#include <ruvo/exc.hpp>

#include <cstddef>
#include <string>

#include "exc/classes.hpp"
#include "exc/detail.hpp"

namespace ruvo::exc {

using detail::decimal;
using detail::error_class;
using detail::filled;

namespace {

std::wstring in_hex(unsigned long number) {
  std::wstring digits;
  do digits.insert(digits.begin(), L"0123456789ABCDEF"[number & 15]);
  while (number >>= 4);
  return digits;
}

/// A long text without its middle.
std::wstring in_short(const std::wstring& text) {
  constexpr std::size_t most = 200;
  if (text.size() <= most) return text;
  return text.substr(0, most / 2) + L'…' + text.substr(text.size() - most / 2);
}

}  // namespace

// --- families

#define KESTA_EXC_FAMILY(name)                                \
  KESTA_EXC_ROW(name, family)                                 \
  name::name(unsigned long code, const std::wstring& message) \
      : kesta::exception(code, message, rows::name->range) {  \
    error_class::mark(*this, rows::name);                     \
  }                                                           \
  name::~name() = default;
KESTA_EXC_FAMILY(FileException)
KESTA_EXC_FAMILY(SystemException)
KESTA_EXC_FAMILY(CalendarException)
KESTA_EXC_FAMILY(ZipException)
KESTA_EXC_FAMILY(JSONException)
KESTA_EXC_FAMILY(XMLException)
KESTA_EXC_FAMILY(ThreadException)
KESTA_EXC_FAMILY(StyleException)
KESTA_EXC_FAMILY(RenderException)
KESTA_EXC_FAMILY(InterfaceException)
KESTA_EXC_FAMILY(xmlException)
KESTA_EXC_FAMILY(dotnetException)
KESTA_EXC_FAMILY(DecimalException)
#undef KESTA_EXC_FAMILY

#define KESTA_EXC_DEFINE(name) \
  name::name() : name(rows::name->number, std::wstring(rows::name->text)) {}
KESTA_EXC_DEFINE(CalendarException)
KESTA_EXC_DEFINE(JSONException)
KESTA_EXC_DEFINE(XMLException)
KESTA_EXC_DEFINE(ThreadException)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_WINDOWS_FAMILY(name)                                                     \
  KESTA_EXC_ROW(name, family)                                                              \
  name::name(unsigned long code, const std::wstring& message, unsigned long windows_error) \
      : kesta::exception(code, message, rows::name->range) {                               \
    error_class::mark(*this, rows::name);                                                  \
    const std::wstring system_text = winerror_message(windows_error);                      \
    append_to_mensaje(filled(L" (%1: %2)", {decimal(windows_error), system_text}));        \
    set_detail(system_text);                                                               \
  }                                                                                        \
  name::~name() = default;
KESTA_EXC_WINDOWS_FAMILY(winregistryException)
KESTA_EXC_WINDOWS_FAMILY(winException)
#undef KESTA_EXC_WINDOWS_FAMILY

// --- constructors of their own

KESTA_EXC_ROW(systemErrorCode, own)
systemErrorCode::systemErrorCode(unsigned long number)
    : SystemException(rows::systemErrorCode->number, filled(rows::systemErrorCode->text, {decimal(number)})) {
  error_class::mark(*this, rows::systemErrorCode);
  detail::add_detail(*this, [number] { return winerror_message(number); });
}
systemErrorCode::~systemErrorCode() = default;

KESTA_EXC_ROW(applicationAlreadyRegistered, own)
applicationAlreadyRegistered::applicationAlreadyRegistered(unsigned long thread_id)
    : SystemException(rows::applicationAlreadyRegistered->number,
                      filled(rows::applicationAlreadyRegistered->text, {in_hex(thread_id)})) {
  error_class::mark(*this, rows::applicationAlreadyRegistered);
}
applicationAlreadyRegistered::~applicationAlreadyRegistered() = default;

KESTA_EXC_ROW(jsonBadFormated, own)
jsonBadFormated::jsonBadFormated(const unsigned long long& position)
    : JSONException(rows::jsonBadFormated->number, filled(rows::jsonBadFormated->text, {decimal(position)})) {
  error_class::mark(*this, rows::jsonBadFormated);
  error_class::set_position(*this, position);
}
jsonBadFormated::~jsonBadFormated() = default;

/// A position in a text, and what else the message says.
#define KESTA_EXC_AT(name, base)                                                  \
  KESTA_EXC_ROW(name, own)                                                        \
  name::name(unsigned long long position)                                         \
      : base(rows::name->number, filled(rows::name->text, {decimal(position)})) { \
    error_class::mark(*this, rows::name);                                         \
    error_class::set_position(*this, position);                                   \
  }                                                                               \
  name::~name() = default;
#define KESTA_EXC_ABOUT(name, base)                                                                  \
  KESTA_EXC_ROW(name, own)                                                                           \
  name::name(unsigned long long position, const std::wstring& subject)                               \
      : base(rows::name->number, filled(rows::name->text, {decimal(position), in_short(subject)})) { \
    error_class::mark(*this, rows::name);                                                            \
    error_class::set_position(*this, position);                                                      \
    set_detail(subject);                                                                             \
  }                                                                                                  \
  name::~name() = default;
KESTA_EXC_ABOUT(jsonTwinName, JSONException)
KESTA_EXC_ABOUT(jsonBeyondLimit, JSONException)
KESTA_EXC_ABOUT(xmlBeyondLimit, XMLException)
KESTA_EXC_AT(jsonBadNumber, JSONException)
KESTA_EXC_AT(jsonWrongRoot, JSONException)
KESTA_EXC_AT(jsonBadEncoding, JSONException)
KESTA_EXC_AT(jsonBadPointer, JSONException)
KESTA_EXC_AT(decimalBadText, DecimalException)
#undef KESTA_EXC_ABOUT
#undef KESTA_EXC_AT

/// Something that cannot be used, and why.
#define KESTA_EXC_REASON(name, base)                                                      \
  KESTA_EXC_ROW(name, own)                                                                \
  name::name(const std::wstring& subject, const std::wstring& reason)                     \
      : base(rows::name->number, filled(rows::name->text, {in_short(subject), reason})) { \
    error_class::mark(*this, rows::name);                                                 \
    set_detail(subject);                                                                  \
  }                                                                                       \
  name::~name() = default;
KESTA_EXC_REASON(fileUnsafePath, FileException)
KESTA_EXC_REASON(jsonUnwritable, JSONException)
KESTA_EXC_REASON(jsonNoPlace, JSONException)
#undef KESTA_EXC_REASON

KESTA_EXC_ROW(invocaError, own)
invocaError::invocaError(unsigned long code, const std::wstring& message) : dotnetException(code, message) {
  error_class::mark(*this, rows::invocaError);
}
invocaError::~invocaError() = default;

KESTA_EXC_ROW(actionNotFound, own)
actionNotFound::actionNotFound(std::wstring action)
    : kesta::exception(rows::actionNotFound->number, filled(rows::actionNotFound->text, {action}),
                       rows::actionNotFound->range) {
  error_class::mark(*this, rows::actionNotFound);
  set_detail(action);
}
actionNotFound::~actionNotFound() = default;

}  // namespace ruvo::exc
