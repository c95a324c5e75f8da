// SPDX-License-Identifier: BSL-1.0
#pragma once

// Readers and writers of text formats, and JSON. What every format offers is in <ruvo/iserializer.hpp>, the
// places in a text and all the failures of a reading are in <ruvo/reading.hpp>.
//
//   ruvo::serializer::json json;
//   ruvo::bundle document;
//   ruvo::exception failure;
//   if (json.deserialize(document, text, &failure)) std::wcerr << failure.get_mensaje();
//
// An object becomes a bundle, an array a list; a text whose outermost value is an array is read into the key
// "__json_array__", and a bundle with that key is written as the array alone.

#include <ruvo/bundle.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/iserializer.hpp>
#include <ruvo/xvar.hpp>

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace ruvo::serializer {

// --- the roles

/// Reads a text character by character into a bundle. Used through reset(), set_store(), and on_char() or
/// next_character(), in that order.
class KESTA_API ireader {
 public:
  /// Takes the next character; the caller has counted it (see next_character). True when `result` now carries
  /// a failure; reading goes on all the same.
  /// @quirk True is failure.
  virtual bool on_char(wchar_t c, exception& result) = 0;
  /// The text that a value stands for.
  virtual std::wstring raw_value(const xvar& value) = 0;
  /// The key under which a value is stored.
  virtual std::wstring& raw_key(std::wstring& key) = 0;
  virtual ~ireader();
  /// Forgets everything, the store too.
  virtual void reset() = 0;

  ireader(const ireader&) = delete;
  ireader& operator=(const ireader&) = delete;

  /// The bundle to fill; not owned, and to outlive the reading.
  void set_store(bundle& store) noexcept { store_ = &store; }
  /// Counts the character and takes it.
  bool next_character(wchar_t c, exception& result);
  /// Characters taken since the last reset: when next_character() has just failed, the position of the
  /// failure, as its message gives it.
  std::uint64_t position() const noexcept { return position_; }

 protected:
  ireader() noexcept;

  bundle* store_ = nullptr;     ///< What set_store() named; null before.
  std::uint64_t position_ = 0;  ///< Characters taken so far; the first has position 1.
};

/// Writes a bundle as text.
class KESTA_API iwriter {
 public:
  /// The text of one scalar value.
  virtual std::wstring raw_value(const xvar& value) = 0;
  /// The text of a key; it may be changed in place, and the reference is to it.
  virtual std::wstring& raw_key(std::wstring& key) = 0;
  virtual ~iwriter();
  /// Replaces `out` by the text of `in`. True on FAILURE, which is copied into `*err` unless `err` is null.
  /// @quirk True is failure.
  virtual bool write(std::wstring& out, const bundle& in, exception* err, int options) = 0;
  /// Whether new lines and indentation are written. Of n levels of nesting the tabs alone are about n * n,
  /// so what comes from elsewhere is written with limit_indentation().
  virtual void set_tabulated(bool tabulated);
  /// Deeper than so many levels nothing is indented further. Without a call, and from 65535 on, everything
  /// is. To be called between two texts.
  void limit_indentation(unsigned long levels) noexcept;

  iwriter(const iwriter&) = delete;
  iwriter& operator=(const iwriter&) = delete;

 protected:
  iwriter() noexcept;

  friend class layout;

  /// One level deeper, when tabulated.
  /// @quirk The first push in the writer's life adds no tab.
  void push_tab();
  /// One level back, when tabulated.
  void pop_tab() noexcept;

  bool tabulated_ = false;              ///< As set_tabulated() says.
  bool first_push_ = true;              ///< Whether push_tab() has still to be called for the first time.
  std::uint16_t most_levels_ = 0xFFFF;  ///< As limit_indentation() says.
  std::uint32_t withheld_ = 0;          ///< The levels, deeper than that, that are open now.
  std::wstring tab_unit_;               ///< What a level adds: one tab.
  std::wstring indentation_;            ///< What stands before a line at the current level.
};

// --- JSON writers

/// What the JSON writers share: the text of scalars, lists and members. Derived writers that override
/// raw_value, raw_key or raw_bundle are asked for every value; each level then takes its part of the stack,
/// and some hundreds of levels exhaust it. The library's own take any number.
///
/// Keys are written as they stand, qualities are not written.
/// @quirk A key that holds a quote makes text that is not JSON.
class KESTA_API json_writer : public iwriter {
 public:
  /// A null value is written as "" when `null_as_empty` is set, else as null.
  /// @quirk The writers of json set it: a null value becomes the empty text, and is read back as that.
  explicit json_writer(bool null_as_empty = true);
  ~json_writer() override;

  /// Numbers bare; texts, memos and all else quoted and escaped; bool as true or false; time quoted as
  /// hhmmss; date as the bare number yyyymmdd, and both as their seconds since 1970 where they have no
  /// calendar form; datetime as its bare seconds with six digits; binary as quoted Base64.
  ///
  /// Escapes are `\"`, `\\`, `\b`, `\f`, `\n`, `\r` and `\t`.
  /// @quirk Any other control character becomes a blank.
  std::wstring raw_value(const xvar& value) override;
  /// The key as it stands.
  std::wstring& raw_key(std::wstring& key) override;
  /// A failure of the writer (a value that holds no container where one is needed) is exc::NullPointer.
  /// @quirk When tabulated, the second text of the same writer is indented by one tab.
  /// @quirk When tabulated, a new line comes before "}", while of "]" it comes behind it.
  bool write(std::wstring& out, const bundle& in, exception* err, int options) override;
  /// Writes the bundle that `value` holds. True when `result` now carries a failure.
  virtual bool raw_bundle(std::wostringstream& out, const xvar& value, exception& result) = 0;

 protected:
  /// Writes the list that `value` holds. True when `result` now carries a failure: exc::NullPointer when it
  /// holds none.
  bool raw_list(std::wostringstream& out, const xvar& value, exception& result);
  /// Writes a member: key, colon and value. True when `result` now carries a failure.
  bool raw_xvar(std::wostringstream& out, std::wstring& key, const xvar& value, exception& result);

 private:
  bool null_as_empty_;
};

/// Members in key order.
class KESTA_API json_ordered_writer : public json_writer {
 public:
  json_ordered_writer();
  ~json_ordered_writer() override;
  bool raw_bundle(std::wostringstream& out, const xvar& value, exception& result) override;
};

/// Members in the order in which the bundle got them.
class KESTA_API json_unordered_writer : public json_writer {
 public:
  json_unordered_writer();
  ~json_unordered_writer() override;
  bool raw_bundle(std::wostringstream& out, const xvar& value, exception& result) override;
};

/// In key order, texts quoted as they stand.
class KESTA_API oauth_writer : public json_ordered_writer {
 public:
  oauth_writer();
  ~oauth_writer() override;
  std::wstring raw_value(const xvar& value) override;
};

// --- JSON reader

/// Reads JSON text; lenient in many places. The open containers are the caller's; nothing is owned.
///
/// Failures: exc::jsonEmptyKey (6002) for a value under an empty key in an object inside the outermost one,
/// exc::jsonUnKnowValue (6003) for a word that begins like true, false or null and goes on otherwise. A
/// number that the conversion refuses throws std::invalid_argument or std::out_of_range.
///
/// @quirk Brackets are not matched, exponents are not read, a colon ends a key inside its quotes, of the
/// escapes only `\"`, `\\` and `\n` are understood, a word that fails makes every further character an error.
/// @quirk A letter that begins no word (all but t, f, n, T and F) is passed over, the rest of its word letter
/// by letter: `oops` leaves no trace, while `int` and `off` fail at what is behind their n and f.
class KESTA_API json_reader : public ireader {
 public:
  json_reader();
  ~json_reader() override;
  bool on_char(wchar_t c, exception& result) override;
  /// For a text, the text with its escapes resolved.
  /// @quirk The character behind a dropped backslash is looked at afresh, so `\\n` gives a line feed.
  std::wstring raw_value(const xvar& value) override;
  /// The key as it stands.
  std::wstring& raw_key(std::wstring& key) override;
  void reset() override;

 private:
  friend class json;
  class machine;

  /// Takes as many whole tokens as it can at once, with the outcome of on_char for each character, and
  /// returns the first character that it leaves to on_char.
  const wchar_t* take_tokens(const wchar_t* at, const wchar_t* end);

  std::unique_ptr<machine> machine_;
};

// --- JSON

/// Reads and writes JSON. An object is used by one thread at a time and may be used again and again.
class KESTA_API json : public iserializer {
 public:
  /// Writes in key order, in one line, escaped.
  json();
  /// Writes members in key order or in the order in which the bundle got them, in one line or with a line and
  /// tabs for each member, texts escaped or not. Without `escaped`, texts are quoted as they stand.
  /// @quirk Without `escaped` the order is by key, whatever `ordered` says.
  ///
  /// Tabs grow with the square of the nesting: text from elsewhere is written with limit_indentation().
  json(bool ordered, bool tabulated, bool escaped);
  ~json() override;
  json(const json&) = delete;
  json& operator=(const json&) = delete;

  /// `options` is ignored.
  /// @quirk Of a bundle that has the key "__json_array__" nothing but its value is written.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Reads to the end whatever the text holds; of several failures the last one is reported and everything
  /// else is kept. The exception of a number that can't be converted leaves this function.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;

  /// As iwriter::limit_indentation(), for the texts from now on.
  void limit_indentation(unsigned long levels) noexcept;

  /// JSON text indented by four blanks a level, for reading. Works on any text.
  ///
  /// The result grows with the square of the nesting: n opening brackets give 2 * n * n blanks, 16,000 of
  /// them 512 million. Text from elsewhere is for the other form.
  [[nodiscard]] static std::wstring printJsonFormateado(std::wstring text);
  /// The same, but deeper than so many levels nothing is indented further: each unit of the text becomes
  /// 4 * levels + 2 at most.
  [[nodiscard]] static std::wstring printJsonFormateado(std::wstring text, unsigned long levels);

 private:
  std::unique_ptr<json_reader> reader_;
  std::unique_ptr<iwriter> writer_;
};

}  // namespace ruvo::serializer

// The rest of the namespace; behind, for XML builds upon the readers and writers above.
#include <ruvo/json_check.hpp>
#include <ruvo/reading.hpp>
#include <ruvo/well_formed_xml.hpp>
#include <ruvo/xml.hpp>
