#pragma once

// ruvo::exc, the classes of errors. Codes and messages stand in <ruvo/exc_catalogue.hpp>, from which most of
// the classes are made; in the reference each of those shows its own.

#include <ruvo/exc_catalogue.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>

#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

/// The classes of errors. They differ in their constructors and in their type, which is what a catch clause
/// selects on.
/// @quirk Some numbers stand for two classes (jsonEmptyKey and jsonFalseKnot, BadCastInterface and
/// UnLoadModule, getObjectException and getObjectTypeException, actionNotFound and xmlLoadException): callers
/// tell them apart by type, and exception::raise() gives a copy its type again.
/// @quirk The messages of jsonUnKnowValue ("carcter") and of a hook without an override ("apllicación") are
/// spelled so, and those of xmlBadFormated and xmlCachePointer are the same.
namespace ruvo::exc {

#define KESTA_EXC_CLASS(name, base, ...) \
  class KESTA_API name : public base {   \
   public:                               \
    __VA_ARGS__;                         \
    ~name() override;                    \
  };

// General errors

#define KESTA_EXC_DECLARE(name, code, message) KESTA_EXC_CLASS(name, ruvo::exception, name())
/// A general error, range 0.
KESTA_EXC_GENERAL(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

/// An error that nobody handled. Range 0, number 5.
class KESTA_API UnCatch : public ruvo::exception {
 public:
  /// Its what(), read as UTF-8: a null one gives an empty message, a null pointer the default text.
  explicit UnCatch(const std::exception* error);
  ~UnCatch() override;
};

/// An error of which nothing is known but a text. Range 0, number 6.
class KESTA_API UnKnown : public ruvo::exception {
 public:
  /// Its what(), read as UTF-8: a null one gives an empty message, a null pointer the default text.
  explicit UnKnown(const std::exception* error);
  explicit UnKnown(const std::string& text);  ///< UTF-8; empty gives the default text.
  ~UnKnown() override;
};

/// An error while the program runs, of another library too. Range 0, number 12.
class KESTA_API RunTime : public ruvo::exception {
 public:
  explicit RunTime(const std::wstring& text);  ///< Empty gives the default text.
  /// The default text, then the message of what the pointer holds, if it is a ruvo::exception or another
  /// std::exception. Never lets it escape.
  explicit RunTime(std::exception_ptr error);
  ~RunTime() override;
};

/// A general error, range 0. The name of the argument follows the message.
KESTA_EXC_CLASS(EmptyArgument, ruvo::exception, explicit EmptyArgument(const std::wstring& name))
KESTA_EXC_CLASS(BadArgument, ruvo::exception, explicit BadArgument(const std::wstring& name))

// Families

#define KESTA_EXC_FAMILY(name) \
  KESTA_EXC_CLASS(name, kesta::exception, name(unsigned long code, const std::wstring& message))
/// The errors of range 1, files and folders, made of the number within it and the message.
KESTA_EXC_FAMILY(FileException)

/// The errors of range 2, the system and the account, made of the number within it and the message.
KESTA_EXC_FAMILY(SystemException)

/// The errors of range 5, compressed archives, made of the number within it and the message.
KESTA_EXC_FAMILY(ZipException)

/// The errors of range 9, styles, made of the number within it and the message.
KESTA_EXC_FAMILY(StyleException)

/// The errors of range 10, drawing, made of the number within it and the message.
KESTA_EXC_FAMILY(RenderException)

/// The errors of range 11, modules that are loaded by name, made of the number within it and the message.
KESTA_EXC_FAMILY(InterfaceException)

/// The errors of range 13, XML documents of others, made of the number within it and the message.
KESTA_EXC_FAMILY(xmlException)

/// The errors of range 14, managed code, made of the number within it and the message.
KESTA_EXC_FAMILY(dotnetException)
#undef KESTA_EXC_FAMILY

#define KESTA_EXC_FAMILY(name)                             \
  class KESTA_API name : public kesta::exception {         \
   public:                                                 \
    name();                                                \
    name(unsigned long code, const std::wstring& message); \
    ~name() override;                                      \
  };
/// The errors of range 3, dates and times, made of the number within it and the message,
/// or of nothing: a failure that is not known further, number 1.
KESTA_EXC_FAMILY(CalendarException)

/// The errors of range 8, tasks and threads, made of the number within it and the message,
/// or of nothing: a failure that is not known further, number 1.
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
/// The errors of range 6, reading JSON, made of the number within it and the message,
/// or of nothing: a failure that is not known further, number 1.
KESTA_EXC_FAMILY(JSONException)

/// The errors of range 7, reading XML, made of the number within it and the message,
/// or of nothing: a failure that is not known further, number 1.
KESTA_EXC_FAMILY(XMLException)
#undef KESTA_EXC_FAMILY

#define KESTA_EXC_WINDOWS_FAMILY(name)    \
  KESTA_EXC_CLASS(name, kesta::exception, \
                  name(unsigned long code, const std::wstring& message, unsigned long windows_error))
/// The errors of range 12, calls of Windows, made of the number within it, the message and the number that
/// Windows tells. " (number: the system's text)" is appended to the message, not to the report.
KESTA_EXC_WINDOWS_FAMILY(winException)

/// The errors of range 4, the registry of Windows, made of the number within it, the message and the number
/// that Windows tells. " (number: the system's text)" is appended to the message, not to the report.
KESTA_EXC_WINDOWS_FAMILY(winregistryException)
#undef KESTA_EXC_WINDOWS_FAMILY

// Leaves

#define KESTA_EXC_DECLARE(name, family, code, message) KESTA_EXC_CLASS(name, family, name())
/// An error of its family, with one message.
KESTA_EXC_PLAIN(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code, message) \
  KESTA_EXC_CLASS(name, family, explicit name(const file& path))
/// An error of a path, which follows the message.
KESTA_EXC_FILE(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code, before, after) \
  KESTA_EXC_CLASS(name, family, explicit name(const std::wstring& subject))
/// An error of something that has a name, which stands in the message.
KESTA_EXC_NAMED(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code, message) \
  KESTA_EXC_CLASS(name, family, name(unsigned long long position, unsigned long long knot))
/// A text that cannot be read. The position, in characters read, and the knot, the number of open nodes,
/// follow the message.
KESTA_EXC_KNOT(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

/// A text that cannot be read. The position, in characters read, follows the message.
KESTA_EXC_CLASS(jsonBadFormated, JSONException, explicit jsonBadFormated(const unsigned long long& position))

/// A failure of the system. Its number follows the message.
KESTA_EXC_CLASS(systemErrorCode, SystemException, explicit systemErrorCode(unsigned long number))

/// A thread that has an application already. Its id follows the message, in upper-case hexadecimal.
KESTA_EXC_CLASS(applicationAlreadyRegistered, SystemException,
                explicit applicationAlreadyRegistered(unsigned long thread_id))

#define KESTA_EXC_DECLARE(name, family, code) \
  KESTA_EXC_CLASS(name, family, explicit name(const std::wstring& message))
/// An error of its family, with the message of who throws it.
KESTA_EXC_MESSAGE(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

#define KESTA_EXC_DECLARE(name, family, code) \
  KESTA_EXC_CLASS(name, family, name(const std::wstring& message, unsigned long windows_error))
/// An error of its family, with the message of who throws it and the number that Windows tells.
KESTA_EXC_WINDOWS(KESTA_EXC_DECLARE)
#undef KESTA_EXC_DECLARE

/// A call into managed code that failed. The number within the range is 2 or 3, by the place that failed.
KESTA_EXC_CLASS(invocaError, dotnetException, invocaError(unsigned long code, const std::wstring& message))

/// An action that does not exist. Its name follows the message.
KESTA_EXC_CLASS(actionNotFound, kesta::exception, explicit actionNotFound(std::wstring action))

#undef KESTA_EXC_CLASS

// Failures that are those of the language, and say what they are about

/// A key, an index or a name that is not there, as a std::out_of_range. Its what() says what kind of thing
/// was looked for ("invalid map<K, T> key", "invalid vector subscript"), the detail which.
class KESTA_API MissingElement : public std::out_of_range {
 public:
  /// With this what(), which is copied, and without a detail.
  explicit MissingElement(const char* what);
  MissingElement(const MissingElement& other) noexcept;
  MissingElement& operator=(const MissingElement& other) noexcept;
  ~MissingElement() override;

  /// The key, or the index and the number of elements.
  std::wstring get_detail() const;
  /// Lack of memory leaves the detail as it was.
  void set_detail(const std::wstring& detail) noexcept;

 private:
  std::shared_ptr<const std::wstring> detail_;
};

/// What a null value throws when it is converted, and bundle::get() where there is no entry: an empty
/// std::exception_ptr, whose class is named where a program ends because nobody catches it.
/// @quirk It is no std::exception: `catch (const std::exception_ptr&)`, `catch (const exc::NullValue&)` and
/// `catch (...)` take it.
class KESTA_API NullValue : public std::exception_ptr {
 public:
  NullValue() noexcept;
  NullValue(const NullValue& other) noexcept;
  NullValue& operator=(const NullValue& other) noexcept;
  ~NullValue();

  /// The path without an entry; empty when a value itself was converted.
  std::wstring get_detail() const;
  /// Lack of memory leaves the detail as it was.
  void set_detail(const std::wstring& detail) noexcept;

 private:
  std::shared_ptr<const std::wstring> detail_;
};

}  // namespace ruvo::exc
