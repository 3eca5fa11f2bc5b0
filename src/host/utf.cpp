#include "host/utf.h"

#include <cstdint>
#include <cstring>

#include "host/unit_search.h"

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
  // Never more units than bytes: size once, write through a pointer, trim.
  const std::size_t start = out.size();
  out.resize(start + bytes.size());
  char16_t* const first = out.data() + start;
  char16_t* dest = first;
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t n = bytes.size();
  std::size_t i = 0;
  while (i < n) {
    // Runs of ASCII, sixteen bytes at a time.
    const std::size_t ascii = host::WidenAsciiBlocks(in + i, n - i, dest);
    i += ascii;
    dest += ascii;
    if (i >= n) break;
    const unsigned char lead = in[i];
    if (lead < 0x80) {
      *dest++ = lead;
      ++i;
      continue;
    }
    const int length = SequenceLength(lead);
    if (length == 0 || i + 1 >= n || !SecondByteFits(lead, in[i + 1])) {
      *dest++ = static_cast<char16_t>(kReplacement);
      ++i;
      continue;
    }
    char32_t c = lead & (0x7F >> length);
    int taken = 1;
    bool complete = true;
    for (; taken < length; ++taken) {
      if (i + taken >= n || (in[i + taken] & 0xC0) != 0x80) {
        complete = false;
        break;
      }
      c = (c << 6) | (in[i + taken] & 0x3F);
    }
    if (!complete) {
      // A truncated sequence is one replacement character; the byte that
      // broke it starts over as a lead byte.
      *dest++ = static_cast<char16_t>(kReplacement);
      i += static_cast<std::size_t>(taken);
      continue;
    }
    if (c < 0x10000) {
      *dest++ = static_cast<char16_t>(c);
    } else {
      c -= 0x10000;
      *dest++ = static_cast<char16_t>(0xD800 + (c >> 10));
      *dest++ = static_cast<char16_t>(0xDC00 + (c & 0x3FF));
    }
    i += static_cast<std::size_t>(length);
  }
  out.resize(start + static_cast<std::size_t>(dest - first));
}

void UTF8Validator::Feed(std::string_view bytes) {
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t n = bytes.size();
  std::size_t i = 0;
  while (valid_ && i < n) {
    if (needed_ == 0) {
      // Runs of ASCII, eight bytes at a time.
      for (std::uint64_t word; i + 8 <= n; i += 8) {
        std::memcpy(&word, in + i, 8);
        if ((word & 0x8080808080808080u) != 0) break;
      }
      if (i >= n) break;
      const unsigned char lead = in[i++];
      if (lead < 0x80) continue;
      const int length = SequenceLength(lead);
      valid_ = length > 0;
      beyondAscii_ = true;
      needed_ = valid_ ? length - 1 : 0;
      lead_ = lead;
      secondNext_ = true;
      continue;
    }
    const unsigned char next = in[i++];
    valid_ = secondNext_ ? SecondByteFits(lead_, next) : (next & 0xC0) == 0x80;
    secondNext_ = false;
    --needed_;
  }
}

std::size_t IncompleteUTF8Tail(std::string_view bytes) {
  // A lead byte always starts a sequence: the decoder never takes it as part
  // of an earlier one. Only the last three bytes can hold an unfinished one.
  for (std::size_t back = 1; back <= 3 && back <= bytes.size(); ++back) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
    if (byte < 0x80) return 0;
    if (byte >= 0xC0) {
      const int length = SequenceLength(byte);
      return length > static_cast<int>(back) ? back : 0;
    }
  }
  return 0;
}

std::size_t EncodeUTF8To(std::u16string_view units, char* const first) {
  char* dest = first;
  std::size_t i = 0;
  while (i < units.size()) {
    const std::size_t ascii = host::NarrowAsciiBlocks(units.data() + i, units.size() - i, dest);
    i += ascii;
    dest += ascii;
    if (i >= units.size()) break;
    if (units[i] < 0x80) {
      *dest++ = static_cast<char>(units[i++]);
      continue;
    }
    std::string encoded;
    AppendUTF8(encoded, NextChar(units, i));
    for (const char byte : encoded) *dest++ = byte;
  }
  return static_cast<std::size_t>(dest - first);
}

void EncodeUTF8(std::u16string_view units, std::string& out) {
  // Sized once for the longest encoding, written through a pointer, trimmed.
  const std::size_t start = out.size();
  out.resize(start + units.size() * kMaxUTF8PerUnit);
  out.resize(start + EncodeUTF8To(units, out.data() + start));
}

void EncodeCESU8(std::u16string_view units, std::string& out) {
  const std::size_t start = out.size();
  out.resize(start + units.size() * kMaxUTF8PerUnit);
  char* dest = out.data() + start;
  std::size_t i = 0;
  while (i < units.size()) {
    const std::size_t ascii = host::NarrowAsciiBlocks(units.data() + i, units.size() - i, dest);
    i += ascii;
    dest += ascii;
    if (i >= units.size()) break;
    const char16_t u = units[i++];
    if (u < 0x80) {
      *dest++ = static_cast<char>(u);
    } else if (u < 0x800) {
      *dest++ = static_cast<char>(0xC0 | (u >> 6));
      *dest++ = static_cast<char>(0x80 | (u & 0x3F));
    } else {
      *dest++ = static_cast<char>(0xE0 | (u >> 12));
      *dest++ = static_cast<char>(0x80 | ((u >> 6) & 0x3F));
      *dest++ = static_cast<char>(0x80 | (u & 0x3F));
    }
  }
  out.resize(static_cast<std::size_t>(dest - out.data()));
}

void DecodeCESU8(std::string_view bytes, std::u16string& out) {
  // Never more units than bytes: size once, write through a pointer, trim.
  const std::size_t start = out.size();
  out.resize(start + bytes.size());
  char16_t* const first = out.data() + start;
  char16_t* dest = first;
  const auto* in = reinterpret_cast<const unsigned char*>(bytes.data());
  const std::size_t n = bytes.size();
  const auto continuation = [&](std::size_t at) { return at < n && (in[at] & 0xC0) == 0x80; };
  std::size_t i = 0;
  while (i < n) {
    const std::size_t ascii = host::WidenAsciiBlocks(in + i, n - i, dest);
    i += ascii;
    dest += ascii;
    if (i >= n) break;
    const unsigned char lead = in[i];
    if (lead < 0x80) {
      *dest++ = lead;
      ++i;
    } else if (lead >= 0xC2 && lead <= 0xDF && continuation(i + 1)) {
      *dest++ = static_cast<char16_t>(((lead & 0x1F) << 6) | (in[i + 1] & 0x3F));
      i += 2;
    } else if (lead >= 0xE0 && lead <= 0xEF && continuation(i + 1) && continuation(i + 2) &&
               (lead != 0xE0 || in[i + 1] >= 0xA0)) {
      // Surrogates (ED A0..BF) are what CESU-8 is made of: kept as units.
      *dest++ = static_cast<char16_t>(((lead & 0x0F) << 12) | ((in[i + 1] & 0x3F) << 6) | (in[i + 2] & 0x3F));
      i += 3;
    } else if (lead >= 0xF0 && lead <= 0xF4 && continuation(i + 1) && continuation(i + 2) && continuation(i + 3) &&
               (lead != 0xF0 || in[i + 1] >= 0x90) && (lead != 0xF4 || in[i + 1] <= 0x8F)) {
      const char32_t c = ((lead & 0x07U) << 18) | ((in[i + 1] & 0x3FU) << 12) | ((in[i + 2] & 0x3FU) << 6) |
                         (in[i + 3] & 0x3FU);
      *dest++ = static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
      *dest++ = static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
      i += 4;
    } else {
      *dest++ = static_cast<char16_t>(kReplacement);
      ++i;
    }
  }
  out.resize(start + static_cast<std::size_t>(dest - first));
}

}  // namespace talp::utf
