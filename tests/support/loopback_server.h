// A TCP server on 127.0.0.1 at a free port for the network tests, serving one
// connection in a thread of the test process. Every wait is bounded, so a
// client that never comes or never closes fails a test instead of hanging it.
#pragma once

#include <string>
#include <thread>
#include <vector>

#include "host/unique_fd.h"

namespace talp::test {

// A listening socket on 127.0.0.1; the port is chosen by the system.
class LoopbackListener {
 public:
  LoopbackListener();
  int Port() const { return port_; }
  // The next client, or an invalid descriptor after 5 seconds without one.
  host::UniqueFd Accept();

 private:
  host::UniqueFd socket_;
  int port_ = 0;
};

// A port on 127.0.0.1 that refuses connections: bound for the object's
// lifetime, never listening.
class RefusingPort {
 public:
  RefusingPort();
  int Port() const { return port_; }

 private:
  host::UniqueFd socket_;
  int port_ = 0;
};

class LoopbackServer {
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

  int Port() const { return listener_.Port(); }
  // Waits until the connection is over; the exact bytes the client sent.
  const std::string& Received();

 private:
  void Serve(Mode mode, const std::vector<std::string>& answer);

  LoopbackListener listener_;
  std::string received_;
  std::thread thread_;
};

}  // namespace talp::test
