// Field, item and line utilities over the two host strings.
//
// Every caller relies on their exact counting rules, irregular ones included:
// fields of myGetLine, GetUnicodeItem and GetUnicode32Item count from 1 and
// are empty out of range; items of GetItemUnicode count from 0 and a number
// past the end gives the last item. Lines are separated by CR (13). Each
// function is linear in the length of its input (for a fixed separator), and
// an output may be the same object as an input.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

inline constexpr char16_t kCR = 13;
inline constexpr char16_t kLF = 10;
inline constexpr char16_t kTab = 9;

// Field n of source split on separator; empty for n < 1 or past the last field.
PMString myGetLine(const PMString& source, PlatformChar separator, int n);

// Replaces find by replacement, testing only the first and the last
// character of each candidate span (so "abc" also replaces "axc"). A
// rejected span is consumed whole; a span that runs past the end never
// matches. An empty find changes nothing.
PMString myReplace(const PMString& source, const PMString& find, const PMString& replacement);

// Number of characters of text equal to c.
unsigned int CountNumber(const PMString& text, PlatformChar c);

// Signed decimal digits of number, without grouping or padding.
WideString GetNumberAsWideString(long number);
// The same digits, appended to out.
void AppendNumber(long number, std::u16string& out);

// Lines of text: CRs counted, plus one when text follows the last CR, where a
// text without CR counts its "last CR" at position 0 (so "a" has 0 lines).
int CountUnicodeLines(const WideString& text);

// Number of characters of text equal to c (separators, not fields).
int CountUnicodeItems(const WideString& text, unsigned short c);

// out = field n of text split on separator (1-based, empty out of range).
void GetUnicodeItem(WideString& out, const WideString& text, unsigned short separator, long n);
void GetUnicode32Item(WideString& out, const WideString& text, UTF32TextChar separator, long n);

// out = item n of text split on the multi-character separator, counted from
// 0; a negative n or one past the end gives the last item. Separators are
// taken left to right without overlapping; an empty separator splits nothing,
// so out is the whole text. Returns out.
WideString& GetItemUnicode(WideString& out, const WideString& text, const WideString& separator, long n);

// Positions at which separator starts, overlapping ones included ("aaa"
// holds "aa" twice); an empty separator starts at every character.
int CountItemUnicode(const WideString& text, const WideString& separator);
int CountItemUnits(std::u16string_view text, std::u16string_view separator);

// Replaces lines by the lines of text, as many as CountUnicodeLines gives:
// every line that ended with a CR ends with a TAB instead; the text after the
// last CR is kept only under CountUnicodeLines' rule.
void CreateLineArray(const WideString& text, std::vector<WideString>& lines);

// Removes the first and last character when text has more than 2 characters.
void DeleteFirstLastCharacters(WideString& text);

// Field number of name in the CR-separated header, comparing fields 0 to
// (number of CRs): field 0 is always empty and the last name of a header
// without a final CR is never found. -1 when absent.
int GetIndexOfHeaderField(const WideString& header, const WideString& name);

// Decodes a stored value in place: "&lt;", "&gt;", "&quot;", "&apos;", then
// "&amp;" (so "&amp;lt;" gives "&lt;"), then "<br>", "<sr>", "<tb>" to CR, LF
// and TAB.
void DecodeRecordValue(WideString& value);

// out = the value at the position of name in the parallel CR-separated lists
// names and values, with its entities and markers decoded; out is untouched
// when name is absent.
void FindDataInRecord(const WideString& names, const WideString& values, const WideString& name, WideString& out);

}  // namespace talp
