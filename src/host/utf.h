// UTF-8 and UTF-16 conversions shared by the host strings and file code.
// Decoding never fails: every malformed UTF-8 byte and every lone surrogate
// becomes U+FFFD where a well-formed result is required.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "host/unit_search.h"

namespace talp::utf {

inline constexpr char32_t kReplacement = 0xFFFD;

inline bool IsHighSurrogate(char32_t u) { return u >= 0xD800 && u <= 0xDBFF; }
inline bool IsLowSurrogate(char32_t u) { return u >= 0xDC00 && u <= 0xDFFF; }
inline bool IsSurrogate(char32_t u) { return u >= 0xD800 && u <= 0xDFFF; }

// Reads the character that starts at units[i] and advances i past it. A
// well-formed surrogate pair is one character; a lone surrogate is returned
// as its own value. Precondition: i < units.size().
inline char32_t NextChar(std::u16string_view units, std::size_t& i) {
  char32_t u = units[i++];
  if (IsHighSurrogate(u) && i < units.size() && IsLowSurrogate(units[i])) {
    char32_t low = units[i++];
    return 0x10000 + ((u - 0xD800) << 10) + (low - 0xDC00);
  }
  return u;
}

// Unit offset of the first occurrence of needle in hay at or after from that
// starts and ends on character boundaries (never inside a surrogate pair), or
// npos. An empty needle is found at from.
inline std::size_t FindAtCharBoundaries(std::u16string_view hay, std::u16string_view needle, std::size_t from) {
  if (needle.empty()) return from <= hay.size() ? from : std::u16string_view::npos;
  for (;; ++from) {
    from = host::FindUnit(hay, from, needle[0], needle[0]);
    if (from == host::kNotFound || hay.size() - from < needle.size()) return std::u16string_view::npos;
    if (hay.compare(from, needle.size(), needle) != 0) continue;
    const std::size_t end = from + needle.size();
    const bool startsInside = from > 0 && IsLowSurrogate(hay[from]) && IsHighSurrogate(hay[from - 1]);
    const bool endsInside = end > 0 && end < hay.size() && IsLowSurrogate(hay[end]) && IsHighSurrogate(hay[end - 1]);
    if (!startsInside && !endsInside) return from;
  }
}

// Appends ASCII text (digits, signs, names) as UTF-16, a unit for a byte,
// without the temporary text that appending a range of chars would make.
inline void AppendAscii(std::string_view ascii, std::u16string& out) {
  const std::size_t at = out.size();
  out.resize(at + ascii.size());
  std::copy(ascii.begin(), ascii.end(), out.begin() + static_cast<std::ptrdiff_t>(at));
}

// Appends c as UTF-16: one unit, or a pair above U+FFFF. Values above
// U+10FFFF become U+FFFD.
void AppendUTF16(std::u16string& out, char32_t c);

// Appends c as UTF-8; surrogates and values above U+10FFFF become U+FFFD.
void AppendUTF8(std::string& out, char32_t c);

// Decodes UTF-8 into UTF-16, appending to out.
void DecodeUTF8(std::string_view bytes, std::u16string& out);

// Number of bytes at the end of bytes that start a UTF-8 sequence the bytes
// do not complete (0 to 3). Decoding the rest now and these bytes together
// with what follows gives the same text as decoding everything at once.
std::size_t IncompleteUTF8Tail(std::string_view bytes);

// Tells whether bytes given in pieces, cut anywhere, are valid UTF-8
// throughout (no overlong forms, surrogates or values above U+10FFFF), and
// whether they hold a character beyond ASCII.
class UTF8Validator {
 public:
  void Feed(std::string_view bytes);
  // No invalid byte so far; the text may still end inside a character.
  bool ValidSoFar() const { return valid_; }
  // Valid, and the pieces given end on a character boundary.
  bool Valid() const { return valid_ && needed_ == 0; }
  bool SawBeyondAscii() const { return beyondAscii_; }

 private:
  bool valid_ = true;
  bool beyondAscii_ = false;
  int needed_ = 0;            // continuation bytes still to come
  unsigned char lead_ = 0;    // of the character being read
  bool secondNext_ = false;   // the next byte is the second of that character
};

// Encodes UTF-16 as UTF-8, appending to out.
void EncodeUTF8(std::u16string_view units, std::string& out);
// The same into dest, which must hold kMaxUTF8PerUnit bytes for each unit;
// returns the number of bytes written.
inline constexpr std::size_t kMaxUTF8PerUnit = 3;  // a pair of units takes four
std::size_t EncodeUTF8To(std::u16string_view units, char* dest);

// CESU-8, the form the script engine keeps its strings in: every UTF-16
// unit, a surrogate too, as its own sequence of one to three bytes, so that a
// pair stays two units there as it is here.
void EncodeCESU8(std::u16string_view units, std::string& out);

// Decodes what the script engine hands out, appending to out: CESU-8 gives
// back the units it was made of, lone surrogates included, and a four-byte
// UTF-8 sequence becomes a surrogate pair. Every other byte that starts no
// such sequence becomes U+FFFD.
void DecodeCESU8(std::string_view bytes, std::u16string& out);

}  // namespace talp::utf
