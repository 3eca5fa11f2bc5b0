// Drives the text engine's field, line and replacement functions with
// arbitrary text, separators and numbers, and checks the one-pass versions
// against plain character-by-character walks of the same rules.
//
// Input layout: byte 0 selects the encoding (odd: UTF-16LE, even: UTF-8),
// byte 1 is the field number (-128 and 127 stand for LONG_MIN and LONG_MAX),
// byte 2 is the length of the find string and byte 3 that of the separator,
// each taken mod 16 (in bytes); find, separator and then the text follow.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "text/search_replace.h"
#include "text/text_handlers.h"

namespace {

using talp::kCR;

void Check(bool ok) {
  if (!ok) std::abort();
}

// The rules written out with positions, as slow and as plain as possible.

WideString FieldByWalk(const WideString& text, char32_t separator, long n) {
  WideString out;
  long passed = 0;
  for (std::size_t i = 0; i < text.CharCount(); ++i) {
    const char32_t c = text[i];
    if (passed + 1 == n && c != separator) out.AppendUTF32TextChar(c);
    if (c == separator) ++passed;
    if (passed == n) break;
  }
  return out;
}

bool SpanEquals(const WideString& text, std::size_t at, const WideString& what) {
  if (at + what.CharCount() > text.CharCount()) return false;
  for (std::size_t j = 0; j < what.CharCount(); ++j) {
    if (text[at + j] != what[j]) return false;
  }
  return true;
}

WideString ItemByWalk(const WideString& text, const WideString& separator, long n) {
  if (separator.IsEmpty()) return text;
  WideString out;
  long passed = 0;
  for (std::size_t i = 0; i < text.CharCount();) {
    if (!SpanEquals(text, i, separator)) {
      out.AppendUTF32TextChar(text[i++]);
      continue;
    }
    if (passed == n) return out;
    out.Clear();
    ++passed;
    i += separator.CharCount();
  }
  return out;
}

int CountItemsByWalk(const WideString& text, const WideString& separator) {
  int count = 0;
  for (std::size_t i = 0; i < text.CharCount(); ++i) count += SpanEquals(text, i, separator) ? 1 : 0;
  return count;
}

void AppendChars(WideString& out, const WideString& text, std::size_t from, std::size_t count) {
  for (std::size_t k = 0; k < count && from + k < text.CharCount(); ++k) out.AppendUTF32TextChar(text[from + k]);
}

// Every character of find must match; a failed candidate is kept up to and
// including the character that differed.
WideString ReplaceByWalk(const WideString& text, const WideString& find, const WideString& replacement) {
  if (find.IsEmpty()) return text;
  WideString out;
  for (std::size_t p = 0; p < text.CharCount();) {
    std::size_t j = 0;
    while (j < find.CharCount() && p + j < text.CharCount() && text[p + j] == find[j]) ++j;
    if (j == find.CharCount()) {
      out.Append(replacement);
    } else {
      AppendChars(out, text, p, j + 1);
    }
    p += j == find.CharCount() ? j : j + 1;
  }
  return out;
}

// Only the first and the last character of a span of find's length count.
WideString LooseReplaceByWalk(const WideString& text, const WideString& find, const WideString& replacement) {
  if (find.IsEmpty()) return text;
  WideString out;
  const std::size_t m = find.CharCount();
  for (std::size_t p = 0; p < text.CharCount();) {
    if (text[p] != find[0]) {
      AppendChars(out, text, p++, 1);
      continue;
    }
    if (p + m <= text.CharCount() && text[p + m - 1] == find[m - 1]) {
      out.Append(replacement);
    } else {
      AppendChars(out, text, p, m);
    }
    p += m;
  }
  return out;
}

std::vector<WideString> LinesByWalk(const WideString& text) {
  std::vector<WideString> lines;
  WideString line;
  std::size_t lastCR = 0;
  for (std::size_t i = 0; i < text.CharCount(); ++i) {
    if (text[i] != kCR) {
      line.AppendUTF32TextChar(text[i]);
      continue;
    }
    line.AppendUTF32TextChar(talp::kTab);
    lines.push_back(line);
    line.Clear();
    lastCR = i;
  }
  if (text.CharCount() > lastCR + 1) lines.push_back(line);
  return lines;
}

WideString MergeByWalk(const WideString& pattern, const WideString& names, const WideString& values) {
  WideString out;
  for (std::size_t i = 0; i < pattern.CharCount(); ++i) {
    if (pattern[i] != '[') {
      out.AppendUTF32TextChar(pattern[i]);
      continue;
    }
    WideString name;
    std::size_t close = i + 1;
    while (close < pattern.CharCount() && pattern[close] != ']') name.AppendUTF32TextChar(pattern[close++]);
    if (close == pattern.CharCount()) continue;  // the "[" alone is dropped
    WideString value;
    talp::FindDataInRecord(names, values, name, value);
    out.Append(value);
    i = close;
  }
  return out;
}

WideString Decode(std::string_view bytes, bool utf16) {
  return utf16 ? WideString::FromUTF16LE(bytes) : WideString::FromUTF8(bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 4) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const bool utf16 = (data[0] & 1) != 0;
  const auto number = static_cast<signed char>(data[1]);
  const long n = number == -128 ? LONG_MIN : number == 127 ? LONG_MAX : number;
  std::string_view rest = bytes.substr(4);
  const std::string_view findBytes = rest.substr(0, data[2] % 16);
  rest.remove_prefix(findBytes.size());
  const std::string_view separatorBytes = rest.substr(0, data[3] % 16);
  rest.remove_prefix(separatorBytes.size());

  const WideString text = Decode(rest, utf16);
  const WideString find = Decode(findBytes, utf16);
  const WideString separator = Decode(separatorBytes, utf16);
  const char32_t one = separator.IsEmpty() ? char32_t{kCR} : separator[0];
  // The plain walks are quadratic; keep them to small texts.
  const bool compare = text.CharCount() <= 2048;

  WideString out;
  talp::GetUnicodeItem(out, text, static_cast<unsigned short>(one), n);
  if (compare) Check(out == FieldByWalk(text, static_cast<unsigned short>(one), n));
  talp::GetUnicode32Item(out, text, one, n);
  if (compare) Check(out == FieldByWalk(text, one, n));
  const PMString narrow(text);
  const int narrowN = n < INT_MIN ? INT_MIN : n > INT_MAX ? INT_MAX : static_cast<int>(n);
  Check(talp::myGetLine(narrow, one, narrowN).AsWide() == out || n != narrowN);

  talp::GetItemUnicode(out, text, separator, n);
  if (compare) Check(out == ItemByWalk(text, separator, n));
  const int items = talp::CountItemUnicode(text, separator);
  if (compare) Check(items == CountItemsByWalk(text, separator));

  const PMString replaced = talp::myReplace(narrow, PMString(find), PMString(separator));
  if (compare) Check(replaced.AsWide() == LooseReplaceByWalk(text, find, separator));
  WideString cleaned = text;
  talp::SearchReplaceUnicode(cleaned, find, separator);
  if (compare) Check(cleaned == ReplaceByWalk(text, find, separator));

  std::vector<WideString> lines;
  talp::CreateLineArray(text, lines);
  Check(static_cast<int>(lines.size()) == talp::CountUnicodeLines(text));
  if (compare) Check(lines == LinesByWalk(text));

  WideString table = find;
  table.AppendUTF32TextChar(talp::kTab);
  table.Append(separator);
  table.AppendUTF32TextChar(kCR);
  table.Append(separator);
  table.AppendUTF32TextChar(talp::kTab);
  table.Append(find);
  cleaned = text;
  talp::UnicodeCleaning(cleaned, table);

  // The text as its own table, template, record and output. A table may
  // grow the text by a factor at each line, so the text has only one line.
  cleaned = text;
  if (talp::CountUnicodeItems(text, kCR) == 0) talp::UnicodeCleaning(cleaned, cleaned);
  WideString merged = text;
  talp::MergeContentToString(merged, find, merged);
  if (compare) Check(merged == MergeByWalk(text, find, text));
  talp::FindDataInRecord(find, text, separator, out);
  out = text;
  talp::GetItemUnicode(out, out, separator, n);
  talp::DeleteFirstLastCharacters(out);
  Check(talp::GetIndexOfHeaderField(text, find) >= -1);
  return 0;
}
