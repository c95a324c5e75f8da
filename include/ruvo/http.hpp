// SPDX-License-Identifier: BSL-1.0
#pragma once

// ruvo::http, requests and answers of HTTP as values. A transport of the application's own carries them.

#include <ruvo/api.hpp>
#include <ruvo/fwd.hpp>
#include <ruvo/net.hpp>

#include <cstddef>
#include <iosfwd>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Macros of others.
#include <ruvo/names_aside.hpp>

namespace ruvo {

namespace detail {

/// A value on the heap, made when it is first written to. Copies are deep. For use inside the library: what
/// stands for an empty value differs between modules.
template <class T>
class held {
 public:
  held() noexcept = default;
  held(const held& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
  held(held&& other) noexcept = default;
  held& operator=(const held& other) { return this == &other ? *this : *this = held(other); }
  held& operator=(held&& other) noexcept = default;
  ~held() = default;

  const T& get() const noexcept { return value_ ? *value_ : none(); }
  /// As get(), for what does not change an empty value.
  T& reach() noexcept { return value_ ? *value_ : none(); }
  T& make() {
    if (!value_) value_ = std::make_unique<T>();
    return *value_;
  }

 private:
  /// Stands for the value of all that have none; always empty.
  static T& none() noexcept {
    static T empty;
    return empty;
  }

  std::unique_ptr<T> value_;
};

}  // namespace detail

namespace http {

/// A header's name on its way in, wide or narrow (UTF-8); a null pointer is the empty name. Views the wide
/// text that it is made from; of narrow text, one in ASCII of up to 64 characters costs no allocation.
class KESTA_API header_name {
 public:
  /// Implicit, so that every text is a name.
  header_name(const std::wstring& name) noexcept : view_(name) {}
  header_name(const wchar_t* name) noexcept : view_(name ? name : L"") {}
  header_name(const std::string& name);
  header_name(const char* name);
  header_name(const header_name&) = delete;
  header_name& operator=(const header_name&) = delete;
  ~header_name();

  /// As long as the text it was made from and this object live.
  std::wstring_view view() const noexcept { return view_; }

 private:
  void widen(std::string_view name);

  std::wstring_view view_;
  std::wstring large_;
  wchar_t small_[64];
};

/// Orders names without regard to the case of A-Z, by code unit.
struct KESTA_API header_order {
  /// Keys are looked up by views.
  using is_transparent = void;

  /// Whether `a` comes before `b`.
  bool operator()(std::wstring_view a, std::wstring_view b) const noexcept;
};

/// The headers of a message. Names ignore the case of A-Z, keep the spelling first inserted, and are handed
/// in wide or narrow (UTF-8). Look-up takes logarithmic time.
///
/// Names and values are stored and printed as they are. A CR or LF in one of them would print as further
/// headers: http::check() (<ruvo/header_fields.hpp>) finds it, and a transport asks that before it sends.
class KESTA_API header_table {
 public:
  using map_type = std::map<std::wstring, std::wstring, header_order>;
  using value_type = map_type::value_type;
  using size_type = map_type::size_type;
  using iterator = map_type::iterator;
  using const_iterator = map_type::const_iterator;

  /// The value, inserted empty when absent. References stay valid until the header is erased.
  std::wstring& operator[](const header_name& name);
  /// The value; an absent name throws std::out_of_range ("invalid map<K, T> key").
  std::wstring& at(const header_name& name);
  const std::wstring& at(const header_name& name) const;
  /// The header, or end().
  iterator find(const header_name& name) noexcept;
  const_iterator find(const header_name& name) const noexcept;
  /// 0 or 1.
  size_type count(const header_name& name) const noexcept;
  /// The number of headers removed, 0 or 1.
  size_type erase(const header_name& name) noexcept;

  /// The headers, in the order of their folded names.
  iterator begin() noexcept;
  iterator end() noexcept;
  const_iterator begin() const noexcept;
  const_iterator end() const noexcept;
  const_iterator cbegin() const noexcept { return begin(); }
  const_iterator cend() const noexcept { return end(); }
  /// Counts the headers alone, whatever else the message holds.
  size_type size() const noexcept;
  size_type max_size() const noexcept;
  bool empty() const noexcept { return size() == 0; }
  /// Removes the headers and leaves body, URL and status as they are.
  void clear() noexcept;

 protected:
  /// Without headers.
  header_table() noexcept;
  /// With an Accept for every type, and this Content-Type.
  explicit header_table(const wchar_t* content_type);
  header_table(const header_table& other);
  header_table(header_table&& other) noexcept;
  header_table& operator=(const header_table& other);
  header_table& operator=(header_table&& other) noexcept;
  ~header_table();

  /// Names, exactly as spelled, and values.
  bool same_headers(const header_table& other) const noexcept;
  /// What to_string() of a message with this body gives.
  std::wstring text_form(std::wstring_view body) const;

 private:
  detail::held<map_type> headers_;
};

struct body_data;  // the library's own

/// A request: headers, body, URL, and the path of a client certificate for secure connections. A new one has
/// the headers "Content-Type: text/plain;charset=UTF-8" and "Accept", for every type. One that was moved from
/// is empty.
class KESTA_API request : public header_table {
 public:
  /// With the two headers; URL and body are stored as they are, narrow ones being UTF-8.
  request();
  request(const std::wstring& url, const std::wstring& body);
  request(const std::string& url, const std::string& body);
  request(const request& other);
  request(request&& other) noexcept;
  ~request();
  request& operator=(const request& other);
  request& operator=(request&& other) noexcept;
  /// Takes the request that an xvar holds; null changes nothing, any other kind throws std::bad_cast.
  request& operator=(const var& value);
  /// An xvar that holds a copy of this request.
  operator xvar() const;

  /// Plain copies: nothing is encoded or checked, and no header follows from them. All give this request.
  request& set_url(const std::wstring& url);
  request& set_body(const std::wstring& body);
  request& set_sslCertPath(const std::wstring& path);
  /// What was set, otherwise empty; of a request that is not const also for writing.
  std::wstring& get_url();
  const std::wstring& get_url() const noexcept;
  std::wstring& get_body();
  const std::wstring& get_body() const noexcept;
  std::wstring& get_sslCertPath();
  const std::wstring& get_sslCertPath() const noexcept;

  /// A body of bytes, which is sent as it is and goes before the text body until set_body() ends it: a file,
  /// a form of several parts. The text body is sent in UTF-8, unless Content-Type names another "charset"
  /// that the transport knows.
  request& set_body_bytes(const binary& bytes);
  bool has_body_bytes() const noexcept;
  /// The bytes to send: those that were set, otherwise the UTF-8 of the text body.
  binary get_body_bytes() const;

  /// Whether the first ':' of the URL comes after three characters or more, the last of them an 's' or 'S'. A
  /// URL without ':' is not secure.
  /// @quirk Any scheme that ends in s counts as secure, not https alone.
  bool is_secure() const noexcept;

  /// Names, exactly as spelled, values, bodies and URLs; the certificate takes no part.
  bool operator==(const request& other) const noexcept;

  /// Headers and body, without a request line: "name: value" lines, an empty line, the body and CRLF. A body
  /// of bytes is shown as if it were UTF-8.
  /// @quirk Without headers two empty lines come before the body: readers of stored messages count on it.
  std::wstring to_string() const;

 private:
  detail::held<body_data> body_;
  detail::held<std::wstring> url_, certificate_;
};

/// An answer: a status, headers, and a body that grows. A new one has the status "OK" and the headers
/// "Content-Type: text/plain" and "Accept", for every type. One that was moved from has neither headers nor
/// body.
class KESTA_API response : public net::iresponse, public header_table {
 public:
  /// With the status "OK", the two headers and no body.
  response();
  response(const response& other);
  response(response&& other) noexcept;
  ~response() override;
  response& operator=(const response& other);
  response& operator=(response&& other) noexcept;
  /// Takes the response that an xvar holds, its status too; null changes nothing, any other kind throws
  /// std::bad_cast.
  response& operator=(const var& value);
  /// An xvar that holds a copy of this response.
  operator xvar() const;

  /// Replaces the whole body.
  response& set_body(const std::wstring& body);
  /// A copy of the whole body.
  std::wstring get_body() const;
  std::size_t length() const noexcept;  ///< In UTF-16 units.

  /// Appends to the body, in amortised constant time for each unit; a null pointer appends nothing. Narrow
  /// text is UTF-8 and decoded piece by piece: a character must not be split between two pieces.
  response& operator+=(const wchar_t* text);
  response& operator+=(const std::wstring& text);
  response& operator+=(const char* text);
  response& operator+=(const std::string& text);

  /// A body of bytes, as it came, to which they are appended: a character may be split between two pieces.
  /// While there is one, what the operators above append is appended in UTF-8, and the text body is empty;
  /// body_text() (<ruvo/header_fields.hpp>) decodes it. set_body() ends it.
  response& set_body_bytes(const binary& bytes);
  response& append_body_bytes(std::string_view bytes);
  bool has_body_bytes() const noexcept;
  /// The bytes of the body, or the UTF-8 of the text body.
  binary get_body_bytes() const;

  /// The values of the headers "Set-Cookie", each of its own: an answer has several, which must not be
  /// joined, and the table holds one of a name. A transport adds each here; http::cookie_jar takes them. They
  /// are in no text form.
  response& add_set_cookie(const std::wstring& value);
  const std::vector<std::wstring>& get_set_cookies() const noexcept;
  void clear_set_cookies() noexcept;

  /// The value of Content-Type, inserted empty when absent.
  const std::wstring& get_content_type();

  /// Names, exactly as spelled, values, bodies and cookies; the status takes no part.
  bool operator==(const response& other) const noexcept;

  /// As request::to_string().
  std::wstring to_string() const;

 private:
  friend KESTA_API std::wistream& operator>>(std::wistream& in, response& message);

  detail::held<body_data> body_;
};

KESTA_API std::wostream& operator<<(std::wostream& out, const request& message);
KESTA_API std::wostream& operator<<(std::wostream& out, const response& message);
/// Appends all that remains in the stream to the body, white space too.
KESTA_API std::wistream& operator>>(std::wistream& in, response& message);

}  // namespace http

}  // namespace ruvo

#include <ruvo/names_back.hpp>
