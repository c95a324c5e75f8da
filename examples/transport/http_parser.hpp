// SPDX-License-Identifier: BSL-1.0
#pragma once

// Answers of HTTP/1.1 out of bytes, however these come in pieces. Nothing here knows of a network.

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace transport {

struct http_limits {
  std::size_t head = std::size_t{64} << 10;  ///< Bytes of the status line and the fields, trailers included.
  std::size_t body = std::size_t{64} << 20;  ///< Bytes of the body, decoded.
};

/// Reads one answer (RFC 9112), and of those with a status below 200 none. What breaks the rules throws
/// ruvo::exc::RunTime; what came before is there.
class response_parser {
 public:
  /// The answer to HEAD has no body, whatever its fields say.
  explicit response_parser(bool to_head, const http_limits& most = {}) : to_head_(to_head), most_(most) {}

  /// Takes the next bytes; those behind the answer are left alone.
  void take(std::string_view bytes);
  /// The stream ended: throws unless that ends the answer.
  void end();
  bool done() const { return state_ == state::done; }

  int status = 0;
  std::string reason;
  /// In their order, values without the blanks around them. Fields behind a chunked body are not among them.
  std::vector<std::pair<std::string, std::string>> fields;
  std::string body;

 private:
  enum class state { status, fields, sized, to_the_end, chunk_size, chunk, chunk_end, trailers, done };

  void take_line(std::string line);
  void take_status(const std::string& line);
  void take_field(const std::string& line);
  void take_chunk_size(const std::string& line);
  void begin_body();
  std::size_t take_body(std::string_view bytes);

  bool to_head_;
  http_limits most_;
  state state_ = state::status;
  std::string line_;             // the line that is not whole yet
  std::size_t head_size_ = 0;    // of all lines so far
  unsigned long long left_ = 0;  // of the body or the chunk
};

}  // namespace transport
