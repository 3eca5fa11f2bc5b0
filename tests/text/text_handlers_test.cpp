#include "text/text_handlers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

namespace talp {
namespace {

WideString W(std::u16string_view units) { return WideString::FromUTF16(units); }
std::u16string U(const WideString& text) { return std::u16string(text.Units()); }
std::u16string U(const PMString& text) { return U(text.AsWide()); }

// A surrogate pair (one character) and its first unit alone (another one).
#define SMILE u"\U0001F600"
#define LONE_HIGH u"\xD83D"

struct FieldCase {
  const char* name;
  std::u16string_view text;
  char32_t separator;
  long n;
  std::u16string_view want;
};

// myGetLine, GetUnicodeItem and GetUnicode32Item count fields alike.
TEST(TextHandlersTest, SingleCharacterFields) {
  const FieldCase cases[] = {
      {"FirstField", u"a;b;;d", ';', 1, u"a"},
      {"EmptyField", u"a;b;;d", ';', 3, u""},
      {"LastField", u"a;b;;d", ';', 4, u"d"},
      {"PastLastFieldIsEmpty", u"a;b;;d", ';', 5, u""},
      {"FieldZeroIsEmpty", u"a;b;;d", ';', 0, u""},
      {"NegativeIsEmpty", u"a;b;;d", ';', -1, u""},
      {"LongMinIsEmpty", u"a;b", ';', LONG_MIN, u""},
      {"LongMaxIsEmpty", u"a;b", ';', LONG_MAX, u""},
      {"AfterFinalSeparatorIsEmpty", u"a;b;", ';', 3, u""},
      {"EmptySource", u"", ';', 1, u""},
      {"NoSeparatorIsWholeText", u"abc", ';', 1, u"abc"},
      {"PairsAreKept", SMILE u";x", ';', 1, SMILE},
      {"SurrogateSeparatorSkipsPairs", u"a" SMILE LONE_HIGH u"x", 0xD83D, 1, u"a" SMILE},
      {"SupplementarySeparator", u"a" SMILE u"b", 0x1F600, 2, u"b"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const int narrowN = static_cast<int>(std::clamp<long>(c.n, INT_MIN, INT_MAX));
    EXPECT_EQ(U(myGetLine(PMString(W(c.text)), c.separator, narrowN)), c.want);
    WideString out = W(u"stale");
    GetUnicode32Item(out, W(c.text), c.separator, c.n);
    EXPECT_EQ(U(out), c.want);
    if (c.separator > 0xFFFF) continue;
    out = W(u"stale");
    GetUnicodeItem(out, W(c.text), static_cast<unsigned short>(c.separator), c.n);
    EXPECT_EQ(U(out), c.want);
  }
}

TEST(TextHandlersTest, FieldOutputMayBeTheText) {
  WideString line = W(u"a\tb\tc");
  GetUnicodeItem(line, line, kTab, 2);
  EXPECT_EQ(U(line), u"b");
}

TEST(TextHandlersTest, MyReplace) {
  const struct {
    const char* name;
    std::u16string_view source, find, replacement, want;
  } cases[] = {
      {"Replaces", u"xabcxabc", u"abc", u"Q", u"xQxQ"},
      {"OnlyFirstAndLastCompared", u"axc", u"abc", u"Q", u"Q"},
      {"RejectedSpanConsumedWhole", u"aab", u"ab", u"Q", u"aab"},
      {"SpanPastEndNeverMatches", u"xa", u"ab", u"Q", u"xa"},
      {"ReplacementNotRescanned", u"aa", u"a", u"aa", u"aaaa"},
      {"EmptyFindChangesNothing", u"abc", u"", u"Q", u"abc"},
      {"EmptySource", u"", u"a", u"Q", u""},
      {"PairsAreOneCharacter", SMILE u"y" SMILE, SMILE u"z" SMILE, u"Q", u"Q"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(U(myReplace(PMString(W(c.source)), PMString(W(c.find)), PMString(W(c.replacement)))), c.want);
  }
}

TEST(TextHandlersTest, CountsAndNumbers) {
  EXPECT_EQ(CountNumber(PMString("a;b;"), ';'), 2u);
  EXPECT_EQ(CountNumber(PMString(""), ';'), 0u);
  EXPECT_EQ(CountUnicodeItems(W(u"a\rb\r"), kCR), 2);
  EXPECT_EQ(CountUnicodeItems(W(SMILE LONE_HIGH), 0xD83D), 1);
  EXPECT_EQ(U(GetNumberAsWideString(-7)), u"-7");
  EXPECT_EQ(U(GetNumberAsWideString(LONG_MIN)), u"-9223372036854775808");
  EXPECT_EQ(U(GetNumberAsWideString(LONG_MAX)), u"9223372036854775807");
}

// CountUnicodeLines gives the number of elements CreateLineArray stores.
TEST(TextHandlersTest, Lines) {
  const struct {
    const char* name;
    std::u16string_view text;
    std::vector<std::u16string> lines;
  } cases[] = {
      {"Empty", u"", {}},
      {"OneCharacterIsNoLine", u"a", {}},
      {"OnePairIsNoLine", SMILE, {}},
      {"TwoCharacters", u"ab", {u"ab"}},
      {"CharacterThenCR", u"a\r", {u"a\t"}},
      {"LoneCR", u"\r", {u"\t"}},
      {"CRThenCharacter", u"\rb", {u"\t", u"b"}},
      {"TextAfterLastCR", u"a\rb", {u"a\t", u"b"}},
      {"EndsWithCR", u"a\rbc\r", {u"a\t", u"bc\t"}},
      {"LineFeedIsText", u"a\nb", {u"a\nb"}},
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

TEST(TextHandlersTest, LineArrayMayHoldTheText) {
  std::vector<WideString> lines = {W(u"a\rb")};
  CreateLineArray(lines[0], lines);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(U(lines[1]), u"b");
}

TEST(TextHandlersTest, MultiCharacterItems) {
  const struct {
    const char* name;
    std::u16string_view text, separator;
    long n;
    std::u16string_view want;
  } cases[] = {
      {"ItemZeroIsFirst", u"x::y::z", u"::", 0, u"x"},
      {"Middle", u"x::y::z", u"::", 1, u"y"},
      {"PastEndGivesLast", u"x::y::z", u"::", 5, u"z"},
      {"NegativeGivesLast", u"x::y::z", u"::", -1, u"z"},
      {"LongMinGivesLast", u"x::y::z", u"::", LONG_MIN, u"z"},
      {"LongMaxGivesLast", u"x::y::z", u"::", LONG_MAX, u"z"},
      {"AfterFinalSeparatorIsEmpty", u"x::", u"::", 9, u""},
      {"SeparatorsDoNotOverlap", u"aaa", u"aa", 1, u"a"},
      {"SeparatorPastEndIsText", u"x:", u"::", 0, u"x:"},
      {"EmptyText", u"", u"::", 0, u""},
      {"EmptySeparatorSplitsNothing", u"abc", u"", 1, u"abc"},
      {"LoneSurrogateSkipsPairs", u"a" SMILE LONE_HIGH u"c", LONE_HIGH, 0, u"a" SMILE},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString out = W(u"stale");
    EXPECT_EQ(U(GetItemUnicode(out, W(c.text), W(c.separator), c.n)), c.want);
    EXPECT_EQ(U(out), c.want);
  }
  WideString text = W(u"x::y");
  EXPECT_EQ(U(GetItemUnicode(text, text, W(u"::"), 1)), u"y");
}

TEST(TextHandlersTest, CountItemUnicode) {
  EXPECT_EQ(CountItemUnicode(W(u"x::y::z"), W(u"::")), 2);
  EXPECT_EQ(CountItemUnicode(W(u"aaa"), W(u"aa")), 2);  // overlapping ones count
  EXPECT_EQ(CountItemUnicode(W(u"a"), W(u"aa")), 0);
  EXPECT_EQ(CountItemUnicode(W(SMILE LONE_HIGH), W(LONE_HIGH)), 1);
  EXPECT_EQ(CountItemUnicode(W(u"a" SMILE u"c"), W(u"")), 3);
}

TEST(TextHandlersTest, DeleteFirstLastCharacters) {
  const struct {
    std::u16string_view text, want;
  } cases[] = {
      {u"\"x\"", u"x"}, {u"abcd", u"bc"}, {u"ab", u"ab"}, {u"\"\"", u"\"\""}, {u"", u""},
      {SMILE u"x" SMILE, u"x"}, {SMILE SMILE, SMILE SMILE},
  };
  for (const auto& c : cases) {
    WideString text = W(c.text);
    DeleteFirstLastCharacters(text);
    EXPECT_EQ(U(text), c.want) << "from " << testing::PrintToString(std::u16string(c.text));
  }
}

TEST(TextHandlersTest, GetIndexOfHeaderField) {
  const struct {
    const char* name;
    std::u16string_view header, field;
    int want;
  } cases[] = {
      {"LastNameWithoutCRNeverFound", u"id\rname", u"name", -1},
      {"LastNameWithCR", u"id\rname\r", u"name", 2},
      {"First", u"id\rname\r", u"id", 1},
      {"FirstOfEqualNames", u"id\rid\r", u"id", 1},
      {"EmptyNameIsFieldZero", u"id\r", u"", 0},
      {"EmptyHeader", u"", u"id", -1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(GetIndexOfHeaderField(W(c.header), W(c.field)), c.want);
  }
}

TEST(TextHandlersTest, FindDataInRecord) {
  const struct {
    const char* name;
    std::u16string_view names, values, field, want;
  } cases[] = {
      {"LastNameIsFound", u"a\rb\rc", u"1\r2\r3", u"c", u"3"},
      {"FirstOfEqualNames", u"a\ra", u"1\r2", u"a", u"1"},
      {"MissingValueIsEmpty", u"a\rb", u"1", u"b", u""},
      {"UnknownLeavesOut", u"a", u"1", u"z", u"untouched"},
      {"AmpersandDecodedLast", u"a", u"&amp;lt;&amp;apos;", u"a", u"&lt;&apos;"},
      {"EntitiesBeforeMarkers", u"a", u"&lt;br&gt;", u"a", u"\r"},
      {"Markers", u"a", u"<tb>&quot;<br>&apos;<sr>&gt;", u"a", u"\t\"\r'\n>"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString out = W(u"untouched");
    FindDataInRecord(W(c.names), W(c.values), W(c.field), out);
    EXPECT_EQ(U(out), c.want);
  }
}

}  // namespace
}  // namespace talp
