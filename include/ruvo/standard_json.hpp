// SPDX-License-Identifier: BSL-1.0
#pragma once

// JSON as RFC 8259 defines it, in and out: what services and other programs send and expect. The library's
// own dialect, for documents that it stored, is ruvo::serializer::json in <ruvo/serializer.hpp>.
//
//   ruvo::bundle order;
//   ruvo::exception failure;
//   if (ruvo::serializer::read_standard_json(order, bytes, &failure)) {
//     const auto place = ruvo::serializer::position_of(bytes, ruvo::serializer::failure_position(failure));
//     std::wcerr << place.line << L':' << place.column << L' ' << failure.get_mensaje() << L'\n';
//   }
//   std::string answer;
//   if (ruvo::serializer::write_standard_json(answer, order, &failure)) return 1;

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/iserializer.hpp>
#include <ruvo/reading.hpp>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::detail {

/// What a whole text of JSON can be read into.
template <class T>
concept json_root = std::same_as<T, bundle> || std::same_as<T, list> || std::same_as<T, xvar>;

inline std::string_view as_bytes(std::u8string_view text) noexcept {
  return {reinterpret_cast<const char*>(text.data()), text.size()};
}

}  // namespace ruvo::detail

namespace ruvo::serializer {

// --- reading

/// What becomes of a number that no value holds as it is written.
enum class json_number : std::int32_t {
  nearest,  ///< The nearest double.
  text,     ///< The number as it is written, as a text.
  failure   ///< The reading fails.
};

/// What becomes of names of one object that the bundle takes for one key: they are equal, or differ in A-Z.
enum class json_twins : std::int32_t {
  failure,  ///< The reading fails, at the second one.
  first,    ///< The first value stays.
  last      ///< The last value stays, at the place of the first and in its spelling.
};

/// What a reader takes at most. What goes beyond is a failure at the place where it does.
struct json_limits {
  std::size_t depth = 512;                      ///< Of open objects and lists.
  std::size_t units = std::size_t{1} << 30;     ///< Of the text: bytes, or UTF-16 units.
  std::size_t members = std::size_t{1} << 20;   ///< Of one object.
  std::size_t elements = std::size_t{1} << 26;  ///< Values in all, containers included.
  std::size_t bytes = std::size_t{4} << 30;     ///< Of memory that the values take, about.
};

/// How a text is read.
struct json_read_options {
  json_limits limits{};                    ///< What it may have at most.
  json_twins twins = json_twins::failure;  ///< Names that come twice.
  /// Of what no double holds: 1e400. Never json_number::nearest.
  json_number too_large = json_number::failure;
  /// Of what loses digits in a double: a decimal fraction or an integer beyond 64 bits whose digits are not
  /// those of the shortest text that gives the same double, and what is too small for any double but 0.
  json_number inexact = json_number::nearest;
  /// Whether a byte order mark may stand at the beginning.
  bool byte_order_mark = false;
  /// Whether numbers with a fraction or an exponent, and integers beyond 64 bits, become ruvo::decimal with
  /// all digits that are written: prices and sums. Of what a decimal does not hold, 1e400 or 0.1e-40, the
  /// reading fails unless `inexact` is json_number::text; `too_large` has no meaning.
  bool decimals = false;
};

/// Reads a text of JSON as RFC 8259 defines it, from UTF-16 or, without a detour, from UTF-8 as RFC 3629
/// defines it. `out` then holds what the text says and nothing else: an xvar any value, a bundle an object, a
/// list a list. Objects become bundles, which fold the names and remember how they are spelled; integers that
/// fit become long long, else unsigned long long; other numbers the nearest double, also -0; true and false
/// bool; null a null cell; texts std::wstring, in which half a surrogate pair may stand if it is written as
/// an escape, as it may in names. Empty names and U+0000 are taken like others.
///
/// True on FAILURE, as in ruvo::iserializer; `out` is then as it was. The first unit that cannot stand where
/// it stands is the position in the message, which failure_position() gives: in bytes or UTF-16 units of the
/// text, counted from 1; the text's end is behind its last unit. position_of() makes a line and a column of
/// it. On success `*err` stays as it is.
///
/// - exc::jsonBadFormated (6001): what no JSON can go on with.
/// - exc::jsonTwinName (6004): the second of two names that are one key, at its quotation mark.
/// - exc::jsonBeyondLimit (6005): the value, name or bracket with which a limit is passed; of the size, the
///   first unit beyond, before anything is read.
/// - exc::jsonBadNumber (6006): a number that no value holds, or loses digits where the options say so.
/// - exc::jsonWrongRoot (6007): another kind of value than `out` can hold; nothing behind is looked at.
/// - exc::jsonBadEncoding (6008): the first byte of what is not UTF-8, inside a string.
///
/// Nothing but std::bad_alloc leaves these functions. `text` may be a part of what `out` holds. They take
/// linear time, but for the sorting of keys, and no stack for what is nested.
KESTA_API bool read_standard_json(bundle& out, std::wstring_view text, exception* err,
                                  const json_read_options& options = {});
KESTA_API bool read_standard_json(bundle& out, std::string_view bytes, exception* err,
                                  const json_read_options& options = {});
KESTA_API bool read_standard_json(list& out, std::wstring_view text, exception* err,
                                  const json_read_options& options = {});
KESTA_API bool read_standard_json(list& out, std::string_view bytes, exception* err,
                                  const json_read_options& options = {});
KESTA_API bool read_standard_json(xvar& out, std::wstring_view text, exception* err,
                                  const json_read_options& options = {});
KESTA_API bool read_standard_json(xvar& out, std::string_view bytes, exception* err,
                                  const json_read_options& options = {});

/// The same of UTF-8 that the language knows as such.
template <ruvo::detail::json_root Root>
bool read_standard_json(Root& out, std::u8string_view text, exception* err,
                        const json_read_options& options = {}) {
  return read_standard_json(out, ruvo::detail::as_bytes(text), err, options);
}
/// The same where the result alone reports a failure.
template <ruvo::detail::json_root Root, class Text>
[[nodiscard]] bool read_standard_json(Root& out, const Text& text) {
  return read_standard_json(out, text, nullptr, json_read_options());
}

// --- reading in pieces

/// What a reader meets, in the order of the text. Derive from it and replace what is of interest; the others
/// do nothing. Views are valid during the call only. What a handler throws leaves the reader's feed() or
/// finish(), and the reader is as new then; handlers do not call the reader.
class KESTA_API ijson_events {
 public:
  virtual void on_null();                              ///< The word null.
  virtual void on_boolean(bool value);                 ///< The words true and false.
  virtual void on_integer(long long value);            ///< An integer that fits.
  virtual void on_unsigned(unsigned long long value);  ///< One beyond long long.
  virtual void on_double(double value);                ///< Any other number.
  virtual void on_number(std::wstring_view written);   ///< By option: what stays text or becomes a decimal.
  virtual void on_text(std::wstring_view value);       ///< A string that is a value, without its escapes.
  virtual void on_name(std::wstring_view name);        ///< The name of a member; its value comes next.
  virtual void on_open_object();                       ///< Members follow, if there are any.
  virtual void on_close_object();                      ///< Of the innermost object.
  virtual void on_open_list();                         ///< Elements follow, if there are any.
  virtual void on_close_list();                        ///< Of the innermost list.
  virtual ~ijson_events();

 protected:
  ijson_events() noexcept;
  ijson_events(const ijson_events&) noexcept;
  ijson_events& operator=(const ijson_events&) noexcept;
};

/// Reads a text that comes in pieces, and calls the events for what it meets. Pieces may end anywhere, inside
/// a character too; what one cuts in two is kept, so memory is bounded by the longest text, name or number,
/// beside a few bytes for each open container. Takes linear time however small the pieces are.
///
/// What is taken, and the failures, are those of read_standard_json() for an xvar, with these differences:
/// names that are one key are names like others; a limit of the size fails when the unit beyond it comes; the
/// limit of bytes is that of what is kept of one text or number. The events before a failure were called, and
/// a failure is found when the unit comes that cannot stand there, in a number when the number ends.
///
/// With `many` there is one value after another, with blanks (space, tab, CR, LF) between two and anywhere
/// around; there may be none at all. A text of JSON Lines is such. Limits are those of each value with the
/// blanks before it. A value that is cut at the end, and anything else between two values, is a failure.
class KESTA_API standard_json_reader {
 public:
  /// `events` has to outlive the reader.
  explicit standard_json_reader(ijson_events& events, const json_read_options& options = {},
                                bool many = false);
  standard_json_reader(const standard_json_reader&) = delete;
  standard_json_reader& operator=(const standard_json_reader&) = delete;
  ~standard_json_reader();

  /// The next piece. True on FAILURE, which is then copied to `*err`; every further call gives the same
  /// failure, until reset(). The pieces of one text are all UTF-8 or all UTF-16, others are an
  /// exc::BadArgument.
  bool feed(std::string_view bytes, exception* err);
  bool feed(std::wstring_view text, exception* err);
  bool feed(std::u8string_view text, exception* err) { return feed(ruvo::detail::as_bytes(text), err); }
  /// The same where the result alone reports a failure.
  template <class Text>
  [[nodiscard]] bool feed(const Text& text) {
    return feed(text, nullptr);
  }
  /// The text is complete. True on FAILURE, as feed(); on success the reader is as new.
  bool finish(exception* err);
  [[nodiscard]] bool finish() { return finish(nullptr); }
  /// Forgets what came so far, a failure too.
  void reset() noexcept;

  /// Of the failure: in units of the whole text, counted from 1; 0 without one.
  std::uint64_t position() const noexcept;
  /// The same as line and column, as position_of() gives it.
  text_place place() const noexcept;

 private:
  class machine;
  std::unique_ptr<machine> machine_;
};

/// Reads many values from a text that comes in pieces, JSON Lines for one.
///
///   while (there_is_more()) {
///     if (values.feed(next_piece(), &failure)) break;
///     while (values.next(record)) use(record);
///   }
///   if (values.finish(&failure)) report(failure, values.place());
///   while (values.next(record)) use(record);
class KESTA_API json_values {
 public:
  /// With the options for each value.
  explicit json_values(const json_read_options& options = {});
  json_values(const json_values&) = delete;
  json_values& operator=(const json_values&) = delete;
  ~json_values();

  /// As those of standard_json_reader with `many`, and with all failures of read_standard_json(); the limit
  /// of bytes is that of each value. Values that were complete before a failure can be had by next().
  bool feed(std::string_view bytes, exception* err);
  bool feed(std::wstring_view text, exception* err);
  bool feed(std::u8string_view text, exception* err) { return feed(ruvo::detail::as_bytes(text), err); }
  template <class Text>
  [[nodiscard]] bool feed(const Text& text) {
    return feed(text, nullptr);
  }
  bool finish(exception* err);
  [[nodiscard]] bool finish() { return finish(nullptr); }
  void reset() noexcept;
  std::uint64_t position() const noexcept;
  text_place place() const noexcept;

  /// Moves the next complete value to `out`, which is replaced; false, with `out` as it was, when there is
  /// none now. A number behind which nothing stands yet is complete at finish().
  bool next(xvar& out) noexcept;

 private:
  class machine;
  std::unique_ptr<machine> machine_;
};

// --- writing

/// In which mode dates and times are written, as ISO 8601.
enum class json_dates : std::int32_t {
  own,  ///< In that of the value.
  utc   ///< In UTC.
};

/// What becomes of qualities, for which JSON has no place.
enum class json_qualities : std::int32_t {
  left_out,  ///< They are not written.
  members,   ///< As members of an object; see write_standard_json().
  failure    ///< A value that has any is a failure.
};

/// How a value is written.
struct json_write_options {
  int indent = -1;               ///< Blanks for each level; below 0 all on one line, without blanks.
  bool sorted = false;           ///< Members by key instead of in order of insertion.
  bool folded = false;           ///< Keys instead of their spelling.
  bool line_separators = false;  ///< U+2028 and U+2029 as escapes: old JavaScript takes them for line ends.
  json_dates dates = json_dates::own;                   ///< The mode of dates and times.
  json_qualities qualities = json_qualities::left_out;  ///< Those of values.
};

/// Writes the value as RFC 8259 has it. Wide text is UTF-16, narrow text UTF-8, without a byte order mark.
/// What is written is always JSON, and each of its objects has a name once.
///
/// - null: `null`; bool: `true` or `false`; integers: all their digits.
/// - float, double: the shortest text that reads back to the same double, with a point or an exponent: `1.0`,
///   `0.1`, `1e300`, `-0.0`. NaN and infinities are a failure.
/// - decimal: a number with all its digits and no exponent, `12.50`.
/// - texts, memo, wchar_t: a text, escaped where JSON asks for it; lone surrogates as `\ud83d`.
/// - binary: a text, in Base64 with `=`.
/// - date: `"2024-02-29"`, the day in its own mode, whatever the options say.
/// - time: `"09:30:05Z"`; in local time `"09:30:05"`, since only a day has an offset.
/// - datetime: `"2024-02-29T09:30:05Z"`; in local time `"2024-02-29T09:30:05+01:00"`, or in UTC where the
///   offset is no whole minutes.
/// - one of these three: `null` if it is_null(); a failure without a calendar form, and beyond the years 0 to
///   9999, which are those of ISO 8601. A velda::date is the date that a var makes of it, by its instant.
/// - objects of other classes: a text, their to_string().
/// - list, bundle: `[...]`, `{...}`.
///
/// A lapse is no value of a var; write its seconds. As json_qualities::members, a bundle that has qualities
/// gets them as its first members, in the order of their keys, "@" before the name; any other value becomes
/// an object of them and of "#text", the value itself. A member that has such a name already is a failure,
/// and so are two members that are spelled alike, which are possible where one key was folded in accented
/// letters by a path.
///
/// True on FAILURE, as in ruvo::iserializer; `out` is then as it was. It is exc::jsonUnwritable (6009) and
/// names the value by its JSON Pointer. On success `*err` stays as it is. Nothing but std::bad_alloc leaves
/// these functions. `out` may be a part of the value. Takes linear time and, for nesting, no room on the
/// stack; indented text grows with the square of the nesting.
KESTA_API bool write_standard_json(std::wstring& out, const bundle& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::wstring& out, const list& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::wstring& out, const xvar& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::string& out, const bundle& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::string& out, const list& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::string& out, const xvar& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::u8string& out, const bundle& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::u8string& out, const list& value, exception* err,
                                   const json_write_options& options = {});
KESTA_API bool write_standard_json(std::u8string& out, const xvar& value, exception* err,
                                   const json_write_options& options = {});
/// The same where the result alone reports a failure.
template <class Text, class Value>
[[nodiscard]] bool write_standard_json(Text& out, const Value& value) {
  return write_standard_json(out, value, nullptr);
}

// --- both, for what takes an iserializer

/// Standard JSON behind the interface of all serializers. A list that is the whole text is the member
/// `__json_array__` of the bundle, as in ruvo::serializer::json, and a bundle with such a member, if it holds
/// a list, is written as that list.
class KESTA_API standard_json : public iserializer {
 public:
  /// With the options for both ways.
  explicit standard_json(const json_read_options& reading = {}, const json_write_options& writing = {});
  standard_json(const standard_json& other);
  standard_json& operator=(const standard_json& other);
  ~standard_json() override;

  using iserializer::deserialize;
  /// As write_standard_json(); `options` has no meaning.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Reads as read_standard_json(), then adds the members to what is in `out`, where a member that is there
  /// keeps its place, spelling and qualities. Any other value than an object or a list is an
  /// exc::jsonWrongRoot. `options` has no meaning.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;

 private:
  json_read_options reading_;
  json_write_options writing_;
};

}  // namespace ruvo::serializer

#include <ruvo/names_back.hpp>
