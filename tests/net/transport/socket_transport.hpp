// SPDX-License-Identifier: BSL-1.0
#pragma once

// A blocking TCP client for the loopback tests of messages.

#include <cstdint>
#include <string>
#include <string_view>

namespace transport {

struct place {
  std::string host;  // in digits: "127.0.0.1"
  unsigned short port;
};

/// Runs a client's program: its arguments are HOST and PORT. The exit code is 0 when `client` is content.
int run(int argc, char** argv, bool (*client)(const place& server));

/// A connection, closed at the end of its life. Every failure, a silence of 20 seconds included, throws
/// ruvo::exc::RunTime.
class connection {
 public:
  explicit connection(const place& server);
  connection(const connection&) = delete;
  connection& operator=(const connection&) = delete;
  ~connection();

  void send(std::string_view bytes);
  /// The next line without its CRLF (or LF); the end of the stream before any ends it fails.
  std::string receive_line();
  /// That many bytes; fewer fail.
  std::string receive(std::size_t count);
  /// Everything up to the end of the stream.
  std::string receive_rest();

 private:
  bool fill();

  std::uintptr_t socket_;
  std::string pending_;  // received and not yet handed out
};

}  // namespace transport
