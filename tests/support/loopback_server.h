// A TCP server on 127.0.0.1 at a free port for the network tests, serving one
// connection in a thread of the test process. Every wait is bounded, so a
// client that never comes or never closes fails a test instead of hanging it.
#pragma once

#include <string>
#include <thread>
#include <vector>

#include "host/unique_fd.h"

namespace talp::test {

// A port on 127.0.0.1 that refuses connections: bound for the object's
// lifetime, never listening.
class RefusingPort {
 public:
  RefusingPort();
  int Port() const { return port_; }

 protected:
  explicit RefusingPort(bool listen);

  host::UniqueFd socket_;
  int port_ = 0;
};

// Listens, on the socket a RefusingPort only binds, at a port the system
// chooses; a client that does not come within 5 seconds is served by no one.
class LoopbackServer : RefusingPort {
 public:
  enum class Mode {
    kAnswerAfterBlankLine,  // read up to "\r\n\r\n", send the answer, close
    kReadUntilClose,        // read until the client closes, answer nothing
    kAnswerAtOnce,          // send the answer as soon as the client connects, close
  };
  // Sends each packet of answer with a send call of its own.
  LoopbackServer(Mode mode, std::vector<std::string> answer = {});
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  using RefusingPort::Port;
  // Waits until the connection is over; the exact bytes the client sent.
  const std::string& Received();

 private:
  void Serve(Mode mode, const std::vector<std::string>& answer);

  std::string received_;
  std::thread thread_;
};

}  // namespace talp::test
