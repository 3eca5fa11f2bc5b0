#include "http/transport.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <string>
#include <utility>
#include <vector>

#include "test_host.h"

namespace talp {
namespace {

using namespace std::string_literals;

// Both ends of a fresh socket pair, as (ours, peer's).
std::pair<host::UniqueFd, host::UniqueFd> SocketPair(int type) {
  int ends[2] = {-1, -1};
  EXPECT_EQ(::socketpair(AF_UNIX, type, 0, ends), 0);
  return {host::UniqueFd(ends[0]), host::UniqueFd(ends[1])};
}

TEST(SendPacket, PeerThatHasGoneEndsTheProcess) {
  test::TestHost testHost;
  auto [socket, peer] = SocketPair(SOCK_STREAM);
  peer.Reset();
  try {
    send_packet(socket.Get(), "x");
    ADD_FAILURE() << "send_packet returned";
  } catch (const test::ProcessExit& exit) {
    EXPECT_EQ(exit.status, 1);
  }
  EXPECT_EQ(testHost.alerts, std::vector<std::string>{"Connection closed by host"});
}

// Each read of a packet socket takes one whole send. The reads land in one
// buffer, which keeps the bytes of a longer read before, and each is appended
// up to the buffer's first zero byte.
TEST(RecievePacket, AppendsTheReusedBufferUpToItsFirstZero) {
  auto [socket, peer] = SocketPair(SOCK_SEQPACKET);
  for (const std::string& packet : {"ABCDEFGH"s, "xy"s, "AB\0CD"s}) {
    ASSERT_EQ(::send(peer.Get(), packet.data(), packet.size(), 0), static_cast<ssize_t>(packet.size()));
  }
  peer.Reset();
  std::string data = "old";
  EXPECT_EQ(recieve_packet(socket.Get(), data), 0);
  EXPECT_EQ(data, "ABCDEFGH" "xyCDEFGH" "AB");
}

}  // namespace
}  // namespace talp
