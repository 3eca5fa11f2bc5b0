#include "http/cyo_encode.h"

#include <algorithm>
#include <stdexcept>

namespace CyoEncode {

unsigned long Base64Encode(void* dest, const void* src, unsigned long size) {
  if (dest == nullptr || src == nullptr) throw std::runtime_error(c_pszErrorInvalidParameter);
  auto* out = static_cast<char*>(dest);
  const auto* in = static_cast<const unsigned char*>(src);
  constexpr unsigned kPad = 64;
  unsigned long written = 0;
  while (size > 0) {
    const unsigned long n = std::min<unsigned long>(size, BASE64_INPUT);
    const unsigned b0 = in[0];
    const unsigned b1 = n > 1 ? in[1] : 0;
    const unsigned b2 = n > 2 ? in[2] : 0;
    out[0] = BASE64_TABLE[b0 >> 2];
    out[1] = BASE64_TABLE[((b0 & 0x03) << 4) | (b1 >> 4)];
    out[2] = BASE64_TABLE[n > 1 ? ((b1 & 0x0f) << 2) | (b2 >> 6) : kPad];
    out[3] = BASE64_TABLE[n > 2 ? (b2 & 0x3f) : kPad];
    in += n;
    out += BASE64_OUTPUT;
    size -= n;
    written += BASE64_OUTPUT;
  }
  return written;
}

}  // namespace CyoEncode
