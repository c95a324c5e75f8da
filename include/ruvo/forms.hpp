// SPDX-License-Identifier: BSL-1.0
#pragma once

// What pages send: fields in order, with exact names that may repeat, as application/x-www-form-urlencoded
// and as multipart/form-data, both ways. ruvo::serializer::http_forms has the former as bundles.
//
//   ruvo::http::fields order;
//   order.add(L"producto", L"Añil & Cía.").add(L"tamaño", L"10+2");
//   ruvo::http::request request(L"https://shop.example/orders", order.form_text());
//   request["Content-Type"] = ruvo::http::form_type;

#include <ruvo/api.hpp>
#include <ruvo/exception.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/iserializer.hpp>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo::http {

/// The content type of what fields::form_text() gives.
inline constexpr wchar_t form_type[] = L"application/x-www-form-urlencoded";

/// A name and its value; both may be any text, and empty.
struct field {
  std::wstring name{};   ///< As it is spelled.
  std::wstring value{};  ///< Decoded.

  /// Whether both are the same.
  bool operator==(const field& other) const = default;
};

/// Fields in the order in which they were added. Names are exact, case counts, and may repeat. Look-up goes
/// through all of them.
class KESTA_API fields {
 public:
  using const_iterator = std::vector<field>::const_iterator;
  using value_type = field;

  fields() noexcept;
  /// In the order of the list; names may repeat.
  fields(std::initializer_list<field> all);
  fields(const fields& other);
  fields(fields&& other) noexcept;
  fields& operator=(const fields& other);
  fields& operator=(fields&& other) noexcept;
  ~fields();

  /// Adds a field behind the others.
  fields& add(const std::wstring& name, const std::wstring& value);
  /// Leaves one field of the name, with this value, in the place of the first.
  fields& set(const std::wstring& name, const std::wstring& value);
  /// The number of fields removed.
  std::size_t erase(const std::wstring& name);
  void clear() noexcept;

  /// The value of the first field of the name, otherwise `fallback`.
  std::wstring get(const std::wstring& name, const std::wstring& fallback = {}) const;
  /// The same as a pointer, null where there is none; valid until the fields are changed or destroyed.
  const std::wstring* find(const std::wstring& name) const noexcept;
  /// All values of the name, in their order.
  std::vector<std::wstring> get_all(const std::wstring& name) const;
  /// How many fields have the name.
  std::size_t count(const std::wstring& name) const noexcept;

  /// Each field counts, also of a name that repeats.
  std::size_t size() const noexcept { return all_.size(); }
  bool empty() const noexcept { return all_.empty(); }  ///< Whether there are none.
  /// The fields in their order; valid until they are changed or destroyed.
  const_iterator begin() const noexcept { return all_.begin(); }
  const_iterator end() const noexcept { return all_.end(); }  ///< Behind the last one.
  /// The n-th field from 0; throws exc::MissingElement beyond the last.
  const field& operator[](std::size_t n) const;

  /// Whether the fields are the same, in the same order.
  bool operator==(const fields& other) const noexcept;

  /// `name=value&name=value` in UTF-8, as the URL Standard writes application/x-www-form-urlencoded: letters,
  /// digits and `*-._` stay, a blank is "+", other bytes are "%" and two capital digits. It is ASCII alone,
  /// for a body or behind the "?" of an address. Line ends stay as they are; half a surrogate pair is U+FFFD.
  std::wstring form_text() const;

 private:
  std::vector<field> all_;
};

/// How a form is read.
struct form_options {
  /// Whether a "%" without two digits stays as it is and bytes that are no UTF-8 become U+FFFD, as browsers
  /// have it; otherwise they are failures.
  bool lenient = false;
  std::size_t fields = 10'000;                ///< At most.
  std::size_t units = std::size_t{16} << 20;  ///< Of the text, or bytes, at most.
};

/// Reads application/x-www-form-urlencoded in UTF-8 and replaces `out`. A field without "=" has no value, one
/// without anything is none. True is success; a failure leaves `out` as it was and is copied to `err`:
/// exc::BadFormat at the position (serializer::failure_position()) of the first unit or byte that is wrong,
/// or with which a limit is passed.
KESTA_API bool read_form(fields& out, std::wstring_view text, exception& err,
                         const form_options& options = {});
KESTA_API bool read_form(fields& out, std::string_view bytes, exception& err,
                         const form_options& options = {});

// --- multipart/form-data, RFC 7578 as the HTML Standard writes it

/// A field of such a form: a text, or a file with its name and type.
struct form_part {
  std::wstring name{};    ///< Of the field; exact, may repeat.
  std::string content{};  ///< Bytes; of a text field its UTF-8.
  /// Of a file. What was read has no path: only what stands behind the last "/" or "\".
  std::wstring filename{};
  std::wstring content_type{};  ///< "image/png"; empty of text fields.
  bool is_file = false;  ///< Whether a file name is said, an empty one too (a file that was not chosen).

  /// Whether all of it is the same.
  bool operator==(const form_part& other) const = default;
};

/// What reading takes at most.
struct multipart_limits {
  std::size_t parts = 1000;                    ///< Files and texts together.
  std::size_t header_bytes = 16 << 10;         ///< Of the fields of one part.
  std::size_t bytes = std::size_t{256} << 20;  ///< Of the whole body.
};

/// Writes the parts and replaces `out` by the bytes and `content_type` by `multipart/form-data;
/// boundary=...`. The boundary is random, a bare token, and stands in none of the parts. Names are in UTF-8,
/// with `%22`,
/// `%0D` and `%0A` for quotation marks, CR and LF, and `filename` is plain, never `filename*`: both as
/// browsers write them. A file without a type is "application/octet-stream".
///
/// True is success; a failure leaves both as they were and is copied to `err`: exc::BadArgument with the name
/// of the field whose name or file name holds a control character but CR, LF and TAB, or whose type is no
/// field value.
KESTA_API bool write_multipart(std::string& out, std::wstring& content_type,
                               const std::vector<form_part>& parts, exception& err);

/// Reads a body whose Content-Type is this and replaces `out`. Names are read as browsers write them: `%22`
/// is not decoded, since a name that holds these three characters is written the same way; a quotation mark
/// may also stand behind a backslash. Names that are no UTF-8 are Windows-1252. What stands before the first
/// boundary and behind the last one is passed over.
///
/// True is success; a failure leaves `out` as it was and is copied to `err`: exc::BadArgument with
/// "Content-Type" if that is no multipart/form-data with a boundary of 1 to 256 characters, exc::BadFormat at
/// the position, in bytes, of a part that is none, that does not end, or with which a limit is passed.
KESTA_API bool read_multipart(std::vector<form_part>& out, std::wstring_view content_type,
                              std::string_view body, exception& err, const multipart_limits& most = {});

}  // namespace ruvo::http

namespace ruvo::serializer {

/// application/x-www-form-urlencoded as bundles, in the order and the spelling in which a bundle got its
/// keys. http::fields has what bundles do not: names that differ in case alone.
class KESTA_API http_forms : public iserializer {
 public:
  http_forms();
  http_forms(const http_forms& other) noexcept;
  http_forms& operator=(const http_forms& other) noexcept;
  ~http_forms() override;

  /// A list repeats the field, an empty one is none; null is an empty value, all else its text form. True on
  /// FAILURE: exc::BadArgument with the key of a bundle, of a list in a list, or of bytes. `options` has no
  /// meaning.
  bool serialize(std::wstring& out, const bundle& in, exception* err = nullptr, int options = 0) override;
  /// Reads as http::read_form(), strictly. Values are texts; a name that repeats becomes a list. Keys that
  /// are there are replaced. True on FAILURE: exc::BadFormat, and exc::BadArgument with the second of two
  /// names that a bundle takes for one; `out` is as it was then.
  bool deserialize(bundle& out, const std::wstring& in, exception* err, int options = 0) override;
  using iserializer::deserialize;
};

}  // namespace ruvo::serializer

#include <ruvo/names_back.hpp>
