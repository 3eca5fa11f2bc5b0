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

// fields[n] is field n of GetUnicode32Item (myGetLine and GetUnicodeItem pass
// their arguments on); field 0, fields past the last and negative ones are
// empty. CountNumber counts the separators.
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
    for (const long n : {LONG_MIN, -1L, 0L, 1L, 2L, 3L, 4L, 5L, 6L, LONG_MAX}) {
      SCOPED_TRACE(std::string(c.name) + ", field " + std::to_string(n));
      WideString out = W(u"stale");
      GetUnicode32Item(out, W(c.text), c.separator, n);
      EXPECT_EQ(U(out), n >= 0 && n < std::ssize(c.fields) ? c.fields[static_cast<std::size_t>(n)] : u"");
    }
  }
  WideString line = W(u"a\tb\tc");
  GetUnicode32Item(line, line, kTab, 2);  // the output may be the text
  EXPECT_EQ(U(line), u"b");
  EXPECT_EQ(U(GetNumberAsWideString(LONG_MIN)), u"-9223372036854775808");
}

// A text without CR is a line only from two characters on, a pair being one
// character; callers rely on it. CreateLineArray ends with a TAB each line that
// ended with a CR.
TEST(TextHandlersTest, Lines) {
  for (const std::u16string_view text : {u"a", SMILE}) EXPECT_EQ(CountUnicodeLines(W(text)), 0);
  EXPECT_EQ(CountUnicodeLines(W(u"a\nb")), 1);  // a line feed is text
  EXPECT_EQ(CountUnicodeLines(W(u"\rb\rcd")), 3);
  std::vector<WideString> lines = {W(u"stale")};
  CreateLineArray(W(u"\rb\rcd"), lines);
  EXPECT_EQ(lines, (std::vector<WideString>{W(u"\t"), W(u"b\t"), W(u"cd")}));
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
