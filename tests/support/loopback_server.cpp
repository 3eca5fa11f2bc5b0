#include "loopback_server.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <stdexcept>

namespace talp::test {

RefusingPort::RefusingPort() : RefusingPort(false) {}

// A TCP socket bound to 127.0.0.1 at a free port, listening or not.
RefusingPort::RefusingPort(bool listen) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* raw = reinterpret_cast<sockaddr*>(&address);
  if (!socket_.IsValid() || ::bind(socket_.Get(), raw, size) != 0 || (listen && ::listen(socket_.Get(), 4) != 0) ||
      ::getsockname(socket_.Get(), raw, &size) != 0) {
    throw std::runtime_error("cannot bind to 127.0.0.1");
  }
  port_ = ntohs(address.sin_port);
}

LoopbackServer::LoopbackServer(Mode mode, std::vector<std::string> answer)
    : RefusingPort(true), thread_([this, mode, answer = std::move(answer)] { Serve(mode, answer); }) {}

LoopbackServer::~LoopbackServer() {
  if (thread_.joinable()) thread_.join();
}

const std::string& LoopbackServer::Received() {
  if (thread_.joinable()) thread_.join();
  return received_;
}

void LoopbackServer::Serve(Mode mode, const std::vector<std::string>& answer) {
  constexpr int kWaitMs = 5000;
  pollfd ready{socket_.Get(), POLLIN, 0};
  if (::poll(&ready, 1, kWaitMs) != 1) return;
  const host::UniqueFd client(::accept(socket_.Get(), nullptr, nullptr));
  const timeval limit{kWaitMs / 1000, 0};
  ::setsockopt(client.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(client.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  char buffer[65536];
  while (mode == Mode::kReadUntilClose ||
         (mode == Mode::kAnswerAfterBlankLine && received_.find("\r\n\r\n") == std::string::npos)) {
    const ssize_t count = ::recv(client.Get(), buffer, sizeof buffer, 0);
    if (count <= 0) break;
    received_.append(buffer, static_cast<std::size_t>(count));
  }
  for (const std::string& packet : answer) {
    for (std::size_t sent = 0; sent < packet.size();) {
      const ssize_t count = ::send(client.Get(), packet.data() + sent, packet.size() - sent, MSG_NOSIGNAL);
      if (count <= 0) return;
      sent += static_cast<std::size_t>(count);
    }
  }
}

}  // namespace talp::test
