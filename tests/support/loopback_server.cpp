#include "loopback_server.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <stdexcept>

namespace talp::test {

namespace {

constexpr int kWaitMs = 5000;

void Check(bool ok, const char* what) {
  if (!ok) throw std::runtime_error(what);
}


// A TCP socket bound to 127.0.0.1 at a free port, listening or not; its port.
int BindLoopback(const host::UniqueFd& socket, bool listen) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* raw = reinterpret_cast<sockaddr*>(&address);
  Check(socket.IsValid() && ::bind(socket.Get(), raw, size) == 0 && (!listen || ::listen(socket.Get(), 4) == 0) &&
            ::getsockname(socket.Get(), raw, &size) == 0,
        "cannot bind to 127.0.0.1");
  return ntohs(address.sin_port);
}

}  // namespace

LoopbackListener::LoopbackListener()
    : socket_(::socket(AF_INET, SOCK_STREAM, 0)), port_(BindLoopback(socket_, true)) {}

RefusingPort::RefusingPort() : socket_(::socket(AF_INET, SOCK_STREAM, 0)), port_(BindLoopback(socket_, false)) {}

host::UniqueFd LoopbackListener::Accept() {
  pollfd ready{socket_.Get(), POLLIN, 0};
  if (::poll(&ready, 1, kWaitMs) != 1) return {};
  host::UniqueFd client(::accept(socket_.Get(), nullptr, nullptr));
  const timeval limit{kWaitMs / 1000, 0};
  ::setsockopt(client.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  ::setsockopt(client.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  return client;
}

LoopbackServer::LoopbackServer(Mode mode, std::vector<std::string> answer)
    : thread_([this, mode, answer = std::move(answer)] { Serve(mode, answer); }) {}

LoopbackServer::~LoopbackServer() {
  if (thread_.joinable()) thread_.join();
}

const std::string& LoopbackServer::Received() {
  if (thread_.joinable()) thread_.join();
  return received_;
}

void LoopbackServer::Serve(Mode mode, const std::vector<std::string>& answer) {
  host::UniqueFd client = listener_.Accept();
  if (!client.IsValid()) return;
  char buffer[65536];
  while (mode == Mode::kReadUntilClose ||
         (mode == Mode::kAnswerAfterBlankLine && received_.find("\r\n\r\n") == std::string::npos)) {
    const ssize_t count = ::recv(client.Get(), buffer, sizeof buffer, 0);
    if (count <= 0) break;
    received_.append(buffer, static_cast<std::size_t>(count));
  }
  for (const std::string& packet : answer) {
    std::size_t sent = 0;
    while (sent < packet.size()) {
      const ssize_t count = ::send(client.Get(), packet.data() + sent, packet.size() - sent, MSG_NOSIGNAL);
      if (count <= 0) return;
      sent += static_cast<std::size_t>(count);
    }
  }
}

}  // namespace talp::test
