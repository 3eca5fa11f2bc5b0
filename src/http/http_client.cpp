#include "http/http_client.h"

#include <sys/socket.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "http/cyo_encode.h"
#include "http/transport.h"
#include "talp/host_services.h"

namespace talp {

namespace {

constexpr char kBoundary[] = "---------------------------7d66d1310bf2";

std::string HostPort(const PMString& host, int port) { return host.GrabCString() + ":" + std::to_string(port); }

// The file's bytes in Base64. The buffer is 2n+2 bytes as always, but never
// less than the encoding needs, plus a closing zero.
std::string EncodedFile(const std::string& bytes) {
  const std::size_t n = bytes.size();
  std::string buffer(std::max(2 * n + 2, 4 * ((n + 2) / 3)), '\0');
  CyoEncode::Base64Encode(buffer.data(), bytes.data(), n);
  return buffer.c_str();
}

}  // namespace

void runHTTPclient(const PMString& url, int port, const PMString& filePath, const PMString& filePathValue,
                   const PMString& fileName) {
  const std::optional<std::string> file = host::ReadWholeFile(filePath);
  if (!file) return;
  const std::string b64 = EncodedFile(*file);

  PMString host, path, extra;
  int ignoredPort = 0;
  ParseURL(url, host, path, extra, ignoredPort);
  const std::string hostport = HostPort(host, port);
  const host::UniqueFd socket = connect_w_to(host.GrabCString(), port);
  if (!socket.IsValid()) return;

  // Servers receiving these uploads expect the target with its doubled slash
  // and the quote after the "filepath" value, byte for byte.
  const std::string target = "/" + path.GrabCString() + extra.GrabCString();
  const std::string boundary = kBoundary;
  const std::string head = "--" + boundary + "\r\n" +
                           "Content-Disposition: form-data; name=\"filepath\"\r\n\r\n" +
                           filePathValue.GrabCString() + "\"\r\n" +
                           "--" + boundary + "\r\n" +
                           "Content-Disposition: form-data; name=\"filename\"; filename=\"" +
                           fileName.GrabCString() + "\"\r\n" +
                           "Content-Type: application/octet-stream\r\n\r\n";
  const std::string tail = "\r\n--" + boundary + "--";
  const std::size_t contentLength = head.size() + b64.size() + tail.size();
  std::string request = "POST " + target + " HTTP/1.1\r\n" +
                        "Accept: image/gif, image/x-xbitmap, image/jpeg, image/pjpeg, "
                        "application/x-shockwave-flash, application/vnd.ms-excel, "
                        "application/vnd.ms-powerpoint, application/msword, */*\r\n" +
                        "Referer: http://" + hostport + "\r\n" +
                        "Host: " + hostport + "\r\n" +
                        "Content-Type: multipart/form-data; boundary=" + boundary + "\r\n" +
                        "Content-Length: " + std::to_string(contentLength) + "\r\n" +
                        "Connection: Keep-Alive\r\n" +
                        "Cache-Control: no-cache\r\n\r\n";
  request += head;
  request += b64;
  request += tail;
  // One send of the request up to its first zero byte; its outcome is not
  // looked at and no answer is read.
  ::send(socket.Get(), request.c_str(), std::strlen(request.c_str()), MSG_NOSIGNAL);
}

void GetClientList(const PMString& url, int port, WideString& result) {
  PMString host, path, extra;
  int ignoredPort = 0;
  ParseURL(url, host, path, extra, ignoredPort);
  // No protocol version on the request line: the servers answering these
  // lists take the path alone.
  const std::string request =
      "GET " + path.GrabCString() + "\r\nHost: " + HostPort(host, port) + "\r\nConnection: Close\r\n\r\n";
  const host::UniqueFd socket = connect_w_to(host.GrabCString(), port);
  if (!socket.IsValid()) return;
  send_packet(socket.Get(), request);
  std::string answer;
  recieve_packet(socket.Get(), answer);
  result = WideString(answer.c_str());
}

}  // namespace talp
