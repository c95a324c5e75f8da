// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::mime, messages of several parts (RFC 2045 to 2047, 2183, 2231) as values, and ruvo::serializer::mime,
// the same as bundles. Mails are made of them by <ruvo/smtp/wire.hpp>.
//
//   ruvo::mime::part message = ruvo::mime::part::multipart(L"mixed");
//   message.set_header(L"Subject", L"Año nuevo");
//   message.add(ruvo::mime::part::text(L"Adjunto la lista."));
//   message.add(ruvo::mime::part::attachment(L"C:\\listas\\precios.pdf"));
//   std::string bytes = ruvo::mime::to_bytes(message);

#include <ruvo/api.hpp>
#include <ruvo/binary.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/file.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/iserializer.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Messages of several parts, as they travel.
///
/// What makes a field refuses CR, LF, NUL and every other control character but TAB, U+0080 to U+009F among
/// them: it fails with the name of the field, and nothing is ever removed without a word.
namespace ruvo::mime {

/// A part of a message, or the whole of it: fields, and a content or further parts. A new one is an empty
/// plain text. Setters throw exc::BadArgument with the name of the field for what it cannot hold, and leave
/// the part as it was.
class KESTA_API part {
 public:
  part() noexcept;
  part(const part& other);
  part(part&& other) noexcept;
  ~part();
  part& operator=(const part& other);
  part& operator=(part&& other) noexcept;

  // --- making

  /// A text, "text/plain" or another subtype. It is sent in UTF-8, each LF as CRLF.
  static part text(const std::wstring& text, const std::wstring& subtype = L"plain");
  /// Bytes of a type, "image/png"; with a name, an attachment. A "message/..." is sent as it is: its lines
  /// are to be of ASCII, end with CRLF and have at most 998 characters.
  static part bytes(const binary& content, const std::wstring& type, const std::wstring& name = {});
  /// A file as an attachment under its own or another name. It is opened, and read piece by piece, whenever
  /// the part is written; its type follows from the name (files::get_mimetype). Mails and pages that are a
  /// message themselves (.eml, .mhtml) go as "application/octet-stream", since mail would not leave their
  /// bytes alone.
  static part attachment(const file& source, const std::wstring& name = {});
  /// A part of parts: "mixed", "alternative" (the same from the plainest to the richest), "related" (a page
  /// and what it shows).
  static part multipart(const std::wstring& subtype = L"mixed");

  /// Adds a part behind the others. Throws exc::BadArgument with the type if this is no multipart, or if more
  /// than 100 levels would nest.
  part& add(part child);

  // --- fields

  /// The texts of all fields of the name, which replace each other. The text may hold any characters: what is
  /// beyond ASCII is encoded. Content-Type and Content-Disposition are read with their parameters;
  /// MIME-Version and Content-Transfer-Encoding are the writer's and refused.
  part& set_header(const std::wstring& name, const std::wstring& text);
  /// The same behind the fields of that name, for those that may repeat.
  part& add_header(const std::wstring& name, const std::wstring& text);
  /// As set_header() for a structured field, as it is to be sent: nothing of it is encoded.
  part& set_field(const std::wstring& name, const std::wstring& value);
  /// The number of fields removed.
  std::size_t erase_header(const std::wstring& name);
  /// The text of the first field of the name, which ignores the case of A-Z: unfolded, encoded words decoded.
  /// Control characters that come out of these are blanks. Empty where there is none.
  std::wstring get_header(const std::wstring& name) const;
  /// The same as it was sent, unfolded.
  std::wstring get_field(const std::wstring& name) const;
  /// All fields but those that the writer makes, in their order, with their texts.
  std::vector<std::pair<std::wstring, std::wstring>> get_headers() const;

  /// "text/plain", in lower case.
  std::wstring get_type() const;
  /// Whether the type begins with "multipart/".
  bool is_multipart() const noexcept;
  /// A parameter of the type: "charset". Empty where there is none. Names ignore the case of A-Z.
  std::wstring get_parameter(const std::wstring& name) const;
  part& set_parameter(const std::wstring& name, const std::wstring& value);
  /// "attachment", "inline" or another word in lower case; empty where nothing is said.
  std::wstring get_disposition() const;
  part& set_disposition(const std::wstring& disposition);
  /// The name under which the part is to be saved: what stands behind the last "/" or "\" of what was sent.
  /// It may be no name that the system takes: see safe_name().
  std::wstring get_filename() const;
  part& set_filename(const std::wstring& name);
  /// What a page calls the part by, "cid:...", without "<>".
  std::wstring get_content_id() const;
  part& set_content_id(const std::wstring& id);

  // --- content

  /// The parts of a multipart; valid until this part is changed, moved from or destroyed.
  const std::vector<part>& get_parts() const noexcept;
  /// The bytes, decoded. Those of an attached file are read from it, which throws the failures of files.
  binary get_content() const;
  /// The same without a copy; empty of an attached file. Valid as the parts.
  const std::string& get_bytes() const noexcept;
  /// The file that is attached; empty of all other parts.
  const file& get_source() const noexcept;
  /// The content as text, from the encoding that "charset" names: UTF-8, US-ASCII, ISO-8859-1, ISO-8859-15,
  /// Windows-1252; without one UTF-8. Malformed parts become U+FFFD. Throws exc::BadFormat, with the name as
  /// its detail, for another encoding.
  std::wstring get_text() const;
  /// Whether reading found what the part's own encoding does not have, an encoding that is not known, or no
  /// end of a multipart. What could be read is there.
  bool is_damaged() const noexcept;

 private:
  friend struct part_access;
  struct data;

  const data& get() const noexcept;
  data& own();

  std::unique_ptr<data> data_;  // null for what a new part is
};

// --- writing

/// What the transport can do.
struct write_options {
  bool utf8 = false;  ///< SMTPUTF8 (RFC 6531): fields may go beyond ASCII, which fails otherwise.
};

/// Takes a piece of a message of at most some 100 KB, valid during the call; false ends the writing.
using piece_sink = std::function<bool(std::string_view piece)>;

/// Writes the message: lines of at most 998 characters, encoded words of at most 75, ended by CRLF, the
/// content as quoted-printable or Base64, whichever is shorter. The boundaries between parts can occur in
/// none. True is success; a failure is copied to `err`: exc::BadArgument with the name of a field that cannot
/// be written or the type of a content that cannot be sent, exc::EmptyArgument with the type of a multipart
/// without parts, exc::ProcessCanceled where the sink gives false, and those of files that are attached or
/// written.
///
/// Beside the message and the texts in it some 300 KB of memory are used, whatever the size of attached
/// files. A message in memory replaces `out`, and on failure leaves it as it was; a file is written as
/// files::write() does: the message has the name when all of it is on the disk.
KESTA_API bool write(std::string& out, const part& message, exception& err,
                     const write_options& options = {});
KESTA_API bool write(const file& to, const part& message, exception& err, const write_options& options = {});
KESTA_API bool write(const piece_sink& to, const part& message, exception& err,
                     const write_options& options = {});
/// The message in memory; throws the failures above.
KESTA_API std::string to_bytes(const part& message, const write_options& options = {});

// --- reading

/// What a message from elsewhere may take. More is a failure.
struct limits {
  std::size_t bytes = std::size_t{256} << 20;        ///< Of the whole message.
  std::size_t header_bytes = std::size_t{16} << 10;  ///< Of the fields of one part.
  std::size_t parts = 1000;                          ///< In all levels, multiparts counted.
  std::size_t levels = 10;                           ///< Of nested multiparts; at most 100.
};

/// Reads a message. True is success; a failure leaves `out` as it was and is copied to `err`: exc::BadFormat,
/// with what is wrong as its detail and its position for serializer::failure_position(), counted in bytes
/// from 1.
///
/// Reading takes what is common though wrong: lines that end with LF, fields that go on behind the limit of
/// a line, text beyond ASCII in fields (UTF-8, else Windows-1252), a multipart that does not end. A line
/// among the fields that is none is left out and makes the part damaged. A message within a message
/// ("message/rfc822") is a content as others, to be read by itself. Wrong are a multipart without a boundary,
/// one whose boundary is nowhere, and what is beyond a limit.
KESTA_API bool read(part& out, std::string_view bytes, exception& err, const limits& most = {});
/// The same; throws the failure.
KESTA_API part read(std::string_view bytes, const limits& most = {});

// --- names and encodings

/// A name that the system takes for a file, of one that came from elsewhere: only what stands behind the last
/// separator, without control characters and those that change the direction of writing, with "_" for each of
/// `<>:"|?*` and before the names of devices (CON, NUL, COM1...), without blanks and points at its end, cut
/// to 200 units before its extension. Empty where nothing is left.
KESTA_API std::wstring safe_name(const std::wstring& name);

/// Decodes the encoded words (RFC 2047) of an unfolded field, as get_header() does.
KESTA_API std::wstring decode_words(std::wstring_view text);

/// Quoted-printable of a text's bytes: lines of at most 76 characters, CRLF for LF and CRLF.
KESTA_API std::string to_quoted_printable(std::string_view text);
/// The bytes that it stands for; what is wrong stays as it stands.
KESTA_API std::string from_quoted_printable(std::string_view text);

}  // namespace ruvo::mime

namespace ruvo::serializer {

/// Messages as bundles: "headers" (a bundle of texts, lists where fields repeat), "type" with its parameters,
/// and either "parts" (a list of such bundles) or "body", a text of types "text/..." and bytes of others;
/// further "filename" and "disposition" where they are said.
class KESTA_API mime : public iserializer {
 public:
  mime();
  ~mime() override;

  /// Writes the message of a bundle. Without "type" it is "text/plain" for a text, "application/octet-stream"
  /// for bytes, "multipart/mixed" for parts. True on FAILURE: as write(), and exc::BadArgument with the key
  /// of an entry that is of another kind.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Reads a message; units beyond ASCII count as their UTF-8. A text in an encoding that is not known comes
  /// as bytes. True on FAILURE: as read(); `out` is as it was then.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;
};

}  // namespace ruvo::serializer
