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
  EXPECT_EQ(text.GetUTF32TextChar(1), U'\U0001F600');
  EXPECT_EQ(text.GetUTF32TextChar(3), 0u);
  EXPECT_EQ(text.Substring(1, 1).Units(), kPair);
  EXPECT_EQ(text.IndexOf(Units(kPair)), 1);
  EXPECT_EQ(text.IndexOf(Units(kPair.substr(1))), -1);
  WideString appended("a");
  appended.AppendUTF32TextChar(0xD83D);
  EXPECT_EQ(appended.CharCount(), 2u);  // a lone surrogate counts on its own, until its low half completes it
  appended.AppendUTF32TextChar(0xDE00);
  EXPECT_EQ(appended.CharCount(), 2u);
  EXPECT_EQ(appended.GetUTF32TextChar(1), U'\U0001F600');
  EXPECT_EQ(Units(u"\xD800").ToUTF8(), "\xEF\xBF\xBD");  // a lone surrogate has no UTF-8 form
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

// A lone continuation byte, an overlong form, an encoded surrogate, a sequence cut short and one beyond Unicode.
TEST(WideString, Utf8DecodingReplacesWhatIsMalformed) {
  const std::pair<std::string, std::u16string> cases[] = {
      {"a\x80z", u"a\uFFFDz"}, {"\xC0\xAF", u"\uFFFD\uFFFD"}, {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},
      {"\xE2\x82z\xE2\x82", u"\uFFFDz\uFFFD"}, {"\xF5\x80\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},
  };
  for (const auto& [bytes, units] : cases) EXPECT_EQ(WideString(bytes).Units(), units) << bytes;
}

}  // namespace
