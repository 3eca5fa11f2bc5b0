#include "host/utf.h"

namespace talp::utf {

void AppendUTF16(std::u16string& out, char32_t c) {
  if (c > 0x10FFFF) c = kReplacement;
  if (c < 0x10000) {
    out.push_back(static_cast<char16_t>(c));
    return;
  }
  c -= 0x10000;
  out.push_back(static_cast<char16_t>(0xD800 + (c >> 10)));
  out.push_back(static_cast<char16_t>(0xDC00 + (c & 0x3FF)));
}

void AppendUTF8(std::string& out, char32_t c) {
  if (c > 0x10FFFF || IsSurrogate(c)) c = kReplacement;
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

namespace {

// Length of the sequence a lead byte announces, 0 for a byte that cannot lead.
int SequenceLength(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead >= 0xC2 && lead <= 0xDF) return 2;
  if (lead >= 0xE0 && lead <= 0xEF) return 3;
  if (lead >= 0xF0 && lead <= 0xF4) return 4;
  return 0;
}

// The accepted range of the second byte, which excludes overlong forms,
// surrogates and values above U+10FFFF.
bool SecondByteFits(unsigned char lead, unsigned char second) {
  if (lead == 0xE0) return second >= 0xA0 && second <= 0xBF;
  if (lead == 0xED) return second >= 0x80 && second <= 0x9F;
  if (lead == 0xF0) return second >= 0x90 && second <= 0xBF;
  if (lead == 0xF4) return second >= 0x80 && second <= 0x8F;
  return second >= 0x80 && second <= 0xBF;
}

}  // namespace

void DecodeUTF8(std::string_view bytes, std::u16string& out) {
  out.reserve(out.size() + bytes.size());
  std::size_t i = 0;
  const std::size_t n = bytes.size();
  while (i < n) {
    const auto lead = static_cast<unsigned char>(bytes[i]);
    if (lead < 0x80) {
      out.push_back(lead);
      ++i;
      continue;
    }
    const int length = SequenceLength(lead);
    if (length == 0 || i + 1 >= n || !SecondByteFits(lead, static_cast<unsigned char>(bytes[i + 1]))) {
      out.push_back(static_cast<char16_t>(kReplacement));
      ++i;
      continue;
    }
    char32_t c = lead & (0x7F >> length);
    int taken = 1;
    bool complete = true;
    for (; taken < length; ++taken) {
      if (i + taken >= n) { complete = false; break; }
      const auto b = static_cast<unsigned char>(bytes[i + taken]);
      if ((b & 0xC0) != 0x80) { complete = false; break; }
      c = (c << 6) | (b & 0x3F);
    }
    if (!complete) {
      // A truncated sequence is one replacement character; the byte that
      // broke it starts over as a lead byte.
      out.push_back(static_cast<char16_t>(kReplacement));
      i += taken;
      continue;
    }
    AppendUTF16(out, c);
    i += length;
  }
}

void EncodeUTF8(std::u16string_view units, std::string& out) {
  out.reserve(out.size() + units.size());
  std::size_t i = 0;
  while (i < units.size()) {
    if (units[i] < 0x80) {
      out.push_back(static_cast<char>(units[i++]));
      continue;
    }
    AppendUTF8(out, NextChar(units, i));
  }
}

}  // namespace talp::utf
