#include "text/text_handlers.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/item_cursor.h"
#include "text/search_replace.h"

namespace talp {
namespace {

using Units = std::u16string_view;

template <typename Int>
Int ClampTo(std::size_t n) {
  constexpr auto kMax = static_cast<std::size_t>(std::numeric_limits<Int>::max());
  return static_cast<Int>(std::min(n, kMax));
}

std::size_t CountCharacter(Units units, char32_t c) {
  std::size_t count = 0;
  for (std::size_t at = FindCharacter(units, 0, c); at != Units::npos;
       at = FindCharacter(units, at + (c > 0xFFFF ? 2 : 1), c)) {
    ++count;
  }
  return count;
}

// Calls found(start) with the unit offset of every occurrence of pattern in
// text, left to right, overlapping ones included, until found returns false.
// Only occurrences that begin and end on character boundaries count, so a
// lone surrogate in pattern never matches half of a pair. Linear in both
// lengths (Knuth-Morris-Pratt), whatever the pattern. pattern is not empty.
template <typename Found>
void ForEachOccurrence(Units text, Units pattern, Found found) {
  std::vector<std::size_t> fallback(pattern.size(), 0);
  for (std::size_t i = 1, k = 0; i < pattern.size(); ++i) {
    while (k > 0 && pattern[i] != pattern[k]) k = fallback[k - 1];
    if (pattern[i] == pattern[k]) ++k;
    fallback[i] = k;
  }
  const auto splitsPair = [text](std::size_t at) {
    return at > 0 && at < text.size() && utf::IsHighSurrogate(text[at - 1]) && utf::IsLowSurrogate(text[at]);
  };
  for (std::size_t i = 0, k = 0; i < text.size(); ++i) {
    while (k > 0 && text[i] != pattern[k]) k = fallback[k - 1];
    if (text[i] == pattern[k]) ++k;
    if (k < pattern.size()) continue;
    const std::size_t start = i + 1 - k;
    if (!splitsPair(start) && !splitsPair(i + 1) && !found(start)) return;
    k = fallback[k - 1];
  }
}

// The last line of a text (what follows its last CR) counts only when the
// text is longer than the position of its last CR + 1, where a text without CR
// takes that position as 0. So a lone character is no line; callers rely on it.
bool KeepsLastLine(const WideString& text, bool hasCR, Units lastLine) {
  return hasCR ? !lastLine.empty() : text.CharCount() > 1;
}

}  // namespace

void DecodeRecordValue(WideString& value) {
  static const std::pair<WideString, WideString> kMarkers[] = {{"<br>", "\r"}, {"<sr>", "\n"}, {"<tb>", "\t"}};
  DecodeXMLEntities(value);
  for (const auto& [encoded, decoded] : kMarkers) {
    SearchReplaceUnicode(value, encoded, decoded);
  }
}

PMString myGetLine(const PMString& source, PlatformChar separator, int n) {
  return PMString(WideString::FromUTF16(FieldOf(source.AsWide().Units(), separator, n)));
}

PMString myReplace(const PMString& source, const PMString& find, const PMString& replacement) {
  const Units units = source.AsWide().Units();
  // An empty find string would never advance; it replaces nothing.
  if (units.empty() || find.IsEmpty()) return source;
  const std::size_t length = find.CharCount();
  const char32_t first = find.GetChar(0);
  const char32_t last = find.GetChar(length - 1);

  std::u16string out;
  std::size_t copied = 0;
  bool replaced = false;
  std::size_t i = 0;
  while ((i = FindCharacter(units, i, first)) != Units::npos) {
    const std::size_t at = i;
    char32_t spanLast = utf::NextChar(units, i);
    std::size_t taken = 1;
    for (; taken < length && i < units.size(); ++taken) spanLast = utf::NextChar(units, i);
    // Only the first and the last character decide; callers rely on this
    // loose test. A span cut short by the end of the text never matches.
    if (taken < length || spanLast != last) continue;
    out.append(units.substr(copied, at - copied));
    out.append(replacement.AsWide().Units());
    copied = i;
    replaced = true;
  }
  if (!replaced) return source;
  out.append(units.substr(copied));
  return PMString(WideString(std::move(out)));
}

unsigned int CountNumber(const PMString& text, PlatformChar c) {
  return ClampTo<unsigned int>(CountCharacter(text.AsWide().Units(), c));
}

WideString GetNumberAsWideString(long number) {
  std::u16string text;
  AppendNumber(number, text);
  return WideString(std::move(text));
}

void AppendNumber(long number, std::u16string& out) {
  // Run counts and the like are mostly one digit.
  if (number >= 0 && number < 10) {
    out.push_back(static_cast<char16_t>(u'0' + number));
    return;
  }
  char digits[24];
  const auto result = std::to_chars(digits, digits + sizeof digits, number);
  utf::AppendAscii(std::string_view(digits, static_cast<std::size_t>(result.ptr - digits)), out);
}

int CountUnicodeLines(const WideString& text) {
  const Units units = text.Units();
  const std::size_t lastCR = units.rfind(kCR);
  if (lastCR == Units::npos) return KeepsLastLine(text, false, units) ? 1 : 0;
  const auto crs = static_cast<std::size_t>(std::count(units.begin(), units.end(), kCR));
  return ClampTo<int>(crs + (KeepsLastLine(text, true, units.substr(lastCR + 1)) ? 1 : 0));
}

int CountUnicodeItems(const WideString& text, unsigned short c) {
  return ClampTo<int>(CountCharacter(text.Units(), c));
}

void GetUnicodeItem(WideString& out, const WideString& text, unsigned short separator, long n) {
  GetUnicode32Item(out, text, separator, n);
}

void GetUnicode32Item(WideString& out, const WideString& text, UTF32TextChar separator, long n) {
  // Built before the assignment, so out may be text itself.
  out = WideString::FromUTF16(FieldOf(text.Units(), separator, n));
}

WideString& GetItemUnicode(WideString& out, const WideString& text, const WideString& separator, long n) {
  const Units units = text.Units();
  const Units wanted = separator.Units();
  // An empty separator would never advance; it splits nothing.
  if (units.empty() || wanted.empty()) {
    if (&out != &text) out = text;
    return out;
  }
  std::size_t passed = 0;
  std::size_t start = 0;
  std::size_t end = units.size();
  ForEachOccurrence(units, wanted, [&](std::size_t at) {
    if (at < start) return true;  // overlaps the separator just passed
    if (n >= 0 && passed == static_cast<unsigned long>(n)) {
      end = at;
      return false;
    }
    ++passed;
    start = at + wanted.size();
    return true;
  });
  // A number past the end (or negative) leaves the last item; callers rely on it.
  out = WideString::FromUTF16(units.substr(start, end - start));
  return out;
}

int CountItemUnicode(const WideString& text, const WideString& separator) {
  return CountItemUnits(text.Units(), separator.Units());
}

int CountItemUnits(std::u16string_view text, std::u16string_view separator) {
  // Every position matches an empty separator.
  if (separator.empty()) return ClampTo<int>(WideString::FromUTF16(text).CharCount());
  // A one-unit separator outside the surrogates is a character of its own.
  if (separator.size() == 1 && !utf::IsSurrogate(separator[0])) {
    return ClampTo<int>(CountCharacter(text, separator[0]));
  }
  std::size_t count = 0;
  ForEachOccurrence(text, separator, [&count](std::size_t) {
    ++count;
    return true;
  });
  return ClampTo<int>(count);
}

void CreateLineArray(const WideString& text, std::vector<WideString>& lines) {
  // Filled aside, as text may be one of the lines.
  std::vector<WideString> filled;
  ItemCursor cursor(text.Units(), kCR);
  Units line;
  bool hasCR = false;
  while (cursor.Next(line)) {
    if (cursor.EndedBySeparator()) {
      // The TAB ends the record's last field like the others.
      std::u16string withTab;
      withTab.reserve(line.size() + 1);
      withTab.append(line).push_back(kTab);
      filled.emplace_back(std::move(withTab));
      hasCR = true;
    } else if (KeepsLastLine(text, hasCR, line)) {
      filled.push_back(WideString::FromUTF16(line));
    }
  }
  lines = std::move(filled);
}

void DeleteFirstLastCharacters(WideString& text) {
  // Two characters, such as a bare pair of quotes, stay as they are.
  if (text.CharCount() <= 2) return;
  const Units units = text.Units();
  std::size_t begin = 0;
  utf::NextChar(units, begin);
  std::size_t end = units.size() - 1;
  if (utf::IsLowSurrogate(units[end]) && utf::IsHighSurrogate(units[end - 1])) --end;
  text = WideString::FromUTF16(units.substr(begin, end - begin));
}

int GetIndexOfHeaderField(const WideString& header, const WideString& name) {
  // Field 0 is the empty text, so an empty name is field 0.
  if (name.IsEmpty()) return 0;
  ItemCursor cursor(header.Units(), kCR);
  Units field;
  // The field after the last CR is never compared; callers pass headers that
  // end with a CR and rely on this.
  for (int index = 1; cursor.Next(field) && cursor.EndedBySeparator() && index < INT_MAX; ++index) {
    if (field == name.Units()) return index;
  }
  return -1;
}

void FindDataInRecord(const WideString& names, const WideString& values, const WideString& name, WideString& out) {
  ItemCursor nameCursor(names.Units(), kCR);
  ItemCursor valueCursor(values.Units(), kCR);
  Units field;
  Units value;
  bool valuesLeft = true;
  while (nameCursor.Next(field)) {
    valuesLeft = valuesLeft && valueCursor.Next(value);
    if (field != name.Units()) continue;
    WideString found = WideString::FromUTF16(valuesLeft ? value : Units());
    DecodeRecordValue(found);
    out = std::move(found);
    return;
  }
}

}  // namespace talp
