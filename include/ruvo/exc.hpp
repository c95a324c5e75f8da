#pragma once

// ruvo::exc, the classes of errors. They differ in their constructors and in their type, which is what a
// catch clause selects on; codes and messages stand in <ruvo/exc_catalogue.hpp>.

#include <ruvo/exc_catalogue.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>

namespace ruvo::exc {

#define KESTA_EXC_CLASS(name, base, ...) \
  class KESTA_API name : public base {   \
   public:                               \
    __VA_ARGS__;                         \
    ~name() override;                    \
  };

// General errors

#define KESTA_EXC_DECLARE(name, code, message) KESTA_EXC_CLASS(name, ruvo::exception, name())
KESTA_EXC_GENERAL(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

/// Tells of an error that nobody handled.
class KESTA_API UnCatch : public ruvo::exception {
 public:
  explicit UnCatch(const std::exception* error);  ///< Its what(), read as UTF-8; null gives the default text.
  ~UnCatch() override;
};

class KESTA_API UnKnown : public ruvo::exception {
 public:
  explicit UnKnown(const std::exception* error);  ///< Its what(), read as UTF-8; null gives the default text.
  explicit UnKnown(const std::string& text);      ///< UTF-8; empty gives the default text.
  ~UnKnown() override;
};

class KESTA_API RunTime : public ruvo::exception {
 public:
  explicit RunTime(const std::wstring& text);  ///< Empty gives the default text.
  /// The default text, then the message of what the pointer holds, if it is a ruvo::exception or another
  /// std::exception. Never lets it escape.
  explicit RunTime(std::exception_ptr error);
  ~RunTime() override;
};

KESTA_EXC_CLASS(EmptyArgument, ruvo::exception, explicit EmptyArgument(const std::wstring& name))
KESTA_EXC_CLASS(BadArgument, ruvo::exception, explicit BadArgument(const std::wstring& name))

// Families. Their constructors take the number within the range and the message.

#define KESTA_EXC_FAMILY(name) \
  KESTA_EXC_CLASS(name, kesta::exception, name(unsigned long code, const std::wstring& message))
KESTA_EXC_FAMILY(FileException)
KESTA_EXC_FAMILY(SystemException)
KESTA_EXC_FAMILY(ZipException)
KESTA_EXC_FAMILY(StyleException)
KESTA_EXC_FAMILY(RenderException)
KESTA_EXC_FAMILY(InterfaceException)
KESTA_EXC_FAMILY(xmlException)
KESTA_EXC_FAMILY(dotnetException)
#undef KESTA_EXC_FAMILY

// These four, default-constructed, tell of a failure that is not known further: code 1 of their range.

#define KESTA_EXC_FAMILY(name)                             \
  class KESTA_API name : public kesta::exception {         \
   public:                                                 \
    name();                                                \
    name(unsigned long code, const std::wstring& message); \
    ~name() override;                                      \
  };
KESTA_EXC_FAMILY(CalendarException)
KESTA_EXC_FAMILY(ThreadException)
#undef KESTA_EXC_FAMILY

#define KESTA_EXC_FAMILY(name)                             \
  class KESTA_API name : public kesta::exception {         \
   public:                                                 \
    name();                                                \
    ~name() override;                                      \
                                                           \
   protected:                                              \
    name(unsigned long code, const std::wstring& message); \
  };
KESTA_EXC_FAMILY(JSONException)
KESTA_EXC_FAMILY(XMLException)
#undef KESTA_EXC_FAMILY

// Failures that Windows tells of. " (number: the system's text)" is appended to the message, not to the
// report.

#define KESTA_EXC_WINDOWS_FAMILY(name)    \
  KESTA_EXC_CLASS(name, kesta::exception, \
                  name(unsigned long code, const std::wstring& message, unsigned long windows_error))
KESTA_EXC_WINDOWS_FAMILY(winException)
KESTA_EXC_WINDOWS_FAMILY(winregistryException)
#undef KESTA_EXC_WINDOWS_FAMILY

// Leaves

#define KESTA_EXC_DECLARE(name, family, code, message) KESTA_EXC_CLASS(name, family, name())
KESTA_EXC_PLAIN(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code, message) \
  KESTA_EXC_CLASS(name, family, explicit name(const file& path))
KESTA_EXC_FILE(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code, before, after) \
  KESTA_EXC_CLASS(name, family, explicit name(const std::wstring& subject))
KESTA_EXC_NAMED(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

/// Positions count the characters read, knots the open nodes.
#define KESTA_EXC_DECLARE(name, family, code, message) \
  KESTA_EXC_CLASS(name, family, name(unsigned long long position, unsigned long long knot))
KESTA_EXC_KNOT(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

KESTA_EXC_CLASS(jsonBadFormated, JSONException, explicit jsonBadFormated(const unsigned long long& position))
KESTA_EXC_CLASS(systemErrorCode, SystemException, explicit systemErrorCode(unsigned long number))
/// The id is written in upper-case hexadecimal.
KESTA_EXC_CLASS(applicationAlreadyRegistered, SystemException,
                explicit applicationAlreadyRegistered(unsigned long thread_id))

#define KESTA_EXC_DECLARE(name, family, code) \
  KESTA_EXC_CLASS(name, family, explicit name(const std::wstring& message))
KESTA_EXC_MESSAGE(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code) \
  KESTA_EXC_CLASS(name, family, name(const std::wstring& message, unsigned long windows_error))
KESTA_EXC_WINDOWS(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

/// A call into managed code that failed. It may fail at two places, so the code is 2 or 3.
KESTA_EXC_CLASS(invocaError, dotnetException, invocaError(unsigned long code, const std::wstring& message))

KESTA_EXC_CLASS(actionNotFound, kesta::exception, explicit actionNotFound(std::wstring action))

#undef KESTA_EXC_CLASS

}  // namespace ruvo::exc
