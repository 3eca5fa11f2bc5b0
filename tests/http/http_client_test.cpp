#include "http/http_client.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "loopback_server.h"
#include "test_host.h"

namespace talp {
namespace {

using namespace std::string_literals;
using test::LoopbackServer;
using test::RefusingPort;

// The expected bytes name the server's port as "{port}".
std::string WithPort(std::string text, int port) {
  for (std::size_t at; (at = text.find("{port}")) != std::string::npos;) text.replace(at, 6, std::to_string(port));
  return text;
}

struct GetRow {
  const char* name;
  const char* url;
  std::vector<std::string> answer;
  std::string request, result;
};
void PrintTo(const GetRow& row, std::ostream* out) { *out << row.name; }

class GetClientListTest : public testing::TestWithParam<GetRow> {};

TEST_P(GetClientListTest, SendsBareRequestAndReturnsRawAnswer) {
  const GetRow& row = GetParam();
  test::TestHost testHost;
  LoopbackServer server(LoopbackServer::Mode::kAnswerAfterBlankLine, row.answer);
  WideString result("old");
  GetClientList(row.url, server.Port(), result);
  EXPECT_EQ(server.Received(), WithPort(row.request, server.Port()));
  EXPECT_EQ(result, WideString::FromUTF8(row.result));
  EXPECT_TRUE(testHost.alerts.empty());
}

const std::string kLarge(1500000, 'a');

INSTANTIATE_TEST_SUITE_P(
    Rows, GetClientListTest,
    testing::Values(
        GetRow{"path_and_headers_kept", "http://localhost:9/list.txt", {"HTTP/1.0 200 OK\r\n\r\nA\tB\r"},
               "GET /list.txt\r\nHost: localhost:{port}\r\nConnection: Close\r\n\r\n", "HTTP/1.0 200 OK\r\n\r\nA\tB\r"},
        GetRow{"no_path", "127.0.0.1", {"x"}, "GET \r\nHost: 127.0.0.1:{port}\r\nConnection: Close\r\n\r\n", "x"},
        GetRow{"empty_answer", "http://127.0.0.1/", {}, "GET /\r\nHost: 127.0.0.1:{port}\r\nConnection: Close\r\n\r\n",
               ""},
        GetRow{"utf8_answer", "http://127.0.0.1/u", {"caf\xc3\xa9 \xe2\x82\xac"},
               "GET /u\r\nHost: 127.0.0.1:{port}\r\nConnection: Close\r\n\r\n", "caf\xc3\xa9 \xe2\x82\xac"},
        GetRow{"zero_byte_ends_answer", "http://127.0.0.1/z", {"ab\0cd"s},
               "GET /z\r\nHost: 127.0.0.1:{port}\r\nConnection: Close\r\n\r\n", "ab"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(GetClientListLarge, ReadsUntilTheServerCloses) {
  test::TestHost testHost;
  LoopbackServer server(LoopbackServer::Mode::kAnswerAfterBlankLine, {kLarge.substr(0, 700000), kLarge.substr(700000)});
  WideString result;
  GetClientList("http://127.0.0.1/big", server.Port(), result);
  // Short reads bring stale bytes along, so there may be more, never less.
  const std::string text = result.ToUTF8();
  EXPECT_GE(text.size(), kLarge.size());
  EXPECT_EQ(text.find_first_not_of('a'), std::string::npos);
}

TEST(GetClientListRefused, LeavesResultAlone) {
  test::TestHost testHost;
  RefusingPort refusing;
  WideString result("old");
  GetClientList("http://127.0.0.1/list", refusing.Port(), result);
  EXPECT_EQ(result, WideString("old"));
  EXPECT_EQ(testHost.alerts, std::vector<std::string>{"Error in connection"});
}

struct UploadRow {
  const char* name;
  const char* url;
  std::string content, filePathValue, fileName, request;
};
void PrintTo(const UploadRow& row, std::ostream* out) { *out << row.name; }

class RunHttpClient : public testing::TestWithParam<UploadRow> {};

TEST_P(RunHttpClient, SendsTheMultipartRequestByteForByte) {
  const UploadRow& row = GetParam();
  test::TestHost testHost;
  const std::string path = testing::TempDir() + "talp_upload_" + row.name;
  std::ofstream(path, std::ios::binary) << row.content;
  LoopbackServer server(LoopbackServer::Mode::kReadUntilClose);
  runHTTPclient(row.url, server.Port(), PMString(path), PMString(row.filePathValue), PMString(row.fileName));
  EXPECT_EQ(server.Received(), WithPort(row.request, server.Port()));
  EXPECT_TRUE(testHost.alerts.empty());
  std::remove(path.c_str());
}

const std::string kAccept =
    "Accept: image/gif, image/x-xbitmap, image/jpeg, image/pjpeg, application/x-shockwave-flash, "
    "application/vnd.ms-excel, application/vnd.ms-powerpoint, application/msword, */*\r\n";

INSTANTIATE_TEST_SUITE_P(
    Rows, RunHttpClient,
    testing::Values(
        UploadRow{"url_port_ignored", "http://localhost:9000/in", "hello", "/in/hello.txt", "hello.txt",
                  "POST //in HTTP/1.1\r\n" + kAccept +
                  "Referer: http://localhost:{port}\r\n"
                  "Host: localhost:{port}\r\n"
                  "Content-Type: multipart/form-data; boundary=---------------------------7d66d1310bf2\r\n"
                  "Content-Length: 319\r\n"
                  "Connection: Keep-Alive\r\n"
                  "Cache-Control: no-cache\r\n\r\n"
                  "-----------------------------7d66d1310bf2\r\n"
                  "Content-Disposition: form-data; name=\"filepath\"\r\n\r\n"
                  "/in/hello.txt\"\r\n"
                  "-----------------------------7d66d1310bf2\r\n"
                  "Content-Disposition: form-data; name=\"filename\"; filename=\"hello.txt\"\r\n"
                  "Content-Type: application/octet-stream\r\n\r\n"
                  "aGVsbG8=\r\n"
                  "-----------------------------7d66d1310bf2--"},
        UploadRow{"empty_file_no_path", "127.0.0.1", "", "", "",
                  "POST / HTTP/1.1\r\n" + kAccept +
                  "Referer: http://127.0.0.1:{port}\r\n"
                  "Host: 127.0.0.1:{port}\r\n"
                  "Content-Type: multipart/form-data; boundary=---------------------------7d66d1310bf2\r\n"
                  "Content-Length: 289\r\n"
                  "Connection: Keep-Alive\r\n"
                  "Cache-Control: no-cache\r\n\r\n"
                  "-----------------------------7d66d1310bf2\r\n"
                  "Content-Disposition: form-data; name=\"filepath\"\r\n\r\n"
                  "\"\r\n"
                  "-----------------------------7d66d1310bf2\r\n"
                  "Content-Disposition: form-data; name=\"filename\"; filename=\"\"\r\n"
                  "Content-Type: application/octet-stream\r\n\r\n"
                  "\r\n"
                  "-----------------------------7d66d1310bf2--"}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(RunHttpClientMissingFile, DoesNotEvenConnect) {
  test::TestHost testHost;
  RefusingPort refusing;  // a connect attempt would show an alert
  runHTTPclient("http://127.0.0.1/in", refusing.Port(), "/no/such/file", "v", "n");
  EXPECT_TRUE(testHost.alerts.empty());
}

}  // namespace
}  // namespace talp
