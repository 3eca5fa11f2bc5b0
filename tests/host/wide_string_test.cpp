#include "talp/wide_string.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

const std::u16string kPair = u"\U0001F600";  // one character, two units

WideString Units(std::u16string units) { return WideString(std::move(units)); }

// Positions count characters; a match never splits a pair; appending the low half of a pair completes it.
TEST(WideString, SurrogatePairIsOneCharacter) {
  const WideString text = Units(u"a" + kPair + u"b");
  EXPECT_EQ(text.CharCount(), 3u);
  EXPECT_EQ(text.NumUTF16TextChars(), 4u);
  EXPECT_EQ(text.GetUTF32TextChar(1), U'\U0001F600');
  EXPECT_EQ(text.GetUTF32TextChar(3), 0u);
  EXPECT_EQ(text.Substring(1, 1).Units(), kPair);
  EXPECT_EQ(text.Substring(2).ToUTF8(), "b");
  EXPECT_EQ(text.IndexOf(WideString("b")), 2);
  EXPECT_EQ(text.IndexOf(Units(kPair)), 1);
  EXPECT_EQ(text.IndexOf(Units(kPair.substr(0, 1))), -1);
  EXPECT_EQ(text.IndexOf(Units(kPair.substr(1))), -1);
  WideString appended("a");
  appended.AppendUTF32TextChar(0xD83D);
  EXPECT_EQ(appended.CharCount(), 2u);  // a lone surrogate counts on its own, until its low half completes it
  appended.AppendUTF32TextChar(0xDE00);
  EXPECT_EQ(appended.CharCount(), 2u);
  EXPECT_EQ(appended.GetUTF32TextChar(1), U'\U0001F600');
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

TEST(WideString, IndexOfSubstringAndRemoveClipToTheText) {
  WideString text("abcabc");
  EXPECT_EQ(text.IndexOf(WideString("c"), 3), 5);
  EXPECT_EQ(text.IndexOf(WideString("c"), 6), -1);
  EXPECT_EQ(text.IndexOf(WideString("c"), 99), -1);
  EXPECT_EQ(text.IndexOf(WideString("")), 0);
  EXPECT_EQ(text.Substring(4, 99).ToUTF8(), "bc");
  EXPECT_TRUE(text.Substring(6).IsEmpty());
  text.Remove(1, 2);
  text.Remove(3, 100);
  EXPECT_EQ(text.ToUTF8(), "aab");
}

// A lone continuation byte, an overlong form, an encoded surrogate, a sequence cut short and one beyond Unicode.
TEST(WideString, Utf8DecodingReplacesWhatIsMalformed) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"a\t\xC3\xA9\r\xF0\x9F\x98\x80", u"a\t\u00E9\r\U0001F600"}, {"a\x80z", u"a\uFFFDz"},
      {"\xC0\xAF", u"\uFFFD\uFFFD"}, {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"}, {"\xE2\x82z\xE2\x82", u"\uFFFDz\uFFFD"},
      {"\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
  };
  for (const auto& [bytes, units] : cases) EXPECT_EQ(WideString(bytes).Units(), units) << bytes;
}

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
