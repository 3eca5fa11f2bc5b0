#include "text/text_handlers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "text_cases.h"

namespace talp {
namespace {

// The first unit of SMILE alone, a character of its own.
#define LONE_HIGH u"\xD83D"

// fields[n] is field n of myGetLine and GetUnicode32Item (GetUnicodeItem
// passes its arguments on); field 0, fields past the last and negative ones
// are empty. CountNumber counts the separators.
TEST(TextHandlersTest, SingleCharacterFields) {
  const struct {
    const char* name;
    std::u16string_view text;
    char32_t separator;
    unsigned count;
    std::vector<std::u16string> fields;
  } cases[] = {
      {"Fields", u"a;b;;d;", ';', 4, {u"", u"a", u"b", u"", u"d", u""}}, {"EmptySource", u"", ';', 0, {u"", u""}},
      {"SurrogateSeparatorSkipsPairs", u"a" SMILE LONE_HIGH u"x", 0xD83D, 1, {u"", u"a" SMILE, u"x"}},
      {"SupplementarySeparator", u"a" SMILE u"b", 0x1F600, 1, {u"", u"a", u"b"}},
      {"NoCharacterBeyondUnicode", u"a", 0x110000, 0, {u"", u"a", u""}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CountNumber(PMString(W(c.text)), c.separator), c.count) << c.name;
    std::vector<long> numbers = {LONG_MIN, -1, LONG_MAX};
    for (std::size_t n = 0; n < c.fields.size(); ++n) numbers.push_back(static_cast<long>(n));
    for (const long n : numbers) {
      const std::u16string want = n >= 0 && n < std::ssize(c.fields) ? c.fields[static_cast<std::size_t>(n)] : u"";
      SCOPED_TRACE(std::string(c.name) + ", field " + std::to_string(n));
      const int clamped = static_cast<int>(std::clamp<long>(n, INT_MIN, INT_MAX));
      EXPECT_EQ(U(myGetLine(PMString(W(c.text)), c.separator, clamped).AsWide()), want);
      WideString out = W(u"stale");
      GetUnicode32Item(out, W(c.text), c.separator, n);
      EXPECT_EQ(U(out), want);
    }
  }
  WideString line = W(u"a\tb\tc");
  GetUnicode32Item(line, line, kTab, 2);  // the output may be the text
  EXPECT_EQ(U(line), u"b");
  EXPECT_EQ(U(GetNumberAsWideString(LONG_MIN)), u"-9223372036854775808");
}

// CountUnicodeLines gives the number of elements CreateLineArray stores.
TEST(TextHandlersTest, Lines) {
  const struct {
    const char* name;
    std::u16string_view text;
    std::vector<std::u16string> lines;
  } cases[] = {
      {"OneCharacterIsNoLine", u"a", {}}, {"OnePairIsNoLine", SMILE, {}}, {"CRThenCharacter", u"\rb", {u"\t", u"b"}},
      {"EndsWithCR", u"a\rbc\r", {u"a\t", u"bc\t"}}, {"LineFeedIsText", u"a\nb", {u"a\nb"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(CountUnicodeLines(W(c.text)), static_cast<int>(c.lines.size()));
    std::vector<WideString> lines = {W(u"stale")};
    CreateLineArray(W(c.text), lines);
    std::vector<std::u16string> got;
    for (const auto& line : lines) got.push_back(U(line));
    EXPECT_EQ(got, c.lines);
  }
}

// items[n] is item n, from 0; n past the end or negative gives the last item.
// CountItemUnicode counts the separators, overlapping ones too, and for an empty one every character.
TEST(TextHandlersTest, MultiCharacterItems) {
  const struct {
    const char* name;
    std::u16string_view text, separator;
    int count;
    std::vector<std::u16string> items;
  } cases[] = {
      {"Items", u"x::y::z", u"::", 2, {u"x", u"y", u"z"}}, {"SeparatorsDoNotOverlap", u"aaa", u"aa", 2, {u"", u"a"}},
      {"EmptySeparatorSplitsNothing", u"a" SMILE u"c", u"", 3, {u"a" SMILE u"c"}},
      {"LoneSurrogateSkipsPairs", u"a" SMILE LONE_HIGH u"c", LONE_HIGH, 1, {u"a" SMILE, u"c"}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CountItemUnicode(W(c.text), W(c.separator)), c.count) << c.name;
    for (const long n : {0L, 1L, 2L, 3L, 99L, LONG_MAX, -1L, LONG_MIN}) {
      const std::u16string& want = c.items[std::min<std::size_t>(n < 0 ? 99 : n, c.items.size() - 1)];
      SCOPED_TRACE(std::string(c.name) + ", item " + std::to_string(n));
      WideString out = W(u"stale");
      EXPECT_EQ(U(GetItemUnicode(out, W(c.text), W(c.separator), n)), want);
      EXPECT_EQ(U(out), want);
    }
  }
  WideString text = W(u"x::y");
  EXPECT_EQ(U(GetItemUnicode(text, text, W(u"::"), 1)), u"y");
}

// Both look a name up in the same CR-separated names: the header index never
// compares the name after the last CR, the record value does. A value is
// decoded, entities first and "&amp;" last, then markers.
TEST(TextHandlersTest, GetIndexOfHeaderFieldAndFindDataInRecord) {
  const struct {
    const char* name;
    std::u16string_view names, values, field;
    int index;
    std::u16string_view value;  // "untouched" when the output is left alone
  } cases[] = {
      {"LastNameWithoutCR", u"id\rname", u"1\r2", u"name", -1, u"2"},
      {"FirstOfEqualNames", u"id\rid\r", u"1\r2\r", u"id", 1, u"1"},
      {"EmptyNameIsFieldZero", u"id\r", u"1\r", u"", 0, u""},
      {"EmptyHeader", u"", u"", u"id", -1, u"untouched"},
      {"MissingValueIsEmpty", u"a\rb\r", u"1", u"b", 2, u""},
      {"Decoded", u"a\r", u"&amp;lt;&amp;apos;&lt;br&gt;<tb>&quot;<br>&apos;<sr>&gt;", u"a", 1,
       u"&lt;&apos;\r\t\"\r'\n>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(GetIndexOfHeaderField(W(c.names), W(c.field)), c.index);
    WideString out = W(u"untouched");
    FindDataInRecord(W(c.names), W(c.values), W(c.field), out);
    EXPECT_EQ(U(out), c.value);
  }
}

}  // namespace
}  // namespace talp
