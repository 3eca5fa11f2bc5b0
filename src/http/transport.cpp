#include "http/transport.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>

#include "talp/host_services.h"

namespace talp {

namespace {

constexpr int kConnectTimeoutMs = 5000;
constexpr std::size_t kReceiveBufferSize = 4000;

bool SetNonBlocking(int fd, bool on) {
  const int flags = ::fcntl(fd, F_GETFL, 0);
  if (flags < 0) return false;
  return ::fcntl(fd, F_SETFL, on ? (flags | O_NONBLOCK) : (flags & ~O_NONBLOCK)) == 0;
}

}  // namespace

void ParseURL(const PMString& url, PMString& host, PMString& path, PMString& extra, int& port) {
  host.Clear();
  path.Clear();
  extra.Clear();
  PMString portText;
  static constexpr char kScheme[] = "http://";
  const std::size_t length = url.CharCount();
  std::size_t at = 0;
  while (at < 7 && url.GetChar(at) == static_cast<PlatformChar>(kScheme[at])) ++at;
  if (at < 7) at = 0;
  bool inPort = false;
  for (; at < length && url.GetChar(at) != U'/'; ++at) {
    const PlatformChar c = url.GetChar(at);
    if (inPort) {
      portText.Append(c);
    } else if (c == U':') {
      inPort = true;
    } else {
      host.Append(c);
    }
  }
  for (; at < length; ++at) path.Append(url.GetChar(at));
  port = portText.GetAsNumber();
  if (port == 0) port = 80;
}

std::string lookup_host(const char* name) {
  addrinfo hints{};
  hints.ai_family = AF_INET;
  hints.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  if (name == nullptr || ::getaddrinfo(name, nullptr, &hints, &found) != 0 || found == nullptr) {
    CAlert::InformationAlert("CouldNotLookUpHostName");
    return {};
  }
  sockaddr_in address{};
  std::memcpy(&address, found->ai_addr, sizeof address);
  ::freeaddrinfo(found);
  std::array<char, INET_ADDRSTRLEN> text{};
  ::inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
  return text.data();
}

host::UniqueFd connect_w_to(const std::string& host, int port) {
  const std::string name = host.c_str();
  host::UniqueFd socket(::socket(AF_INET, SOCK_STREAM, 0));
  if (!socket.IsValid() || !SetNonBlocking(socket.Get(), true)) {
    CAlert::InformationAlert("Just an error");
    return {};
  }
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = ::inet_addr(lookup_host(name.c_str()).c_str());

  if (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
    SetNonBlocking(socket.Get(), false);
    return socket;
  }
  if (errno != EINPROGRESS) {
    CAlert::InformationAlert("Just an error");
    return {};
  }
  // poll rather than select: a host process may well hold descriptors
  // beyond what an fd_set can name.
  // A signal that interrupts the wait is no time-out: the wait goes on for
  // the time that is left.
  pollfd writable{socket.Get(), POLLOUT, 0};
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kConnectTimeoutMs);
  int ready = 0;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    ready = ::poll(&writable, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
    if (ready >= 0 || errno != EINTR) break;
  }
  if (ready <= 0) {
    CAlert::InformationAlert("Timeout");
    return {};
  }
  int error = 0;
  socklen_t size = sizeof error;
  if (::getsockopt(socket.Get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0 || error != 0) {
    CAlert::InformationAlert("Error in connection");
    return {};
  }
  SetNonBlocking(socket.Get(), false);
  return socket;
}

int send_packet(int socket, std::string data) {
  std::size_t sent = 0;
  while (sent < data.size()) {
    // MSG_NOSIGNAL: a peer that has gone must not kill the host with SIGPIPE;
    // the exit below is the one reaction wanted.
    const ssize_t count = ::send(socket, data.data() + sent, data.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      CAlert::InformationAlert("Connection closed by host");
      host::EndProcess(1);
    }
    sent += static_cast<std::size_t>(count);
  }
  return 0;
}

int recieve_packet(int socket, std::string& data) {
  // One byte more than is ever read stays zero, so the appends below never
  // run past the buffer.
  std::array<char, kReceiveBufferSize + 1> buffer{};
  data = buffer.data();
  for (;;) {
    const ssize_t got = ::recv(socket, buffer.data(), kReceiveBufferSize, 0);
    if (got < 0 && errno == EINTR) continue;  // a signal cuts nothing short
    if (got < 1) return 0;
    data.append(buffer.data());
  }
}

}  // namespace talp
