// SPDX-License-Identifier: BSL-1.0
#pragma once

// The values of HTTP's header fields: with parameters, in lists, Content-Disposition; and what a transport
// asks before it sends a message. ruvo::serializer::http_headers has a value with parameters as a bundle.
//
//   ruvo::http::header_value type;
//   if (ruvo::http::read_header(type, answer.get_content_type(), failure) && type.get(L"charset") ==
//   L"utf-8") ...

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/forms.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/http.hpp>
#include <ruvo/iserializer.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::http {

/// Whether a text can be the name of a field: a token (RFC 9110, 5.6.2).
KESTA_API bool is_field_name(std::wstring_view name) noexcept;
/// Whether a text can be the value of a field: neither CR, LF and NUL nor another control character but TAB,
/// those from U+007F to U+009F among them.
KESTA_API bool is_field_value(std::wstring_view value) noexcept;

/// A value and its parameters, `text/html; charset=utf-8; q=0.5`.
struct header_value {
  std::wstring value{};  ///< What stands before the first ";", quotation marks and all.
  fields parameters{};   ///< Decoded, in their order. Names ignore case and come once.

  /// The first parameter whose name differs in the case of A-Z at most, otherwise `fallback`.
  KESTA_API std::wstring get(const std::wstring& name, const std::wstring& fallback = {}) const;
  /// Whether both are the same; the names of parameters count as they are spelled.
  bool operator==(const header_value& other) const = default;
};

/// Writes a value with its parameters, each as a token, a quoted string or, beyond ASCII, as an extended
/// value (`name*=UTF-8''...`, RFC 8187, in which half a surrogate pair is U+FFFD), and replaces `out`.
/// Several are separated by ", ".
///
/// True is success; a failure leaves `out` as it was and is copied to `err`: exc::BadArgument with the name
/// of a parameter that is no token or has one of `*'%`, comes twice or whose value is no field value, or with
/// the value itself where that is empty, no field value, has blanks around it, goes beyond ASCII or holds ";"
/// or, in a list, "," outside of quotation marks.
KESTA_API bool write_header(std::wstring& out, const header_value& in, exception& err);
KESTA_API bool write_header_list(std::wstring& out, const std::vector<header_value>& in, exception& err);

/// Reads a value with its parameters, or a list of them, and replaces `out`; empty elements of a list are
/// passed over. Extended values count more than plain ones of the same name (RFC 8187), and may be in UTF-8,
/// ISO-8859-1, ISO-8859-15 or Windows-1252.
///
/// True is success; a failure leaves `out` as it was and is copied to `err`: exc::BadFormat at the position
/// (serializer::failure_position()) of what the grammar of RFC 9110, 5.6.6, does not have, such as a
/// parameter without a value or one that comes twice, and beyond 65,536 units.
KESTA_API bool read_header(header_value& out, std::wstring_view text, exception& err);
KESTA_API bool read_header_list(std::vector<header_value>& out, std::wstring_view text, exception& err);

/// Content-Disposition (RFC 6266): "attachment" and the name under which what follows may be saved. A name
/// beyond ASCII, or with what old programs take for an escape, is written twice: as `filename` with "_" for
/// each such character, and as `filename*`. True is success; a failure is copied to `err`: exc::BadArgument
/// with "filename" for a name that is no field value, and with the type where that is no token.
KESTA_API bool write_content_disposition(std::wstring& out, const std::wstring& type,
                                         const std::wstring& filename, exception& err);
/// Reads one, `filename*` before `filename`, taking also what programs write wrongly: names with blanks and
/// without quotation marks, in no encoding that is known (`filename` counts then). Of the name only what
/// stands behind the last "/" or "\" is kept; it may be empty, and no name that the system takes
/// (mime::safe_name()). True is success; the one failure is exc::BadFormat for a type that is no token.
KESTA_API bool read_content_disposition(std::wstring& type, std::wstring& filename, std::wstring_view text,
                                        exception& err);

/// Whether a message can be sent without breaking the wire: for a transport, before its first byte. True if
/// so; otherwise exc::BadArgument is copied to `err`, with the name of the first header, in their order,
/// whose name is no token or whose value is no field value, or with "URL" for an address with blanks or
/// control characters or beyond ASCII. An answer's cookies count as headers named "Set-Cookie". Values beyond
/// ASCII pass: they are sent in UTF-8.
KESTA_API bool check(const request& message, exception& err);
KESTA_API bool check(const response& message, exception& err);

/// The body of an answer as text: bytes are decoded from the encoding that the parameter "charset" of its
/// Content-Type names (UTF-8, US-ASCII, ISO-8859-1, ISO-8859-15, Windows-1252), without one from UTF-8. True
/// is success; otherwise exc::BadArgument with the name of an encoding that is not known, or exc::BadFormat
/// for bytes that are no character, is copied to `err`, and `out` is as it was.
KESTA_API bool body_text(std::wstring& out, const response& message, exception& err);

}  // namespace ruvo::http

namespace ruvo::serializer {

/// A header field's value as a bundle: "__value__" is what stands before the first ";", the other keys are
/// the parameters, in the order and spelling in which the bundle got them.
class KESTA_API http_headers : public iserializer {
 public:
  http_headers();
  http_headers(const http_headers& other) noexcept;
  http_headers& operator=(const http_headers& other) noexcept;
  ~http_headers() override;

  /// True on FAILURE: as http::write_header(), and exc::BadArgument with the key of a value that is no
  /// scalar. `options` has no meaning.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Adds the value and its parameters, in place of keys that are there. True on FAILURE, as
  /// http::read_header(); `out` is as it was then.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;
};

}  // namespace ruvo::serializer

#include <ruvo/names_back.hpp>
