#include "talp/wide_string.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace {

const std::u16string kPair = u"\U0001F600";  // one character, two units

WideString Units(std::u16string units) { return WideString(std::move(units)); }

TEST(WideString, SurrogatePairIsOneCharacter) {
  const WideString text = Units(u"a" + kPair + u"b");
  EXPECT_EQ(text.CharCount(), 3u);
  EXPECT_EQ(text.NumUTF16TextChars(), 4u);
  EXPECT_EQ(text.GetUTF32TextChar(1), U'\U0001F600');
  EXPECT_EQ(text.GetUTF32TextChar(2), U'b');
  EXPECT_EQ(text.GetUTF32TextChar(3), 0u);
  EXPECT_EQ(text.Substring(1, 1).Units(), kPair);
  EXPECT_EQ(text.Substring(2).ToUTF8(), "b");
  EXPECT_EQ(text.IndexOf(WideString("b")), 2);
}

TEST(WideString, PositionsAfterManyPairs) {
  std::u16string units;
  for (int i = 0; i < 100; ++i) units += kPair + u"x";
  const WideString text = Units(units);
  EXPECT_EQ(text.CharCount(), 200u);
  for (std::size_t pos = 0; pos < 200; ++pos) {
    EXPECT_EQ(text.GetUTF32TextChar(pos), pos % 2 == 0 ? U'\U0001F600' : U'x') << pos;
    EXPECT_EQ(text.CharPosOf(text.UnitOffsetOf(pos)), pos);
  }
  EXPECT_EQ(text.IndexOf(WideString("x"), 101), 101);
}

TEST(WideString, AppendingTheLowHalfCompletesAPair) {
  WideString text("a");
  text.AppendUTF32TextChar(0xD83D);
  EXPECT_EQ(text.CharCount(), 2u);  // a lone surrogate counts on its own
  text.AppendUTF32TextChar(0xDE00);
  EXPECT_EQ(text.CharCount(), 2u);
  EXPECT_EQ(text.GetUTF32TextChar(1), U'\U0001F600');
}

TEST(WideString, MatchesNeverSplitAPair) {
  const WideString text = Units(u"x" + kPair);
  EXPECT_EQ(text.IndexOf(Units(std::u16string(1, kPair[0]))), -1);
  EXPECT_EQ(text.IndexOf(Units(std::u16string(1, kPair[1]))), -1);
  EXPECT_EQ(text.IndexOf(Units(kPair)), 1);
}

TEST(WideString, IndexOfAndSubstringClipToTheText) {
  const WideString text("abcabc");
  EXPECT_EQ(text.IndexOf(WideString("c"), 3), 5);
  EXPECT_EQ(text.IndexOf(WideString("c"), 6), -1);
  EXPECT_EQ(text.IndexOf(WideString("c"), 99), -1);
  EXPECT_EQ(text.IndexOf(WideString("")), 0);
  EXPECT_EQ(text.Substring(4, 99).ToUTF8(), "bc");
  EXPECT_TRUE(text.Substring(6).IsEmpty());
  WideString removed = text;
  removed.Remove(1, 2);
  EXPECT_EQ(removed.ToUTF8(), "aabc");
  removed.Remove(3, 100);
  EXPECT_EQ(removed.ToUTF8(), "aab");
}

struct Utf8Case {
  const char* name;
  friend void PrintTo(const Utf8Case& c, std::ostream* os) { *os << c.name; }
  std::string bytes;
  std::u16string units;
};

class WideStringUtf8 : public testing::TestWithParam<Utf8Case> {};

TEST_P(WideStringUtf8, Decodes) { EXPECT_EQ(WideString(GetParam().bytes).Units(), GetParam().units); }

INSTANTIATE_TEST_SUITE_P(
    Bytes, WideStringUtf8,
    testing::Values(Utf8Case{"Ascii", "a\tb\r", u"a\tb\r"}, Utf8Case{"TwoBytes", "\xC3\xA9", u"\u00E9"},
                    Utf8Case{"FourBytes", "\xF0\x9F\x98\x80", kPair},
                    Utf8Case{"LoneContinuation", "a\x80z", u"a\uFFFDz"},
                    Utf8Case{"Overlong", "\xC0\xAF", u"\uFFFD\uFFFD"},
                    Utf8Case{"EncodedSurrogate", "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
                    Utf8Case{"Truncated", "\xE2\x82", u"\uFFFD"},
                    Utf8Case{"TruncatedThenAscii", "\xE2\x82z", u"\uFFFDz"},
                    Utf8Case{"BeyondUnicode", "\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"}),
    [](const testing::TestParamInfo<Utf8Case>& p) { return std::string(p.param.name); });

TEST(WideString, Utf8AndUtf16LeRoundTrip) {
  const std::string utf8 = "Gr\xC3\xBC\xC3\x9F" "e \xF0\x9F\x98\x80\r";
  const WideString text(utf8);
  EXPECT_EQ(text.ToUTF8(), utf8);
  EXPECT_EQ(WideString::FromUTF16LE(text.ToUTF16LE()), text);
  EXPECT_EQ(text.ToUTF16LE().substr(0, 4), std::string("G\0r\0", 4));
  EXPECT_EQ(Units(u"\xD800").ToUTF8(), "\xEF\xBF\xBD");  // a lone surrogate has no UTF-8 form
}

TEST(WideString, ToLowerCoversMoreThanAscii) {
  WideString text("ABC \xC3\x84\xC3\x96 \xCE\xA3 \xD0\x96 xyz");
  text.ToLower();
  EXPECT_EQ(text.ToUTF8(), "abc \xC3\xA4\xC3\xB6 \xCF\x83 \xD0\xB6 xyz");
}

TEST(WideString, OrdersByCodePointNotByUnit) {
  // U+FF01 sorts before U+1F600 although its unit is greater than a high surrogate.
  EXPECT_LT(Units(u"\uFF01"), Units(kPair));
  EXPECT_LT(WideString("ab"), WideString("abc"));
  EXPECT_LT(WideString(""), WideString("a"));
  EXPECT_EQ(WideString("a"), WideString("a"));
}

}  // namespace
