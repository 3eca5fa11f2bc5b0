#include "http/http_client.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "loopback_server.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using test::LoopbackServer;
using test::RefusingPort;

TEST(GetClientList, SendsBareRequestAndReturnsRawAnswer) {
  const struct { const char *name, *url; std::string answer, target, host; } rows[] = {
      {"path_headers_and_utf8_kept", "http://localhost:9/list.txt", "HTTP/1.0 200 OK\r\n\r\nA\tB\r\xc3\xa9",
       "/list.txt", "localhost"},
      {"no_path", "127.0.0.1", "x", "", "127.0.0.1"}, {"empty_answer", "http://127.0.0.1/", "", "/", "127.0.0.1"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::TestHost testHost;
    LoopbackServer server(LoopbackServer::Mode::kAnswerAfterBlankLine, {row.answer});
    WideString result("old");
    GetClientList(row.url, server.Port(), result);
    EXPECT_EQ(server.Received(), "GET " + row.target + "\r\nHost: " + row.host + ":" + std::to_string(server.Port()) +
                                     "\r\nConnection: Close\r\n\r\n");
    EXPECT_EQ(result, WideString::FromUTF8(row.answer));
    EXPECT_TRUE(testHost.alerts.empty());
  }
}

TEST(GetClientList, ReadsUntilTheServerCloses) {
  test::TestHost testHost;
  const std::string large(1500000, 'a');
  LoopbackServer server(LoopbackServer::Mode::kAnswerAfterBlankLine, {large.substr(0, 700000), large.substr(700000)});
  WideString result;
  GetClientList("http://127.0.0.1/big", server.Port(), result);
  // Short reads bring stale bytes along, so there may be more, never less.
  const std::string text = result.ToUTF8();
  EXPECT_GE(text.size(), large.size());
  EXPECT_EQ(text.find_first_not_of('a'), std::string::npos);
}

// A refused connection, and a host without an address, which fails before any attempt.
TEST(GetClientList, FailedConnectionLeavesResultAlone) {
  test::TestHost testHost;
  RefusingPort refusing;
  WideString result("old");
  GetClientList("http://127.0.0.1/list", refusing.Port(), result);
  GetClientList("http:///list", 80, result);
  EXPECT_EQ(result, WideString("old"));
  EXPECT_EQ(testHost.alerts,
            (std::vector<std::string>{"Error in connection", "CouldNotLookUpHostName", "Just an error"}));
}

// The upload request, byte for byte: the target keeps its doubled slash and the
// "filepath" value is followed by a quote.
std::string Upload(const std::string& target, const std::string& hostPort, const std::string& length,
                   const std::string& filePathValue, const std::string& fileName, const std::string& base64) {
  return "POST " + target + " HTTP/1.1\r\n"
         "Accept: image/gif, image/x-xbitmap, image/jpeg, image/pjpeg, application/x-shockwave-flash, "
         "application/vnd.ms-excel, application/vnd.ms-powerpoint, application/msword, */*\r\n"
         "Referer: http://" + hostPort + "\r\n"
         "Host: " + hostPort + "\r\n"
         "Content-Type: multipart/form-data; boundary=---------------------------7d66d1310bf2\r\n"
         "Content-Length: " + length + "\r\n"
         "Connection: Keep-Alive\r\n"
         "Cache-Control: no-cache\r\n\r\n"
         "-----------------------------7d66d1310bf2\r\n"
         "Content-Disposition: form-data; name=\"filepath\"\r\n\r\n" +
         filePathValue + "\"\r\n"
         "-----------------------------7d66d1310bf2\r\n"
         "Content-Disposition: form-data; name=\"filename\"; filename=\"" + fileName + "\"\r\n"
         "Content-Type: application/octet-stream\r\n\r\n" +
         base64 + "\r\n"
         "-----------------------------7d66d1310bf2--";
}

TEST(RunHttpClient, SendsTheMultipartRequestByteForByte) {
  const struct {
    const char* name;
    const char* url;
    std::string content, filePathValue, fileName, target, host, length, base64;
  } rows[] = {
      {"url_port_ignored", "http://localhost:9000/in", "hello", "/in/hello.txt", "hello.txt", "//in", "localhost",
       "319", "aGVsbG8="},
      {"empty_file_no_path", "127.0.0.1", "", "", "", "/", "127.0.0.1", "289", ""},
      // Base64 with two pads and the last letters of its alphabet, in one run longer than a mail line.
      {"binary_in_one_run", "127.0.0.1", "\xfb\xff\xbf" + std::string(57, 'Z') + '\0', "", "", "/", "127.0.0.1", "373",
       "+/+/WlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaWlpaAA=="},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    test::TestHost testHost;
    const test::TempFolder folder;
    test::Spit(folder / "upload", row.content);
    LoopbackServer server(LoopbackServer::Mode::kReadUntilClose);
    runHTTPclient(row.url, server.Port(), folder.Path("upload"), PMString(row.filePathValue), PMString(row.fileName));
    EXPECT_EQ(server.Received(), Upload(row.target, row.host + ":" + std::to_string(server.Port()), row.length,
                                        row.filePathValue, row.fileName, row.base64));
    EXPECT_TRUE(testHost.alerts.empty());
  }
}

TEST(RunHttpClient, MissingFileDoesNotEvenConnect) {
  test::TestHost testHost;
  RefusingPort refusing;  // a connect attempt would show an alert
  runHTTPclient("http://127.0.0.1/in", refusing.Port(), "/no/such/file", "v", "n");
  EXPECT_TRUE(testHost.alerts.empty());
}

}  // namespace
}  // namespace talp
