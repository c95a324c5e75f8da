#pragma once

// A blocking TCP client for the loopback tests of messages.

#include <cstdint>
#include <string>
#include <string_view>

namespace transport {

/// A connection, closed at the end of its life. Every failure, a silence of 20 seconds included, throws
/// ruvo::exc::RunTime.
class connection {
 public:
  connection(const std::string& host, unsigned short port);  ///< `host` in digits: "127.0.0.1".
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
