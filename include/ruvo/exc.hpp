// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::exc, the classes of errors. Codes and messages stand in <ruvo/exc_catalogue.hpp>, from which most of
// the classes are made; in the reference each of those shows its own.

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
/// distinguish them by type, and exception::raise() gives a copy its type again.
/// @quirk The messages of jsonUnKnowValue ("carcter") and of a hook without an override ("apllicación") are
/// spelled so, and those of xmlBadFormated and xmlCachePointer are the same.
namespace ruvo::exc {

#define KESTA_EXC_CLASS(name, base, ...) \
  class KESTA_API name : public base {   \
   public:                               \
    __VA_ARGS__;                         \
    ~name() override;                    \
  };

// --- general errors

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

// --- families

/// The errors of range 1, files and folders, made of the number within it and the message.
KESTA_EXC_CLASS(FileException, kesta::exception,
                FileException(unsigned long code, const std::wstring& message))

/// The errors of range 2, the system and the account, made of the number within it and the message.
KESTA_EXC_CLASS(SystemException, kesta::exception,
                SystemException(unsigned long code, const std::wstring& message))

/// The errors of range 3, dates and times.
class KESTA_API CalendarException : public kesta::exception {
 public:
  /// A failure that is not known further: number 1.
  CalendarException();
  ~CalendarException() override;
  /// Made of the number within the range and the message.
  CalendarException(unsigned long code, const std::wstring& message);
};

/// The errors of range 4, the registry of Windows, made of the number within it, the message and the error
/// number of Windows. " (number: the system's text)" is appended to the message, not to the report.
KESTA_EXC_CLASS(winregistryException, kesta::exception,
                winregistryException(unsigned long code, const std::wstring& message,
                                     unsigned long windows_error))

/// The errors of range 5, compressed archives, made of the number within it and the message.
KESTA_EXC_CLASS(ZipException, kesta::exception, ZipException(unsigned long code, const std::wstring& message))

/// The errors of range 6, JSON.
class KESTA_API JSONException : public kesta::exception {
 public:
  /// A failure that is not known further: number 1.
  JSONException();
  ~JSONException() override;

 protected:
  /// Made of the number within the range and the message.
  JSONException(unsigned long code, const std::wstring& message);
};

/// The errors of range 7, XML.
class KESTA_API XMLException : public kesta::exception {
 public:
  /// A failure that is not known further: number 1.
  XMLException();
  ~XMLException() override;

 protected:
  /// Made of the number within the range and the message.
  XMLException(unsigned long code, const std::wstring& message);
};

/// The errors of range 8, tasks and threads.
class KESTA_API ThreadException : public kesta::exception {
 public:
  /// A failure that is not known further: number 1.
  ThreadException();
  ~ThreadException() override;
  /// Made of the number within the range and the message.
  ThreadException(unsigned long code, const std::wstring& message);
};

/// The errors of range 9, styles, made of the number within it and the message.
KESTA_EXC_CLASS(StyleException, kesta::exception,
                StyleException(unsigned long code, const std::wstring& message))

/// The errors of range 10, drawing, made of the number within it and the message.
KESTA_EXC_CLASS(RenderException, kesta::exception,
                RenderException(unsigned long code, const std::wstring& message))

/// The errors of range 11, modules that are loaded by name, made of the number within it and the message.
KESTA_EXC_CLASS(InterfaceException, kesta::exception,
                InterfaceException(unsigned long code, const std::wstring& message))

/// The errors of range 12, calls of Windows, made of the number within it, the message and the error number
/// of Windows. " (number: the system's text)" is appended to the message, not to the report.
KESTA_EXC_CLASS(winException, kesta::exception,
                winException(unsigned long code, const std::wstring& message, unsigned long windows_error))

/// The errors of range 13, XML documents of others, made of the number within it and the message.
KESTA_EXC_CLASS(xmlException, kesta::exception, xmlException(unsigned long code, const std::wstring& message))

/// The errors of range 14, managed code, made of the number within it and the message.
KESTA_EXC_CLASS(dotnetException, kesta::exception,
                dotnetException(unsigned long code, const std::wstring& message))

/// The errors of range 17, exact decimals, made of the number within it and the message.
KESTA_EXC_CLASS(DecimalException, kesta::exception,
                DecimalException(unsigned long code, const std::wstring& message))

// --- the classes of the catalogue that need no more than their row, by the shape of the row

#define KESTA_EXC_own(name, base)
#define KESTA_EXC_family(name, base)
#define KESTA_EXC_place(name, base)

/// An error with one message.
#define KESTA_EXC_plain(name, base) KESTA_EXC_CLASS(name, base, name())

/// An error of a path, which follows the message.
#define KESTA_EXC_path(name, base) KESTA_EXC_CLASS(name, base, explicit name(const file& path))

/// An error of something that has a name, which stands in the message.
#define KESTA_EXC_named(name, base) KESTA_EXC_CLASS(name, base, explicit name(const std::wstring& subject))

/// A text that cannot be read. The position, in characters read (of a document in bytes, in bytes), and the
/// knot, the number of open nodes, follow the message.
#define KESTA_EXC_knot(name, base) \
  KESTA_EXC_CLASS(name, base, name(unsigned long long position, unsigned long long knot))

/// An error of its family, with the message of who throws it.
#define KESTA_EXC_message(name, base) KESTA_EXC_CLASS(name, base, explicit name(const std::wstring& message))

/// An error of its family, with the message of who throws it and the error number of Windows.
#define KESTA_EXC_windows(name, base) \
  KESTA_EXC_CLASS(name, base, name(const std::wstring& message, unsigned long windows_error))

#define KESTA_ERROR(name, base, range, number, shape, text) KESTA_EXC_##shape(name, base)
#include <ruvo/exc_catalogue.hpp>

#undef KESTA_EXC_own
#undef KESTA_EXC_family
#undef KESTA_EXC_place
#undef KESTA_EXC_plain
#undef KESTA_EXC_path
#undef KESTA_EXC_named
#undef KESTA_EXC_knot
#undef KESTA_EXC_message
#undef KESTA_EXC_windows

// --- those with a constructor of their own

/// A path that is not to be used below a folder, or a name that no file is to have. The path, in its middle
/// cut to some 200 characters, and the reason stand in the message; the detail is the whole path as it was
/// given.
KESTA_EXC_CLASS(fileUnsafePath, FileException,
                fileUnsafePath(const std::wstring& path, const std::wstring& reason))

/// A text that cannot be read. The position, in characters read, follows the message.
KESTA_EXC_CLASS(jsonBadFormated, JSONException, explicit jsonBadFormated(const unsigned long long& position))

/// Two names of one object that are one key. The position of the second one, and the name, stand in the
/// message; the detail is the name.
KESTA_EXC_CLASS(jsonTwinName, JSONException,
                jsonTwinName(unsigned long long position, const std::wstring& name))

/// A text that goes beyond a limit. The position and what is limited stand in the message; the detail is what
/// is limited: "profundidad", "tamaño", "miembros", "elementos" or "memoria".
KESTA_EXC_CLASS(jsonBeyondLimit, JSONException,
                jsonBeyondLimit(unsigned long long position, const std::wstring& limited))

/// A number that no value holds as it is written. Its position stands in the message.
KESTA_EXC_CLASS(jsonBadNumber, JSONException, explicit jsonBadNumber(unsigned long long position))

/// A whole text that is a value of another kind than asked for. The position stands in the message.
KESTA_EXC_CLASS(jsonWrongRoot, JSONException, explicit jsonWrongRoot(unsigned long long position))

/// Bytes that are not UTF-8. The position of the first one stands in the message.
KESTA_EXC_CLASS(jsonBadEncoding, JSONException, explicit jsonBadEncoding(unsigned long long position))

/// A value that JSON has no form for. Where it is, as a JSON Pointer, and why stand in the message, in the
/// former's middle cut to some 200 characters; the detail is the whole pointer.
KESTA_EXC_CLASS(jsonUnwritable, JSONException,
                jsonUnwritable(const std::wstring& pointer, const std::wstring& reason))

/// A text that is no JSON Pointer. The position, in characters read, follows the message.
KESTA_EXC_CLASS(jsonBadPointer, JSONException, explicit jsonBadPointer(unsigned long long position))

/// A JSON Pointer that leads nowhere in the value at hand. Pointer and reason stand in the message, as in
/// jsonUnwritable; the detail is the whole pointer.
KESTA_EXC_CLASS(jsonNoPlace, JSONException,
                jsonNoPlace(const std::wstring& pointer, const std::wstring& reason))

/// An XML document that goes beyond a limit. The position and what is limited stand in the message; the
/// detail is what is limited: "profundidad", "tamaño", "elementos", "atributos", "memoria" or "crecimiento".
KESTA_EXC_CLASS(xmlBeyondLimit, XMLException,
                xmlBeyondLimit(unsigned long long position, const std::wstring& limited))

/// A text that is no decimal. The position, in characters read, follows the message.
KESTA_EXC_CLASS(decimalBadText, DecimalException, explicit decimalBadText(unsigned long long position))

/// A failure of the system. Its number follows the message.
KESTA_EXC_CLASS(systemErrorCode, SystemException, explicit systemErrorCode(unsigned long number))

/// A thread that has an application already. Its id follows the message, in upper-case hexadecimal.
KESTA_EXC_CLASS(applicationAlreadyRegistered, SystemException,
                explicit applicationAlreadyRegistered(unsigned long thread_id))

/// A call into managed code that failed. The number within the range is 2 or 3, by the place that failed.
KESTA_EXC_CLASS(invocaError, dotnetException, invocaError(unsigned long code, const std::wstring& message))

/// An action that does not exist. Its name follows the message.
KESTA_EXC_CLASS(actionNotFound, kesta::exception, explicit actionNotFound(std::wstring action))

#undef KESTA_EXC_CLASS

// --- failures that are those of the language, and say what they are about

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
