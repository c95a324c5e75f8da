// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::exception, the one value that reports a failure. It is thrown, and it is handed back through
// references and pointers by operations that return bool; with a code of 0 it stands for success.

#include <ruvo/api.hpp>
#include <ruvo/fences.hpp>

#include <concepts>
#include <cstdint>
#include <exception>
#include <iosfwd>
#include <memory>
#include <string>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {
struct error_class;
}

/// A 32-bit code, laid out as an HRESULT, a message and a report text; beside them a detail. Copies share the
/// texts: copying costs a reference count and never fails.
class KESTA_API exception : public std::exception {
 public:
  /// Success: raw code 0xEBB80000, message "OK".
  exception();
  /// Raw code 0xE0000000 | facility << 16 | ((rango * 1000 + code) & 0xFFFF). The parts are not checked.
  exception(const std::wstring& mensaje, unsigned long code, unsigned long rango, unsigned long facility);
  /// Any code, such as a system's HRESULT.
  exception(unsigned long raw, const std::wstring& mensaje);

  exception(const exception& other) noexcept;
  exception& operator=(const exception& other) noexcept;
  ~exception() override;

  /// The report: the lines CODE, RANGE, FACILITY, CUSTOMER, SEVERITY and MESSAGE, in UTF-8, each ended by
  /// CRLF.
  /// @quirk It shows the message as it was when the object was made or cleared; the system's text that the
  /// Windows errors add afterwards stands in get_mensaje() only.
  const char* what() const noexcept override;

  /// A copy of exc::OkResult (message "CORRECTO").
  static exception correct();
  /// Raw code 0xEBB80001, message "Error indeterminado".
  static exception incorrect();

  /// Success: whether get_code() is 0, whatever the range and the facility.
  bool OK() const noexcept { return get_code() == 0; }
  /// Failure: the contrary of OK().
  bool WRONG() const noexcept { return !OK(); }

  /// The whole 32-bit code.
  unsigned long get_raw_code() const noexcept { return code_; }
  /// The code as an HRESULT, negative for the library's errors.
  operator long() const noexcept { return static_cast<std::int32_t>(code_); }

  unsigned long get_code() const noexcept { return (code_ & 0xFFFF) % 1000; }   ///< Number within the range.
  unsigned long get_rango() const noexcept { return (code_ & 0xFFFF) / 1000; }  ///< Family of the error.
  /// 3000 of general errors, 3001 of those of the library's modules.
  unsigned long get_facility() const noexcept { return code_ >> 16 & 0x1FFF; }
  /// The two highest bits; 3 of all the library's codes.
  unsigned long get_severity() const noexcept { return code_ >> 30; }
  /// The bit of codes that are not the system's; 1 of all the library's.
  unsigned long get_customer() const noexcept { return code_ >> 29 & 1; }

  /// Comparisons look at the raw codes only.
  bool operator==(unsigned long raw) const noexcept { return code_ == raw; }
  bool operator<(unsigned long raw) const noexcept { return code_ < raw; }
  bool operator==(const exception& other) const noexcept { return code_ == other.code_; }
  bool operator<(const exception& other) const noexcept { return code_ < other.code_; }
  /// Any other integer is read as a raw code, a negative one as the HRESULT it is.
  template <std::integral T>
  bool operator==(T raw) const noexcept {
    return code_ == static_cast<std::uint32_t>(raw);
  }
  template <std::integral T>
  bool operator<(T raw) const noexcept {
    return code_ < static_cast<std::uint32_t>(raw);
  }

  /// The message, which is in Spanish.
  std::wstring get_mensaje() const;
  /// The report text, as in what().
  operator std::wstring() const;

  /// What the failure is about, for those who look for its cause: the path, the name or the key alone, the
  /// text and the format that a calendar failure is about, the system's words for its error number. Empty
  /// where nothing is known. It stands beside the message and the report, never in them, takes no part in
  /// comparisons, and goes along with copies.
  std::wstring get_detail() const;
  /// Gives the failure another detail; copies made before keep theirs. Lack of memory leaves it as it was.
  void set_detail(const std::wstring& detail) noexcept;

  /// Throws a copy of this failure as the class that it was made as, which copies in a plain ruvo::exception
  /// remember. One that was made of no more than a code and a message is thrown as the class that its code
  /// stands for; where that is more than one, as what these have in common. A class of a program's own counts
  /// as the class of ruvo::exc that it derives from, and without one as what its code stands for.
  /// A success is thrown too. Where memory is short the failure is thrown as ruvo::exception.
  [[noreturn]] void raise() const;

  /// Assigns this object to `*target`, if there is one.
  void copy_on(exception* target) const noexcept;
  void copy_on(exception& target) const noexcept;
  /// Back to what the default constructor makes.
  void clear();

 protected:
  /// Replaces the message or adds to it. The report text stays as it is.
  void set_mensaje(std::wstring mensaje);
  void append_to_mensaje(std::wstring tail);
  /// Rebuilds the report text with the present message.
  void copy_what();
  /// The system's text for an error number, without blanks at its ends.
  /// Empty for a number that the system does not know.
  static std::wstring winerror_message(unsigned long number);

 private:
  struct texts;
  friend struct detail::error_class;

  std::uint32_t code_;
  std::uint32_t class_ = 0;       // what raise() throws; 0 leaves it to the code
  std::shared_ptr<texts> texts_;  // never null, never changed while shared
};

/// Writes the report text.
KESTA_API std::wostream& operator<<(std::wostream& out, const exception& error);

/// What is the library's own rather than of every program: its errors and its application.
namespace kesta {

/// The errors of the library's own modules: facility 3001.
class KESTA_API exception : public ruvo::exception {
 public:
  /// The number within the range, the message, the range.
  exception(unsigned long code, const std::wstring& mensaje, unsigned long rango);

  exception(const exception& other) noexcept;
  exception& operator=(const exception& other) noexcept;
  ~exception() override;
};

}  // namespace kesta

}  // namespace ruvo

#include <ruvo/names_back.hpp>
