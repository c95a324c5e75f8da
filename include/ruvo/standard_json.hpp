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

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

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
  std::size_t depth = 512,              ///< Of open objects and lists.
      units = std::size_t{1} << 30,     ///< Of the text: bytes, or UTF-16 units.
      members = std::size_t{1} << 20,   ///< Of one object.
      elements = std::size_t{1} << 26,  ///< Values in all, containers included.
      bytes = std::size_t{4} << 30;     ///< Of memory that the values take, about.
};

struct json_read_options {
  json_limits limits;
  json_twins twins = json_twins::failure;
  /// Of what no double holds: 1e400. Never json_number::nearest.
  json_number too_large = json_number::failure;
  /// Of what loses digits in a double: a decimal fraction or an integer beyond 64 bits whose digits are not
  /// those of the shortest text that gives the same double, and what is too small for any double but 0.
  json_number inexact = json_number::nearest;
  /// Whether a byte order mark may stand at the beginning.
  bool byte_order_mark = false;
};

/// (contract: to be written with the reader)
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

// --- reading in pieces

/// What a reader meets, in the order of the text. Derive from it and replace what is of interest; the others
/// do nothing. Views are valid during the call only. What a handler throws leaves the reader's feed() or
/// finish().
class KESTA_API ijson_events {
 public:
  virtual void on_null();
  virtual void on_boolean(bool value);
  virtual void on_integer(long long value);
  virtual void on_unsigned(unsigned long long value);  ///< Beyond long long only.
  virtual void on_double(double value);
  virtual void on_number(std::wstring_view written);  ///< What stays text by option.
  virtual void on_text(std::wstring_view value);
  virtual void on_name(std::wstring_view name);
  virtual void on_open_object();
  virtual void on_close_object();
  virtual void on_open_list();
  virtual void on_close_list();
  virtual ~ijson_events();

 protected:
  ijson_events() noexcept;
  ijson_events(const ijson_events&) noexcept;
  ijson_events& operator=(const ijson_events&) noexcept;
};

// --- writing

/// How dates and times are written, as ISO 8601.
enum class json_dates : std::int32_t {
  own,  ///< In the mode of the value.
  utc   ///< In UTC.
};

/// What becomes of qualities, for which JSON has no place.
enum class json_qualities : std::int32_t {
  left_out,  ///< They are not written.
  members,   ///< As members; see write_standard_json().
  failure    ///< A value that has any is a failure.
};

struct json_write_options {
  int indent = -1;      ///< Blanks for each level; below 0 all on one line, without blanks.
  bool sorted = false;  ///< Members by key instead of in order of insertion.
  bool folded = false;  ///< Keys instead of their spelling.
  json_dates dates = json_dates::own;
  json_qualities qualities = json_qualities::left_out;
};

/// (contract: to be written with the writer)
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

// --- both, for what takes an iserializer

/// Standard JSON behind the interface of all serializers. (contract: with the reader)
class KESTA_API standard_json : public iserializer {
 public:
  explicit standard_json(const json_read_options& reading = {}, const json_write_options& writing = {});
  standard_json(const standard_json& other);
  standard_json& operator=(const standard_json& other);
  ~standard_json() override;

  using iserializer::deserialize;
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;

 private:
  json_read_options reading_;
  json_write_options writing_;
};

}  // namespace ruvo::serializer
