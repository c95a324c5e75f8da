// SPDX-License-Identifier: BSL-1.0
#pragma once

// An HTTP/1.1 client: one connection for each request, bodies of a length or in chunks, redirects.

#include <ruvo/forms.hpp>
#include <ruvo/http.hpp>
#include <ruvo/url.hpp>

#include <string>

#include "http_parser.hpp"
#include "stream.hpp"

namespace transport {

struct http_options {
  patience wait;
  http_limits most;
  int redirects = 5;        ///< Followed at most; more fail.
  std::string certificate;  ///< As `pin` of secure().
};

struct http_answer {
  /// The fields, of which repeated ones are joined by ", " but for Set-Cookie; the body as bytes, which
  /// ruvo::http::body_text() decodes; and the status: 2xx is OK, any other one an exception with its number
  /// as the code, and what the network fails at an exception, too.
  ruvo::http::response message;
  ruvo::http::fields fields;  ///< As they came.
  ruvo::http::url url;        ///< Where the answer came from, after redirects.
};

/// Sends the message with a method and gives the answer; never throws what the network does. Redirects are
/// followed: with 307 and 308 the message goes on as it is, otherwise as GET without a body; never from https
/// to http, and to another server without the fields Authorization and Cookie.
http_answer fetch(const std::string& method, const ruvo::http::request& message,
                  const http_options& how = {});

}  // namespace transport
