// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::ini_file, settings in a text that people write and read: INI files of several dialects, `.env`,
// `.properties`. What nobody changes stays as it is, byte for byte. ruvo::serializer::ini and key_value have
// such texts as bundles.
//
//   ruvo::ini_file settings;
//   ruvo::exception failure;
//   if (!settings.open(ruvo::file(L"tienda.ini"), failure)) failure.raise();
//   const std::wstring printer = settings.get(L"tickets", L"impresora", L"PDF");
//   settings.set(L"tickets", L"copias", 2, failure) && settings.save_if_unchanged(failure);

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/iserializer.hpp>
#include <ruvo/xvar.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

// --- dialects

/// What counts of a key that stands in a section more than once, and of a section that does.
enum class ini_duplicates : std::int32_t {
  first,  ///< The first of both: of a second section of the same name nothing is seen.
  last,   ///< The last key; sections of the same name are one.
  list,   ///< All of them, see ini_file::get_all(); sections of the same name are one.
  error   ///< Neither may be; reading fails.
};

/// How a value goes on in the next line.
enum class ini_continuation : std::int32_t {
  none,
  indented,   ///< Lines that are indented further than the key belong to the value, with "\n" between them.
  backslash,  ///< A line with "\" at its end goes on behind the blanks of the next one.
  quoted      ///< Quotation marks go over line ends, which are "\n" in the value.
};

/// Where "\" stands for another character.
enum class ini_escapes : std::int32_t {
  none,
  everywhere,  ///< In keys and values, as `.properties` have it: `\n`, `\u00F1`, and the character itself.
  quoted       ///< Between double quotation marks: `\n`, `\r`, `\t`, `\"` and `\\`; another "\" stays.
};

/// What a text means, as data. Characters in the texts of a dialect are ASCII; others have no effect. The
/// defaults are for an application's own settings.
///
/// In all of them a line ends with CR, LF or CRLF; blanks around keys, values and the names of sections do
/// not count; a section begins with `[name]`, up to the last "]" of the line; what is none of all these is
/// left alone. There is no interpolation, nor a section whose keys the others inherit.
struct ini_dialect {
  std::wstring comment_starts = L";#";  ///< Each begins a comment where it comes first in a line.
  std::wstring inline_comments{};       ///< Each begins a comment behind a value and a blank.
  std::wstring separators = L"=";       ///< Each stands between key and value.
  std::wstring quotes = L"\"";          ///< Each may stand around a value, and is no part of it.
  std::wstring key_prefix{};            ///< A word that may stand before a key: "export".
  std::wstring line_end = L"\r\n";      ///< Of a text that has none yet.
  ini_duplicates duplicates = ini_duplicates::last;        ///< What counts of what comes twice.
  ini_continuation continuation = ini_continuation::none;  ///< How values go over several lines.
  ini_escapes escapes = ini_escapes::none;                 ///< Where "\" has a meaning.
  bool has_sections = true;                                ///< Whether "[" begins one.
  bool case_sensitive_keys = false;      ///< Otherwise A-Z and accented capitals are as small letters.
  bool case_sensitive_sections = false;  ///< The same of the names of sections.
  bool bare_keys = false;                ///< Whether a key without a separator is one, with an empty value.
  bool blank_separates = false;          ///< Whether a blank stands between key and value as well.
  bool keeps_last_blanks = false;        ///< Whether blanks at the end of a line belong to the value.

  /// As GetPrivateProfileString() reads: ";", quotation marks of both kinds, the first of two keys.
  KESTA_API static ini_dialect windows();
  /// As Python's configparser without interpolation reads: "=" and ":", no quotation marks, indented lines
  /// go on, names of sections are exact, what comes twice is an error.
  KESTA_API static ini_dialect python();
  /// Variables in `.env`: no sections, exact names, "export", "#" also behind a value, both quotation marks,
  /// which go over line ends, with escapes between the double ones.
  KESTA_API static ini_dialect dotenv();
  /// Java's `.properties`: no sections, exact keys, "=", ":" or a blank, "#" and "!", escapes and "\" at the
  /// end of a line. What is beyond ASCII is written as `\u....`, which every reader takes.
  KESTA_API static ini_dialect properties();
};

/// The bytes of a text.
enum class ini_encoding : std::int32_t {
  utf_8,
  utf_16_le,  ///< With the mark FF FE.
  utf_16_be,  ///< With the mark FE FF.
  ansi        ///< The system's code page, if each of its bytes is a character, otherwise Windows-1252.
};

// --- the document

/// A text of settings, which may come from a file. Reading takes any bytes, and saving what was not changed
/// gives the same ones. A change leaves all else as it stands: comments, order, blanks, quotation marks, line
/// ends, encoding and mark. What a change writes reads back as what was set, and begins neither a section nor
/// a key: otherwise it is refused.
///
/// Keys before the first section are in the section "". Of a section or key that repeats the dialect says
/// what counts.
///
/// Operations with an exception give true for success; a failure is copied to `err` and leaves the document
/// as it was. What cannot be set is exc::BadArgument with the section or key, its detail says why. Look-up
/// takes constant time but for the first one in a section, which takes that of its lines; setting takes the
/// time of what is written; erasing a section, renaming, and a change that could give other lines another
/// meaning (quotation marks that do not close in dotenv(), indented keys in python(), lines that end with CR
/// alone) take that of the whole text. Texts may have 2^30 units.
///
/// Several threads may read one document; who writes keeps others away.
class KESTA_API ini_file {
 public:
  /// Without a line.
  ini_file();
  explicit ini_file(const ini_dialect& dialect);
  ini_file(const ini_file& other);
  ini_file(ini_file&& other) noexcept;  ///< `other` may be assigned to and destroyed alone.
  ini_file& operator=(const ini_file& other);
  ini_file& operator=(ini_file&& other) noexcept;
  ~ini_file();

  // --- reading

  /// Take a text in place of what is there, and no file. Bytes are UTF-8 or UTF-16 with a mark, UTF-8, or
  /// otherwise ansi. A byte that is no UTF-8 behind the mark of UTF-8 is the unit U+DC00 + byte, and stays;
  /// of wide text U+FEFF at the start is the mark.
  ///
  /// The one failure is exc::BadFormat, at the position (serializer::failure_position(), in units of text())
  /// of what comes twice where that is an error, or beyond 2^30 units.
  bool parse(std::wstring_view text, exception& err);
  bool parse(std::string_view bytes, exception& err);
  /// The same with the bytes of a file, to which save() goes. The failures of files::read() too.
  bool read(const file& path, exception& err);
  /// The same; a file that is missing is empty, and made by save(). One that cannot be looked for is a
  /// failure.
  bool open(const file& path, exception& err);

  // --- saving

  /// The whole text without a mark; before what looks like one, which parse() would take for it, stands one.
  std::wstring text() const;
  /// The bytes to be saved. The one failure is exc::BadFormat where they would be read in another encoding:
  /// of ansi without any byte left that is no UTF-8, though some are beyond ASCII.
  bool bytes(std::string& out, exception& err) const;
  /// Writes to path() as files::write() does, in one step. exc::EmptyArgument without a path, the failures of
  /// bytes() and files::write().
  bool save(exception& err);
  /// The same to another file, which becomes path().
  bool save_as(const file& path, exception& err);
  /// The same as save() if the file has still the bytes that were read or saved here last, or is missing if
  /// it was; otherwise exc::fileChanged, and nothing is written. Of several who save at once, in this way or
  /// by save(), one is first, by way of a file "~NAME.lock" beside it, for which two seconds are waited; who
  /// writes otherwise is noticed up to the moment before the file is replaced.
  bool save_if_unchanged(exception& err);
  /// Where it was read or saved last; empty before.
  const file& path() const noexcept;

  ini_encoding encoding() const noexcept;  ///< That of the bytes; utf_8 at first.
  bool has_mark() const noexcept;          ///< Whether a byte order mark stands before the text.
  /// How to save from now on; UTF-16 has a mark in any case, ansi has none. exc::BadArgument with the first
  /// character, "U+20AC", that the encoding does not have.
  bool set_encoding(ini_encoding encoding, bool has_mark, exception& err);

  // --- questions

  bool has(const std::wstring& section) const;  ///< Whether there is the section; "" always is.
  bool has(const std::wstring& section, const std::wstring& key) const;  ///< Whether there is the key.
  /// The value of the key, otherwise `fallback`. Of several that count it is the last.
  std::wstring get(const std::wstring& section, const std::wstring& key,
                   const std::wstring& fallback = {}) const;
  /// All values of the key that count, in their order: more than one in ini_duplicates::list alone.
  std::vector<std::wstring> get_all(const std::wstring& section, const std::wstring& key) const;
  /// The names of the sections but "", in the order and spelling of their first lines.
  std::vector<std::wstring> sections() const;
  /// The keys of a section, once each, in the order and spelling of their first lines.
  std::vector<std::wstring> keys(const std::wstring& section) const;
  /// The comment right above a section, without what begins its lines, with "\n" between them.
  std::wstring comment(const std::wstring& section) const;
  std::wstring comment(const std::wstring& section, const std::wstring& key) const;  ///< Of a key.
  /// Whether each line means something; otherwise exc::BadFormat at the first that does not.
  bool check(exception& err) const;

  // --- changes

  /// Sets the value of a key. One that is there keeps its place; another one goes behind the last key of its
  /// section, a new section to the end. Null is an empty value, a list repeats the key (in
  /// ini_duplicates::list alone), float and double have all digits that reading back takes, bytes are Base64,
  /// an instant of local time says its distance to UTC, all else is its text form; not a bundle.
  ///
  /// Refused are values with line ends or other control characters but TAB, with blanks around them, and what
  /// the dialect would read otherwise, unless it has a way to write them: quotation marks, escapes,
  /// indented lines; characters that the encoding does not have, with "U+20AC" in the detail; keys with a
  /// separator or what begins a section or a comment; brackets in the names of sections.
  bool set(const std::wstring& section, const std::wstring& key, const xvar& value, exception& err);
  /// Sets all of a bundle: what is a bundle itself is a section.
  bool set(const bundle& all, exception& err);
  /// Removes the key with all its lines, or a section with all that is in it; what is missing is no failure.
  /// Comments above them stay.
  bool erase(const std::wstring& section, const std::wstring& key, exception& err);
  bool erase(const std::wstring& section, exception& err);
  /// Gives a section or key another name. exc::BadArgument with the old name if there is none, and with the
  /// new one if it is there already.
  bool rename(const std::wstring& section, const std::wstring& key, const std::wstring& name, exception& err);
  bool rename(const std::wstring& section, const std::wstring& name, exception& err);
  /// Replaces the comment right above a key, or above a section where `key` is empty; an empty text removes
  /// it. Each line of the text becomes one. exc::BadArgument if there is no such key or section.
  bool set_comment(const std::wstring& section, const std::wstring& key, const std::wstring& text,
                   exception& err);

  /// Adds the keys to `out`, in place of those that are there: each section is a bundle, "" is `out` itself.
  /// Values are texts, in ini_duplicates::list lists where a key repeats. exc::BadArgument with a name that a
  /// bundle takes for another one; `out` is as it was then.
  bool to_bundle(bundle& out, exception& err) const;

 private:
  struct state;
  template <class Body>
  bool change(const std::wstring& name, exception& err, const Body& body, bool is_local = true);
  bool save_to(const file& path, bool if_unchanged, exception& err);

  std::unique_ptr<state> state_;
};

}  // namespace ruvo

namespace ruvo::serializer {

/// INI as bundles: sections are nested bundles, keys before the first section stand at the top.
class KESTA_API ini : public iserializer {
 public:
  ini();
  /// In another dialect than that of ini_dialect().
  explicit ini(const ini_dialect& dialect);
  ini(const ini& other);
  ini& operator=(const ini& other);
  ~ini() override;

  /// In the order and spelling in which the bundles got their keys, those at the top first. True on FAILURE,
  /// as ini_file::set(). `options` has no meaning.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Reads as ini_file::to_bundle(), and strictly: a line that means nothing is exc::BadFormat at its
  /// position. True on FAILURE; `out` is as it was then.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;

 private:
  ini_dialect dialect_;
};

/// Keys with values, without sections: ini_dialect::dotenv(), or another dialect.
class KESTA_API key_value : public ini {
 public:
  key_value();
  explicit key_value(const ini_dialect& dialect);  ///< Its sections are not known.
  key_value(const key_value& other);
  key_value& operator=(const key_value& other);
  ~key_value() override;
};

}  // namespace ruvo::serializer

#include <ruvo/names_back.hpp>
