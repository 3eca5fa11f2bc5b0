#include "http/transport.h"

#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <future>
#include <string>
#include <thread>

#include "loopback_server.h"
#include "test_host.h"

namespace talp {
namespace {

using namespace std::string_literals;
using test::LoopbackListener;
using test::LoopbackServer;

TEST(ParseUrl, SplitsHostPathAndPort) {
  const struct {
    const char *name, *url, *host, *path;
    int port;
  } rows[] = {
      {"no_scheme", "localhost/x", "localhost", "/x", 80}, {"port_zero", "http://h:0/", "h", "/", 80},
      {"port_not_a_number", "http://h:abc/", "h", "/", 80}, {"port_without_path", "http://h:81", "h", "", 81},
      {"port_and_path", "http://server:8080/cgi/list", "server", "/cgi/list", 8080},
      {"upper_case_scheme", "HTTP://h/x", "HTTP", "//h/x", 80},
      {"https_is_no_scheme", "https://h/x", "https", "//h/x", 80},
      {"second_colon_in_port", "http://h:1:2/a:b", "h", "/a:b", 1},
      {"empty", "", "", "", 80}, {"scheme_only", "http://", "", "", 80},
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

TEST(LookupHost, GivesDottedQuadOrAlert) {
  test::TestHost testHost;
  EXPECT_EQ(lookup_host("127.0.0.1"), "127.0.0.1");
  EXPECT_EQ(lookup_host("localhost"), "127.0.0.1");
  EXPECT_TRUE(testHost.alerts.empty());
  EXPECT_EQ(lookup_host(""), "");
  EXPECT_EQ(testHost.alerts, std::vector<std::string>{"CouldNotLookUpHostName"});
}

TEST(ConnectWithTimeout, FailsWithAlerts) {
  test::TestHost testHost;
  const test::RefusingPort refusing;
  EXPECT_FALSE(connect_w_to("127.0.0.1", refusing.Port()).IsValid());
  EXPECT_EQ(testHost.alerts, std::vector<std::string>{"Error in connection"});
  // An unknown host fails at once.
  testHost.alerts.clear();
  EXPECT_FALSE(connect_w_to("", 80).IsValid());
  EXPECT_EQ(testHost.alerts, (std::vector<std::string>{"CouldNotLookUpHostName", "Just an error"}));
}

TEST(SendPacket, PeerThatHasGoneEndsTheProcess) {
  test::TestHost testHost;
  LoopbackListener listener;
  const host::UniqueFd socket = connect_w_to("localhost", listener.Port());
  ASSERT_TRUE(socket.IsValid());
  {
    const host::UniqueFd peer = listener.Accept();
    const linger reset{1, 0};  // closing sends a reset
    ASSERT_EQ(::setsockopt(peer.Get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset), 0);
  }
  // More than the socket buffers of both ends hold, so a send must meet the reset.
  const timeval limit{10, 0};
  ::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  try {
    send_packet(socket.Get(), std::string(32 << 20, 'x'));
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

// Waits, bounded, until check holds.
template <typename Check>
bool Eventually(Check check) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (!check()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::yield();
  }
  return true;
}

int Unread(int fd) {
  int count = -1;
  ::ioctl(fd, FIONREAD, &count);
  return count;
}

// True while thread tid is asleep, here: blocked in its next read.
bool Sleeping(pid_t tid) {
  std::ifstream stat("/proc/self/task/" + std::to_string(tid) + "/stat");
  std::string pid, name, state;
  stat >> pid >> name >> state;
  return state == "S";
}

TEST(RecievePacket, AppendsTheReusedBufferUpToItsFirstZero) {
  const struct {
    const char* name;
    std::string first, second, expected;
  } rows[] = {
      {"short_after_long", "ABCDEFGH", "xy", "ABCDEFGHxyCDEFGH"},
      {"zero_byte_cuts_chunk", "AB\0CD"s, "x", "ABxB"},
      {"full_buffer_then_short", std::string(4000, 'A'), "xy", std::string(4000, 'A') + "xy" + std::string(3998, 'A')},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    LoopbackListener listener;
    const host::UniqueFd socket = connect_w_to("127.0.0.1", listener.Port());
    const host::UniqueFd peer = listener.Accept();
    ASSERT_TRUE(peer.IsValid());
    // The first packet is all there before the first read, so one read takes it whole.
    ASSERT_EQ(::send(peer.Get(), row.first.data(), row.first.size(), 0), static_cast<ssize_t>(row.first.size()));
    ASSERT_TRUE(Eventually([&] { return Unread(socket.Get()) == static_cast<int>(row.first.size()); }));
    std::promise<pid_t> reader;
    auto received = std::async(std::launch::async, [&] {
      reader.set_value(::gettid());
      std::string data = "old";
      EXPECT_EQ(recieve_packet(socket.Get(), data), 0);
      return data;
    });
    const pid_t tid = reader.get_future().get();
    // The second packet only once the first read is over and the next one waits.
    ASSERT_TRUE(Eventually([&] { return Unread(socket.Get()) == 0 && Sleeping(tid); }));
    ::send(peer.Get(), row.second.data(), row.second.size(), 0);
    ::shutdown(peer.Get(), SHUT_WR);
    ASSERT_EQ(received.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    EXPECT_EQ(received.get(), row.expected);
  }
}

}  // namespace
}  // namespace talp
