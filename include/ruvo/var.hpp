// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::var, the value cell: one value of a fixed set of kinds, or nothing.
//
// A cell takes 24 bytes. Numbers, truth values, characters, dates, times and texts of up to seven characters
// live inside it; longer texts and the other kinds in one block of their own, owned by the cell.

#include <ruvo/api.hpp>
#include <ruvo/fences.hpp>
#include <ruvo/fwd.hpp>

#include <concepts>
#include <cstring>
#include <iosfwd>
#include <string>
#include <string_view>
#include <typeinfo>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {

struct cell;  // the library's own access to a var's inside

/// What a cell holds. The kinds up to `last_inside` own nothing.
enum class kind : unsigned char {
  null,
  boolean,
  wide_char,
  short_,
  ushort,
  int_,
  uint,
  long_,
  ulong,
  xlong,
  uxlong,
  float_,
  double_,
  date,
  time,
  datetime,
  small_text,
  last_inside = small_text,
  text,         // a block of characters, never changed
  string_text,  // a std::wstring, made when somebody asks for a reference to it
  binary,
  memo,
  decimal,
  object,  // of a class that the cell does not know
  list,
  bundle,
};

}  // namespace detail

/// Holds one value of any of the library's kinds, or nothing (null). Copies are deep, moves leave the source
/// null. Objects carry no lock; several threads may read one at the same time.
class KESTA_API var {
 public:
  /// Holds nothing.
  var() noexcept = default;
  var(const var& other) {
    if (other.data_.kind <= detail::kind::last_inside) {
      data_ = other.data_;
    } else {
      copy(other);
    }
  }
  var(var&& other) noexcept : data_(other.data_) { other.data_.kind = detail::kind::null; }
  virtual ~var() { release(); }

  /// Holds the value, in the kind that is its type. Texts are one kind, whichever constructor made them.
  /// @quirk A `char` is held as an int, its code: 'a' is 97, while L'a' is a character.
  var(bool value) noexcept { set(detail::kind::boolean, widen(value)); }
  var(wchar_t value) noexcept { set(detail::kind::wide_char, widen(value)); }
  var(short value) noexcept { set(detail::kind::short_, widen(value)); }
  var(unsigned short value) noexcept { set(detail::kind::ushort, widen(value)); }
  var(int value) noexcept { set(detail::kind::int_, widen(value)); }
  var(unsigned int value) noexcept { set(detail::kind::uint, widen(value)); }
  var(long value) noexcept { set(detail::kind::long_, widen(value)); }
  var(unsigned long value) noexcept { set(detail::kind::ulong, widen(value)); }
  var(long long value) noexcept { set(detail::kind::xlong, widen(value)); }
  var(unsigned long long value) noexcept { set(detail::kind::uxlong, widen(value)); }
  var(float value) noexcept { set(detail::kind::float_, widen(value)); }
  var(double value) noexcept { set(detail::kind::double_, widen(value)); }
  var(const binary& value);
  var(const memo& value);
  var(const decimal& value);
  var(const date& value);
  var(const time& value);
  var(const datetime& value);
  var(const std::wstring& value);
  var(const wchar_t* value);      ///< Null gives the empty text.
  var(const std::string& value);  ///< From UTF-8; held as wide text.
  var(const char* value);         ///< From UTF-8; null gives the empty text.
  var(const char8_t* value);      ///< The same, as `u8"texto"`.
  var(const std::u8string& value);
  /// A copy of what the view shows; of bytes, as UTF-8.
  template <detail::is_text_view View>
  var(View value) {
    take_text(value);
  }
  /// Refused: the pointer would become a bool.
  template <detail::is_pointer_without_text P>
  var(P pointer) = delete;

  var& operator=(const var& other);
  var& operator=(var&& other) noexcept;
  /// As the constructor: the kind that was held before does not matter.
  const var& operator=(bool value) noexcept { return reset(detail::kind::boolean, value); }
  const var& operator=(wchar_t value) noexcept { return reset(detail::kind::wide_char, value); }
  const var& operator=(short value) noexcept { return reset(detail::kind::short_, value); }
  const var& operator=(unsigned short value) noexcept { return reset(detail::kind::ushort, value); }
  const var& operator=(int value) noexcept { return reset(detail::kind::int_, value); }
  const var& operator=(unsigned int value) noexcept { return reset(detail::kind::uint, value); }
  const var& operator=(long value) noexcept { return reset(detail::kind::long_, value); }
  const var& operator=(unsigned long value) noexcept { return reset(detail::kind::ulong, value); }
  const var& operator=(long long value) noexcept { return reset(detail::kind::xlong, value); }
  const var& operator=(unsigned long long value) noexcept { return reset(detail::kind::uxlong, value); }
  const var& operator=(float value) noexcept { return reset(detail::kind::float_, value); }
  const var& operator=(double value) noexcept { return reset(detail::kind::double_, value); }
  const var& operator=(const binary& value);
  const var& operator=(const memo& value);
  const var& operator=(const decimal& value);
  const var& operator=(const date& value);
  const var& operator=(const time& value);
  const var& operator=(const datetime& value);
  const var& operator=(const std::wstring& value);
  const var& operator=(const wchar_t* value);
  const var& operator=(const std::string& value);
  const var& operator=(const char* value);
  const var& operator=(const char8_t* value);
  const var& operator=(const std::u8string& value);
  template <detail::is_text_view View>
  const var& operator=(View value) {
    return *this = var(value);
  }
  /// Refused: the pointer would become a bool.
  template <detail::is_pointer_without_text P>
  const var& operator=(P pointer) = delete;

  /// Destroys the value; the cell is null afterwards.
  void clear() noexcept {
    release();
    data_.kind = detail::kind::null;
  }

  /// Whether the cell holds nothing. A text without characters is something.
  bool is_null() const noexcept { return data_.kind == detail::kind::null; }
  /// Whether the cell holds a value of any kind.
  bool is_not_null() const noexcept { return !is_null(); }
  /// As is_null(): `!v` does not ask for a value that is false or 0.
  bool operator!() const noexcept { return is_null(); }

  /// The type of the held value (`std::wstring` for every text); null for a null cell.
  const std::type_info* get_type() const noexcept;
  /// As get_type(), but `typeid(var)` for a null cell.
  operator const std::type_info*() const noexcept;
  /// Whether the held type has the name of `type`; false for a null cell.
  bool instanceof (const std::type_info& type) const noexcept;

  /// Whether the cell is null or its text is empty. False for lists and bundles, also for those without
  /// elements.
  bool empty() const;

  /// Bool, the numbers and text.
  /// @quirk `short` and `wchar_t` are not primitive although `unsigned short` is; callers rely on the sets.
  bool is_primitive() const noexcept;
  /// Integers, float, double and decimal; neither bool nor wchar_t.
  bool is_number() const noexcept;
  /// The kinds from `short` to `unsigned long long`.
  bool is_integer() const noexcept;
  /// Float, double and decimal.
  bool is_decimal() const noexcept;
  /// Text, binary and memo.
  bool is_charsquence() const noexcept;
  /// Date, time and datetime.
  bool is_lapse() const noexcept;

  /// Whether the text, without blanks at its ends, is `[+-]digits[.[digits]]`. True for bool, integers and
  /// decimals, for float and double unless they are infinite or no number; false for a null cell, dates,
  /// times, lists and bundles.
  bool can_be_number() const;
  /// Whether the text, without blanks at its ends and without regard to case, is one of true, 1, si,
  /// verdadero, correcto, false, 0, no, falso, incorrecto. False for a null cell, decimals, dates, times,
  /// lists and bundles.
  bool can_be_boolean() const;

  /// The value as text in the classic locale: integers in base ten, float and double with six digits after
  /// the point, a decimal with all of its own, bool as 1 or 0, dates and times in their canonical formats,
  /// containers in their text form. A date or time without calendar form, because its year is beyond every
  /// calendar record or the context refuses, gives its seconds since 1970. Empty for a null cell.
  std::wstring to_string() const;

  // --- conversions

  // A null cell throws in each of them, so that a missing value is never taken for 0.

  /// From bool, wchar_t (its code, also for a digit), the numbers, date (20240229), time (123456) and text.
  /// Fractions are cut off, then the bits above the width; doubles and decimals stop at the ends of 64 bits,
  /// and what is no number gives 0. Text gives 0 unless can_be_number(), and throws std::out_of_range beyond
  /// `long long`, to an unsigned type too; a date or time without calendar form throws
  /// exc::CalendarException.
  ///
  /// A null cell throws exc::NullValue, any other kind std::bad_cast.
  /// @quirk What a null cell throws in all conversions is an empty std::exception_ptr, by value, and no
  /// std::exception.
  operator short() const;
  operator unsigned short() const;
  operator int() const;
  operator unsigned int() const;
  operator long() const;
  operator unsigned long() const;
  operator long long() const;
  operator unsigned long long() const;
  /// From bool, the numbers, date and time (as to an integer), datetime (its seconds since 1970) and text: 0
  /// unless can_be_number(). What is beyond a float becomes infinite; a text beyond a double throws
  /// std::out_of_range, to float too.
  ///
  /// A null cell throws exc::NullValue, any other kind std::bad_cast.
  operator float() const;
  operator double() const;
  /// From bool, from the integers 0 and 1, and from the words of can_be_boolean(). All else throws
  /// std::bad_cast, a null cell exc::NullValue.
  /// @quirk The empty text is false here although can_be_boolean() denies it.
  operator bool() const;
  /// From wchar_t and from text (its first unit, 0 when empty). All else throws std::bad_cast, a null cell
  /// exc::NullValue.
  operator wchar_t() const;
  /// to_string(), from every kind. A null cell throws exc::NullValue.
  operator std::wstring() const;
  /// From binary, and from every other kind the UTF-8 bytes of its to_string(). A null cell throws
  /// exc::NullValue.
  operator binary() const;
  /// From memo, and from every other kind its to_string(). A null cell throws exc::NullValue.
  operator memo() const;
  /// Exactly, from decimals, integers and bool; from float and double the shortest text that reads back to
  /// them, as the constructor of decimal; from text without the blanks at its ends by decimal::read(), which
  /// throws what it reports, unlike the conversions above. Any other kind throws std::bad_cast, a null cell
  /// exc::NullValue.
  operator decimal() const;
  /// From dates, datetimes, integers (yyyymmdd) and text (a number, or "dd-mm-yyyy"). A text that is neither
  /// throws what the date's own parser throws; all else throws std::bad_cast, a null cell
  /// exc::NullValue.
  operator date() const;
  /// From times, datetimes, integers (hhmmss) and text (a number, or "hh:mm:ss"); throws as the conversion to
  /// date does.
  operator time() const;
  /// From datetimes, integers (seconds since 1970) and text (a number, or "dd-mm-yyyy hh:mm:ss"); throws as
  /// the conversion to date does.
  operator datetime() const;

  /// Whether both hold the same type and their texts are equal; two null cells are equal. Floats and doubles
  /// are compared as they print, with six digits; decimals by value.
  bool operator==(const var& other) const {
    using detail::kind;
    if (data_.kind >= kind::boolean && data_.kind <= kind::double_) {
      if (data_.kind != other.data_.kind) return false;
      if (integer() == other.integer()) return true;
      if (data_.kind <= kind::uxlong) return false;
      const double apart = real() - other.real();
      if (apart > most_apart || apart < -most_apart) return false;
    }
    return equals(other);
  }
  /// @quirk Compares texts whatever the kinds, so 10 < 9: this is the order of lists and bundles. Decimals of
  /// one value have several texts: 1.5 < 1.50, although both are equal. natural_order() compares numbers.
  bool operator<(const var& other) const;

  /// `v == 5`, `v == L"x"`: as `v == var(5)`.
  template <class T>
  requires(!std::derived_from<T, var> && std::constructible_from<var, const T&>) bool operator==(
      const T& value) const {
    return *this == var(value);
  }

 private:
  friend struct detail::cell;

  struct storage {
    detail::kind kind = detail::kind::null;
    unsigned char length = 0;      // of a small text
    unsigned char bytes[14] = {};  // a small text, or at `word` a number or the pointer to the value
  };
  static constexpr std::size_t word = 6;

  long long integer() const noexcept {
    long long value;
    std::memcpy(&value, data_.bytes + word, sizeof value);
    return value;
  }
  double real() const noexcept {
    double value;
    std::memcpy(&value, data_.bytes + word, sizeof value);
    return value;
  }
  static constexpr double most_apart = 1.5e-6;  // numbers further apart can't share six digits

  /// What a cell keeps of a number.
  static long long widen(unsigned long long value) noexcept { return static_cast<long long>(value); }
  static double widen(float value) noexcept { return value; }
  static double widen(double value) noexcept { return value; }
  template <std::integral T>
  static long long widen(T value) noexcept {
    return static_cast<long long>(value);
  }
  template <class T>
  void set(detail::kind kind, T value) noexcept {
    static_assert(sizeof value == 8);
    data_.kind = kind;
    std::memcpy(data_.bytes + word, &value, sizeof value);
  }
  template <class T>
  const var& reset(detail::kind kind, T value) noexcept {
    release();
    set(kind, widen(value));
    return *this;
  }
  void release() noexcept {
    if (data_.kind > detail::kind::last_inside) destroy();
  }
  // For a cell that owns nothing.
  void copy(const var& other);
  void take_text(std::wstring_view text);
  void take_text(std::string_view utf8);
  void take_text(std::u8string_view text) {
    take_text(std::string_view(reinterpret_cast<const char*>(text.data()), text.size()));
  }
  void destroy() noexcept;
  bool equals(const var& other) const;

  alignas(8) storage data_;
};

/// Writes "null" for a null cell and the text otherwise.
KESTA_API std::wostream& operator<<(std::wostream& out, const var& value);

}  // namespace ruvo

#include <ruvo/names_back.hpp>
