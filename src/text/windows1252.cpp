#include "text/windows1252.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "host/unit_search.h"
#include "host/utf.h"

namespace talp {
namespace {

// Bytes 80 to 9F; everywhere else a byte is the code point of the same
// number. The five holes keep their C1 control so that no byte is lost.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 80
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  // 88
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 90
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,  // 98
};

// Every byte's character, for a decoder that does one look-up per byte.
constexpr std::array<char16_t, 256> kCharOfByte = [] {
  std::array<char16_t, 256> table{};
  for (std::size_t b = 0; b < table.size(); ++b) {
    table[b] = b >= 0x80 && b < 0xA0 ? kHighControls[b - 0x80] : static_cast<char16_t>(b);
  }
  return table;
}();

constexpr char kUnmappable = '?';

char EncodeChar(char32_t c) {
  if (c < 0x80 || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
  for (std::size_t i = 0; i < kHighControls.size(); ++i) {
    if (kHighControls[i] == c) return static_cast<char>(0x80 + i);
  }
  return kUnmappable;
}

}  // namespace

void DecodeWindows1252(std::string_view bytes, std::u16string& out) {
  const std::size_t start = out.size();
  out.resize(start + bytes.size());
  char16_t* units = out.data() + start;
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t n = bytes.size();
  std::size_t i = 0;
  while (i < n) {
    i += host::WidenAsciiBlocks(in + i, n - i, units + i);
    // One block with a byte above 0x7F (or the tail) goes through the table.
    const std::size_t end = std::min(n, i + 16);
    for (; i < end; ++i) units[i] = kCharOfByte[in[i]];
  }
}

std::string EncodeWindows1252(const WideString& text) {
  const std::u16string_view units = text.Units();
  std::string out;
  out.reserve(units.size());
  for (std::size_t i = 0; i < units.size();) out.push_back(EncodeChar(utf::NextChar(units, i)));
  return out;
}

}  // namespace talp
