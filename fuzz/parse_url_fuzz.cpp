// Splits arbitrary URLs and checks that host, path and port come out whole:
// the host holds no "/", the path is empty or starts at a "/", the port is
// never 0, and host, port and path are exactly the pieces of the URL.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "http/transport.h"

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const PMString url(std::string_view(reinterpret_cast<const char*>(data), size));
  PMString host, path, extra;
  int port = 0;
  talp::ParseURL(url, host, path, extra, port);

  Check(extra.IsEmpty());
  Check(port != 0);
  Check(host.IndexOfString("/") < 0 && host.IndexOfString(":") < 0);
  Check(path.IsEmpty() || path.GetChar(0) == U'/');

  // What is left between host and path is the scheme and the ":port" text.
  const std::size_t skipped = url.CharCount() - host.CharCount() - path.CharCount();
  PMString rest(url);
  rest.Remove(url.CharCount() - path.CharCount());
  const bool scheme = url.IndexOfString("http://") == 0;
  if (scheme) rest.Remove(0, 7);
  Check(rest.IndexOfString(host) == 0 || host.IsEmpty());
  Check(skipped >= (scheme ? 7u : 0u));
  if (skipped == (scheme ? 7u : 0u)) Check(port == 80);
  return 0;
}
