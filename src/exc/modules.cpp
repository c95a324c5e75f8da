// The errors of the library's own modules: facility 3001.

#include <ruvo/exc.hpp>
#include <ruvo/file.hpp>

#include <string>
#include <string_view>

#include "base/numbers.hpp"
#include "exc/classes.hpp"
#include "exc/detail.hpp"

namespace ruvo::exc {

namespace {

namespace ranges {
#define KESTA_EXC_RANGE(name, range) constexpr unsigned long name = range;
KESTA_EXC_FAMILIES(KESTA_EXC_RANGE)
#undef KESTA_EXC_RANGE
}  // namespace ranges

std::wstring numbered(std::wstring text, unsigned long long number) {
  texto::append_unsigned(text, number);
  return text;
}

std::wstring in_hex(unsigned long number) {
  std::wstring digits;
  do digits.insert(digits.begin(), L"0123456789ABCDEF"[number & 15]);
  while (number >>= 4);
  return digits;
}

std::wstring at_knot(std::wstring_view message, unsigned long long position, unsigned long long knot) {
  std::wstring text;
  text.reserve(message.size() + 56);  // two numbers of 20 digits and what stands between
  text.append(message).push_back(L':');
  texto::append_unsigned(text, position);
  text.append(L" en el nudo:");
  texto::append_unsigned(text, knot);
  return text;
}

}  // namespace

// Families

#define KESTA_EXC_FAMILY(name)                                \
  name::name(unsigned long code, const std::wstring& message) \
      : kesta::exception(code, message, ranges::name) {       \
    KESTA_EXC_MARK(name);                                     \
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
#undef KESTA_EXC_FAMILY

#define KESTA_EXC_DEFINE(name, message) \
  name::name() : name(1, message) {}
KESTA_EXC_UNDETERMINED(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_WINDOWS_FAMILY(name)                                                                  \
  name::name(unsigned long code, const std::wstring& message, unsigned long windows_error)              \
      : kesta::exception(code, message, ranges::name) {                                                 \
    KESTA_EXC_MARK(name);                                                                               \
    append_to_mensaje(numbered(L" (", windows_error) + L": " + winerror_message(windows_error) + L")"); \
    detail::add_detail(*this, [&] { return winerror_message(windows_error); });                         \
  }                                                                                                     \
  name::~name() = default;
KESTA_EXC_WINDOWS_FAMILY(winException)
KESTA_EXC_WINDOWS_FAMILY(winregistryException)
#undef KESTA_EXC_WINDOWS_FAMILY

// Leaves

#define KESTA_EXC_DEFINE(name, family, code, message)            \
  name::name() : family(code, message) { KESTA_EXC_MARK(name); } \
  name::~name() = default;
KESTA_EXC_PLAIN(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_DEFINE(name, family, code, message)                         \
  name::name(const file& path) : family(code, message + std::wstring(path)) { \
    KESTA_EXC_MARK(name);                                                     \
    set_detail(path);                                                         \
  }                                                                           \
  name::~name() = default;
KESTA_EXC_FILE(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_DEFINE(name, family, code, before, after)                          \
  name::name(const std::wstring& subject) : family(code, before + subject + after) { \
    KESTA_EXC_MARK(name);                                                            \
    set_detail(subject);                                                             \
  }                                                                                  \
  name::~name() = default;
KESTA_EXC_NAMED(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_DEFINE(name, family, code, message)              \
  name::name(unsigned long long position, unsigned long long knot) \
      : family(code, at_knot(message, position, knot)) {           \
    KESTA_EXC_MARK(name);                                          \
  }                                                                \
  name::~name() = default;
KESTA_EXC_KNOT(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_DEFINE(name, family, code)                                                \
  name::name(const std::wstring& message) : family(code, message) { KESTA_EXC_MARK(name); } \
  name::~name() = default;
KESTA_EXC_MESSAGE(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

#define KESTA_EXC_DEFINE(name, family, code)                           \
  name::name(const std::wstring& message, unsigned long windows_error) \
      : family(code, message, windows_error) {                         \
    KESTA_EXC_MARK(name);                                              \
  }                                                                    \
  name::~name() = default;
KESTA_EXC_WINDOWS(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

namespace {

struct row {
  unsigned long code;
  const wchar_t* message;
};

namespace rows {
#define KESTA_EXC_ROW(name, family, code, message) constexpr row name{code, message};
KESTA_EXC_NUMBERED(KESTA_EXC_ROW)
#undef KESTA_EXC_ROW
}  // namespace rows

}  // namespace

systemErrorCode::systemErrorCode(unsigned long number)
    : SystemException(rows::systemErrorCode.code, numbered(rows::systemErrorCode.message, number)) {
  KESTA_EXC_MARK(systemErrorCode);
  detail::add_detail(*this, [number] { return winerror_message(number); });
}
systemErrorCode::~systemErrorCode() = default;

applicationAlreadyRegistered::applicationAlreadyRegistered(unsigned long thread_id)
    : SystemException(rows::applicationAlreadyRegistered.code,
                      rows::applicationAlreadyRegistered.message + in_hex(thread_id)) {
  KESTA_EXC_MARK(applicationAlreadyRegistered);
}
applicationAlreadyRegistered::~applicationAlreadyRegistered() = default;

jsonBadFormated::jsonBadFormated(const unsigned long long& position)
    : JSONException(rows::jsonBadFormated.code, numbered(rows::jsonBadFormated.message, position)) {
  KESTA_EXC_MARK(jsonBadFormated);
}
jsonBadFormated::~jsonBadFormated() = default;

invocaError::invocaError(unsigned long code, const std::wstring& message) : dotnetException(code, message) {
  KESTA_EXC_MARK(invocaError);
}
invocaError::~invocaError() = default;

#define KESTA_EXC_DEFINE(name, range, code, message)                                  \
  name::name(std::wstring action) : kesta::exception(code, message + action, range) { \
    KESTA_EXC_MARK(name);                                                             \
    set_detail(action);                                                               \
  }                                                                                   \
  name::~name() = default;
KESTA_EXC_ACTION(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

}  // namespace ruvo::exc
