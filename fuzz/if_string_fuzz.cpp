// Drives the conditional strings with arbitrary UTF-8 text and checks the
// one-pass evaluation against the rules written out as plain recursion:
// each conditional found by counting tags and its body evaluated on its own.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "text/if_string.h"

namespace {

void Check(bool ok) {
  if (!ok) std::abort();
}

const WideString kOpen = WideString::FromUTF16(u"<EXIF>");
const WideString kClose = WideString::FromUTF16(u"</EXIF");

bool StartsAt(const WideString& text, std::size_t at, const WideString& tag) {
  if (at + tag.CharCount() > text.CharCount()) return false;
  for (std::size_t j = 0; j < tag.CharCount(); ++j) {
    if (text[at + j] != tag[j]) return false;
  }
  return true;
}

// Character position of the "</EXIF" that closes the "<EXIF>" at open, or -1.
long CloseOf(const WideString& text, std::size_t open) {
  long depth = 0;
  for (std::size_t p = open; p < text.CharCount(); ++p) {
    if (StartsAt(text, p, kOpen)) ++depth;
    if (StartsAt(text, p, kClose) && --depth == 0) return static_cast<long>(p);
  }
  return -1;
}

WideString Evaluated(const WideString& text) {
  WideString out;
  std::size_t from = 0;
  for (;;) {
    long open = text.IndexOf(kOpen, from);
    long close = -1;
    while (open >= 0 && (close = CloseOf(text, static_cast<std::size_t>(open))) < 0) {
      open = text.IndexOf(kOpen, static_cast<std::size_t>(open) + 1);
    }
    if (open < 0) break;
    const auto start = static_cast<std::size_t>(open);
    const auto end = static_cast<std::size_t>(close);
    out.Append(text.Substring(from, start - from));
    out.Append(Evaluated(text.Substring(start + 6, end - start - 6)));
    from = end + 7;
  }
  out.Append(text.Substring(from));
  talp::HandleOneLevelIfString(out);
  return out;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const WideString text = WideString::FromUTF8(std::string_view(reinterpret_cast<const char*>(data), size));

  WideString body = text;
  talp::HandleOneLevelIfString(body);
  Check(body.NumUTF16TextChars() <= text.NumUTF16TextChars());

  WideString created = text;
  talp::CreateIfString(created);
  Check(created.NumUTF16TextChars() <= text.NumUTF16TextChars());
  // The recursion nests one level per 12 characters; keep it shallow.
  if (text.CharCount() <= 2048) Check(created == Evaluated(text));
  return 0;
}
