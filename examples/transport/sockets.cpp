// SPDX-License-Identifier: BSL-1.0

// TCP by Winsock or, for the tests that run on the machine at hand, by the sockets of Unix.

#include <ruvo/exc.hpp>
#include <ruvo/texto.hpp>

#include <algorithm>
#include <string>

#include "stream.hpp"

#if defined(_WIN32)
#  include <winsock2.h>
#  include <ws2tcpip.h>
#else
#  include <errno.h>
#  include <fcntl.h>
#  include <netdb.h>
#  include <netinet/in.h>
#  include <poll.h>
#  include <sys/socket.h>
#  include <unistd.h>
#endif

namespace transport {

namespace {

using clock = std::chrono::steady_clock;

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
bool would_wait(int error) noexcept { return error == WSAEWOULDBLOCK || error == WSAEINPROGRESS; }
void close_handle(handle s) noexcept { closesocket(s); }
bool is_valid(handle s) noexcept { return s != INVALID_SOCKET; }
void wait_never(handle s) noexcept {
  unsigned long yes = 1;
  ioctlsocket(s, FIONBIO, &yes);
}
/// Whether something can be done within the time; an attempt to connect that failed counts.
bool is_ready(handle s, bool to_send, long milliseconds) noexcept {
  fd_set wanted, failed;
  FD_ZERO(&wanted);
  FD_ZERO(&failed);
  FD_SET(s, &wanted);
  FD_SET(s, &failed);
  timeval time = {milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, to_send ? nullptr : &wanted, to_send ? &wanted : nullptr, &failed, &time) > 0;
}

#else

using handle = int;
constexpr int send_flags = MSG_NOSIGNAL;

void start() noexcept {}
int last_error() noexcept { return errno; }
bool would_wait(int error) noexcept { return error == EAGAIN || error == EINPROGRESS || error == EINTR; }
void close_handle(handle s) noexcept { ::close(s); }
bool is_valid(handle s) noexcept { return s >= 0; }
void wait_never(handle s) noexcept { fcntl(s, F_SETFL, fcntl(s, F_GETFL) | O_NONBLOCK); }
bool is_ready(handle s, bool to_send, long milliseconds) noexcept {
  pollfd wanted = {s, static_cast<short>(to_send ? POLLOUT : POLLIN), 0};
  return poll(&wanted, 1, static_cast<int>(milliseconds)) > 0;
}

#endif

[[noreturn]] void fail(const std::wstring& what, int error) {
  throw ruvo::exc::RunTime(what + L", error " + std::to_wstring(error));
}

class tcp_stream : public stream {
 public:
  explicit tcp_stream(const patience& wait) : wait_(wait), end_(clock::now() + wait.whole) {}
  ~tcp_stream() override { close(); }

  static constexpr int silent = -1;

  /// The error of the system, 0 for success, or `silent`.
  int try_to_connect(const addrinfo& to) {
    close();
    socket_ = ::socket(to.ai_family, to.ai_socktype, to.ai_protocol);
    open_ = is_valid(socket_);
    if (!open_) return last_error();
    wait_never(socket_);
    if (::connect(socket_, to.ai_addr, static_cast<socklen_t>(to.ai_addrlen)) == 0) return 0;
    if (!would_wait(last_error())) return last_error();
    if (!waited(true)) return silent;
    int error = 0;
    socklen_t size = sizeof error;
    getsockopt(socket_, SOL_SOCKET, SO_ERROR, reinterpret_cast<char*>(&error), &size);
    return error;
  }

  void send(std::string_view bytes) override {
    while (!bytes.empty()) {
      const auto part = static_cast<int>(std::min<std::size_t>(bytes.size(), 1 << 16));
      const auto sent = ::send(socket_, bytes.data(), part, send_flags);
      if (sent >= 0) {
        bytes.remove_prefix(static_cast<std::size_t>(sent));
      } else {
        wait_after(L"sending failed", true);
      }
    }
  }

  std::size_t receive(char* to, std::size_t room) override {
    for (;;) {
      const auto got = ::recv(socket_, to, static_cast<int>(std::min<std::size_t>(room, 1 << 20)), 0);
      if (got >= 0) return static_cast<std::size_t>(got);
      wait_after(L"receiving failed", false);
    }
  }

 private:
  void close() noexcept {
    if (open_) close_handle(socket_);
    open_ = false;
  }

  void wait_after(const wchar_t* what, bool to_send) {
    const int error = last_error();
    if (!would_wait(error)) fail(what, error);
    if (!waited(to_send)) throw ruvo::exc::RunTime(L"the other side is silent");
  }

  /// False when the time is over.
  bool waited(bool to_send) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end_ - clock::now());
    const auto time = std::min(left, wait_.silence);
    return time.count() > 0 && is_ready(socket_, to_send, static_cast<long>(time.count()));
  }

  handle socket_{};
  bool open_ = false;
  patience wait_;
  clock::time_point end_;
};

}  // namespace

std::unique_ptr<stream> connect(const std::string& host, unsigned short port, const patience& wait) {
  start();
  addrinfo wanted = {}, *found = nullptr;
  wanted.ai_socktype = SOCK_STREAM;
  const int unknown = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found);
  if (unknown) fail(L"no such host: " + ruvo::texto::to_utf_16(host), unknown);
  const std::unique_ptr<addrinfo, void (*)(addrinfo*)> all(found, [](addrinfo* each) { freeaddrinfo(each); });
  auto made = std::make_unique<tcp_stream>(wait);
  int error = 0;
  for (const addrinfo* each = found; each; each = each->ai_next) {
    error = made->try_to_connect(*each);
    if (!error) return made;
  }
  // What the last of several addresses failed at.
  fail(L"no connection to " + ruvo::texto::to_utf_16(host) + L":" + std::to_wstring(port), error);
}

}  // namespace transport
