// SPDX-License-Identifier: BSL-1.0
#include "socket_transport.hpp"

#include <ruvo/exc.hpp>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <utility>

#if defined(_WIN32)
#  include <winsock2.h>
#  include <ws2tcpip.h>
#else
#  include <arpa/inet.h>
#  include <errno.h>
#  include <netinet/in.h>
#  include <sys/socket.h>
#  include <sys/time.h>
#  include <unistd.h>
#endif

namespace transport {

namespace {

constexpr int silence_seconds = 20;

#if defined(_WIN32)

using handle = SOCKET;
constexpr int send_flags = 0;

/// Winsock, from the first connection to the end of the program.
void start() {
  struct session {
    session() : failed(WSAStartup(MAKEWORD(2, 2), &data) != 0) {}
    ~session() {
      if (!failed) WSACleanup();
    }
    WSADATA data;
    bool failed;
  };
  static const session winsock;
  if (winsock.failed) throw ruvo::exc::RunTime(L"no Winsock");
}
int last_error() noexcept { return WSAGetLastError(); }
void close_handle(handle s) noexcept { closesocket(s); }
bool is_valid(handle s) noexcept { return s != INVALID_SOCKET; }
void set_timeouts(handle s) noexcept {
  const DWORD milliseconds = silence_seconds * 1000;
  for (const int side : {SO_RCVTIMEO, SO_SNDTIMEO})
    setsockopt(s, SOL_SOCKET, side, reinterpret_cast<const char*>(&milliseconds), sizeof milliseconds);
}

#else

using handle = int;
constexpr int send_flags = MSG_NOSIGNAL;

void start() noexcept {}
int last_error() noexcept { return errno; }
void close_handle(handle s) noexcept { ::close(s); }
bool is_valid(handle s) noexcept { return s >= 0; }
void set_timeouts(handle s) noexcept {
  const timeval silence = {silence_seconds, 0};
  for (const int side : {SO_RCVTIMEO, SO_SNDTIMEO}) setsockopt(s, SOL_SOCKET, side, &silence, sizeof silence);
}

#endif

[[noreturn]] void fail(const std::wstring& what) {
  throw ruvo::exc::RunTime(what + L", error " + std::to_wstring(last_error()));
}

sockaddr_in address(const std::string& host, unsigned short port) {
  sockaddr_in to = {};
  to.sin_family = AF_INET;
  to.sin_port = htons(port);
  if (inet_pton(AF_INET, host.c_str(), &to.sin_addr) != 1) throw ruvo::exc::RunTime(L"no address in digits");
  return to;
}

handle opened(const std::string& host, unsigned short port) {
  start();
  const handle s = ::socket(AF_INET, SOCK_STREAM, 0);
  if (!is_valid(s)) fail(L"no socket");
  set_timeouts(s);
  const sockaddr_in to = address(host, port);
  if (::connect(s, reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0) {
    const int error = last_error();
    close_handle(s);
    throw ruvo::exc::RunTime(L"no connection to port " + std::to_wstring(port) + L", error " +
                             std::to_wstring(error));
  }
  return s;
}

handle native(std::uintptr_t s) noexcept { return static_cast<handle>(s); }

}  // namespace

int run(int argc, char** argv, bool (*client)(const place& server)) {
  if (argc != 3) return 1;
  try {
    return client({argv[1], static_cast<unsigned short>(std::strtoul(argv[2], nullptr, 10))}) ? 0 : 1;
  } catch (const std::exception& error) {
    std::printf("failed: %s\n", error.what());
    return 1;
  }
}

connection::connection(const place& server)
    : socket_(static_cast<std::uintptr_t>(opened(server.host, server.port))) {}

connection::~connection() { close_handle(native(socket_)); }

void connection::send(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto part = static_cast<int>(std::min<std::size_t>(bytes.size(), 1 << 16));
    const auto sent = ::send(native(socket_), bytes.data(), part, send_flags);
    if (sent <= 0) fail(L"sending failed");
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

/// False at the end of the stream.
bool connection::fill() {
  char part[4096];
  const auto got = ::recv(native(socket_), part, sizeof part, 0);
  if (got < 0) fail(L"receiving failed");
  pending_.append(part, static_cast<std::size_t>(got));
  return got > 0;
}

std::string connection::receive_line() {
  std::size_t end;
  while ((end = pending_.find('\n')) == pending_.npos)
    if (!fill()) throw ruvo::exc::RunTime(L"the stream ended within a line");
  std::string line = pending_.substr(0, end);
  pending_.erase(0, end + 1);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string connection::receive(std::size_t count) {
  while (pending_.size() < count)
    if (!fill()) throw ruvo::exc::RunTime(L"the stream ended too early");
  std::string bytes = pending_.substr(0, count);
  pending_.erase(0, count);
  return bytes;
}

std::string connection::receive_rest() {
  while (fill()) {
  }
  return std::exchange(pending_, std::string());
}

}  // namespace transport
