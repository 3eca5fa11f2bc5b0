#include "http/transport.h"

#include <gtest/gtest.h>
#include <sys/socket.h>

#include <string>
#include <utility>
#include <vector>

#include "loopback_server.h"
#include "test_host.h"

namespace talp {
namespace {

using namespace std::string_literals;
using test::LoopbackServer;

TEST(ParseUrl, SplitsHostPathAndPort) {
  const struct {
    const char *name, *url, *host, *path;
    int port;
  } rows[] = {
      {"no_scheme", "localhost/x", "localhost", "/x", 80}, {"port_not_a_number", "http://h:abc/", "h", "/", 80},
      {"port_without_path", "http://h:81", "h", "", 81}, {"second_colon_in_port", "http://h:1:2/a:b", "h", "/a:b", 1},
      {"only_lower_case_scheme", "HTTP://h/x", "HTTP", "//h/x", 80}, {"empty", "", "", "", 80},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    PMString host = "old", path = "old", extra = "old";
    int port = -1;
    ParseURL(row.url, host, path, extra, port);
    EXPECT_EQ(host.GrabCString(), row.host);
    EXPECT_EQ(path.GrabCString(), row.path);
    EXPECT_TRUE(extra.IsEmpty());
    EXPECT_EQ(port, row.port);
  }
}

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

TEST(SendPacket, SendsEverythingAndNothingForEmptyData) {
  LoopbackServer server(LoopbackServer::Mode::kReadUntilClose);
  {
    const host::UniqueFd socket = connect_w_to("127.0.0.1", server.Port());
    EXPECT_EQ(send_packet(socket.Get(), ""), 0);
    EXPECT_EQ(send_packet(socket.Get(), std::string(3 << 20, 'y') + "z"), 0);
  }
  EXPECT_EQ(server.Received(), std::string(3 << 20, 'y') + "z");
}

// Each read of a packet socket takes one whole send, so the reads are the sends, the short one last.
TEST(RecievePacket, AppendsTheReusedBufferUpToItsFirstZero) {
  const struct {
    const char* name;
    std::string first, second, expected;
  } rows[] = {
      {"short_after_long", "ABCDEFGH", "xy", "ABCDEFGHxyCDEFGH"},
      {"zero_byte_cuts_chunk", "AB\0CD"s, "x", "ABxB"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    auto [socket, peer] = SocketPair(SOCK_SEQPACKET);
    for (const std::string& packet : {row.first, row.second}) {
      ASSERT_EQ(::send(peer.Get(), packet.data(), packet.size(), 0), static_cast<ssize_t>(packet.size()));
    }
    peer.Reset();
    std::string data = "old";
    EXPECT_EQ(recieve_packet(socket.Get(), data), 0);
    EXPECT_EQ(data, row.expected);
  }
}

}  // namespace
}  // namespace talp
