// The general errors: facility 3000, range 0.

#include <ruvo/exc.hpp>

#include <exception>
#include <string_view>

#include "base/utf.hpp"
#include "exc/classes.hpp"
#include "exc/detail.hpp"

namespace ruvo {

namespace {

constexpr unsigned long general_facility = 3000;

struct row {
  unsigned long code;
  const wchar_t* message;
};

namespace rows {
#define KESTA_EXC_ROW(name, code, message) constexpr row name{code, message};
KESTA_EXC_GENERAL_TOLD(KESTA_EXC_ROW)
#undef KESTA_EXC_ROW
}  // namespace rows

std::wstring text_of(const std::exception* error, const row& otherwise) {
  if (!error) return otherwise.message;
  const char* const text = error->what();
  return text ? texto::to_utf_16(std::string_view(text)) : std::wstring();
}

std::wstring text_of(std::exception_ptr error) {
  std::wstring text = std::wstring(rows::RunTime.message) + L": ";
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

exception exception::correct() { return exc::OkResult(); }

exception exception::incorrect() {
  return exception(rows::Incorrect.message, rows::Incorrect.code, 0, general_facility);
}

namespace exc {

#define KESTA_EXC_DEFINE(name, code, message)                                                  \
  name::name() : ruvo::exception(message, code, 0, general_facility) { KESTA_EXC_MARK(name); } \
  name::~name() = default;
KESTA_EXC_GENERAL(KESTA_EXC_DEFINE)
#undef KESTA_EXC_DEFINE

UnCatch::UnCatch(const std::exception* error)
    : ruvo::exception(text_of(error, rows::UnCatch), rows::UnCatch.code, 0, general_facility) {
  KESTA_EXC_MARK(UnCatch);
  if (error) detail::add_detail(*this, [error] { return detail::detail_of(*error); });
}
UnCatch::~UnCatch() = default;

UnKnown::UnKnown(const std::exception* error)
    : ruvo::exception(text_of(error, rows::UnKnown), rows::UnKnown.code, 0, general_facility) {
  KESTA_EXC_MARK(UnKnown);
  if (error) detail::add_detail(*this, [error] { return detail::detail_of(*error); });
}
UnKnown::UnKnown(const std::string& text)
    : ruvo::exception(text.empty() ? rows::UnKnown.message : texto::to_utf_16(std::string_view(text)),
                      rows::UnKnown.code, 0, general_facility) {
  KESTA_EXC_MARK(UnKnown);
}
UnKnown::~UnKnown() = default;

RunTime::RunTime(const std::wstring& text)
    : ruvo::exception(text.empty() ? rows::RunTime.message : text, rows::RunTime.code, 0, general_facility) {
  KESTA_EXC_MARK(RunTime);
}
RunTime::RunTime(std::exception_ptr error)
    : ruvo::exception(text_of(error), rows::RunTime.code, 0, general_facility) {
  KESTA_EXC_MARK(RunTime);
  detail::add_detail(*this, [&error] { return detail::detail_of(error); });
}
RunTime::~RunTime() = default;

EmptyArgument::EmptyArgument(const std::wstring& name)
    : ruvo::exception(rows::EmptyArgument.message + name, rows::EmptyArgument.code, 0, general_facility) {
  KESTA_EXC_MARK(EmptyArgument);
  set_detail(name);
}
EmptyArgument::~EmptyArgument() = default;

BadArgument::BadArgument(const std::wstring& name)
    : ruvo::exception(rows::BadArgument.message + name, rows::BadArgument.code, 0, general_facility) {
  KESTA_EXC_MARK(BadArgument);
  set_detail(name);
}
BadArgument::~BadArgument() = default;

}  // namespace exc

}  // namespace ruvo
