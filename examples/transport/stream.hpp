// SPDX-License-Identifier: BSL-1.0
#pragma once

// A connection as the protocols see it. sockets.cpp makes one; tls_schannel.cpp makes one that is secure of
// another. Failures are thrown as ruvo::exc::RunTime.

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace transport {

/// How long to wait.
struct patience {
  std::chrono::milliseconds silence{20000};  ///< Until the other side takes or gives a byte.
  std::chrono::milliseconds whole{300000};   ///< For all that is done with a connection.
};

class stream {
 public:
  stream() = default;
  stream(const stream&) = delete;
  stream& operator=(const stream&) = delete;
  virtual ~stream() = default;  ///< Closes the connection.

  /// Sends all of the bytes.
  virtual void send(std::string_view bytes) = 0;
  /// Waits for bytes and gives how many there are, at most `room`; 0 at the end of the stream.
  virtual std::size_t receive(char* to, std::size_t room) = 0;
};

/// The host is a name or an address in digits.
std::unique_ptr<stream> connect(const std::string& host, unsigned short port, const patience& wait);

/// The same connection under TLS, with the server's certificate checked for the host: by the system, or where
/// `pin` is not empty against that SHA-256 of the certificate, in lower-case hexadecimal digits.
std::unique_ptr<stream> secure(std::unique_ptr<stream> clear, const std::string& host,
                               const std::string& pin);

/// Reads lines and blocks out of a stream, of which it keeps what came too early.
class reader {
 public:
  explicit reader(stream& from) : from_(from) {}

  /// The next line without its CRLF (or LF). One of more than `most` bytes, and the end of the stream, fail.
  std::string line(std::size_t most);
  /// Whether bytes were received that nobody asked for yet.
  bool has_more() const { return !pending_.empty(); }

 private:
  stream& from_;
  std::string pending_;
};

}  // namespace transport
