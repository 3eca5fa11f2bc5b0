#include "text/if_string.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace talp {
namespace {

struct IfCase {
  const char* name;
  std::u16string_view text, want;
  friend void PrintTo(const IfCase& c, std::ostream* os) { *os << c.name; }
};

std::string CaseName(const testing::TestParamInfo<IfCase>& info) { return info.param.name; }

std::u16string OneLevel(std::u16string_view body) {
  WideString text = WideString::FromUTF16(body);
  HandleOneLevelIfString(text);
  return std::u16string(text.Units());
}

std::u16string Created(std::u16string_view body) {
  WideString text = WideString::FromUTF16(body);
  CreateIfString(text);
  return std::u16string(text.Units());
}

class OneLevelIfString : public testing::TestWithParam<IfCase> {};

TEST_P(OneLevelIfString, ChoosesItsText) { EXPECT_EQ(OneLevel(GetParam().text), GetParam().want); }

INSTANTIATE_TEST_SUITE_P(
    Bodies, OneLevelIfString,
    testing::Values(IfCase{"Equal", u"'a'=='a','yes','no'", u"yes"},
                    IfCase{"NotEqual", u"'a'!='a','yes','no'", u"no"},
                    IfCase{"TypographicQuotes", u"\u2018a\u2019==\u2018a\u2019,\u2018yes\u2019,\u2018no\u2019", u"yes"},
                    IfCase{"LessIsReversed", u"'abc'<'abd','yes','no'", u"no"},
                    IfCase{"LessWhenAfter", u"'abd'<'abc','yes','no'", u"yes"},
                    IfCase{"GreaterWhenBefore", u"'abc'>'abd','yes','no'", u"yes"},
                    IfCase{"LessEqualNotReversed", u"'abc'<='abd','yes','no'", u"yes"},
                    IfCase{"TextualNotNumeric", u"'10'>='9','yes','no'", u"no"},
                    IfCase{"GreaterEqualWhenEqual", u"'b'>='b','yes','no'", u"yes"},
                    IfCase{"CodePointsNotUnits", u"'\U0001F600'>'\uFFFD','yes','no'", u"no"},
                    IfCase{"AnythingIsEqual", u"'\uFEFF'=='x','yes','no'", u"yes"},
                    IfCase{"AnythingNeverDiffers", u"'\uFEFF'!='x','yes','no'", u"no"},
                    IfCase{"AnythingNeverGreaterEqual", u"'\uFEFF'>='x','yes','no'", u"no"},
                    IfCase{"AnythingNeverLess", u"'\uFEFF'<'x','yes','no'", u"no"},
                    IfCase{"AnythingOnlyAlone", u"'\uFEFF\uFEFF'!='x','yes','no'", u"yes"},
                    // "'>='" holds no "'>'", but a "'>'" elsewhere is found first.
                    IfCase{"QuotedGreaterInTextWins", u"'b'>='a','>','no'", u",'no"},
                    IfCase{"NoOperatorGivesEmpty", u"'a'~'a','yes','no'", u""},
                    IfCase{"BareQuotesGiveEmpty", u"''", u""}),
    CaseName);

class CreatedIfString : public testing::TestWithParam<IfCase> {};

TEST_P(CreatedIfString, ResolvesInsideOut) { EXPECT_EQ(Created(GetParam().text), GetParam().want); }

INSTANTIATE_TEST_SUITE_P(
    Texts, CreatedIfString,
    testing::Values(
        IfCase{"WithoutTagIsOneBody", u"'a'=='a','yes','no'", u"yes"},
        IfCase{"NestedInThen", u"'a'=='a','<EXIF>'b'=='c','y','n'</EXIF>','no'", u"n"},
        IfCase{"NestedInElse", u"'a'=='b','no','<EXIF>'c'=='c','y','n'</EXIF>'", u"y"},
        IfCase{"NestedTwice", u"'a'=='a','<EXIF>'b'=='b','<EXIF>'c'=='d','1','2'</EXIF>','3'</EXIF>','no'", u"2"},
        IfCase{"SideBySide", u"'<EXIF>'1'=='1','x','y'</EXIF>'=='<EXIF>'2'=='3','z','x'</EXIF>','same','differ'",
               u"same"},
        IfCase{"NestedInSequence",
               u"'a'=='a','<EXIF>'b'=='b','<EXIF>'c'=='d','1','2'</EXIF>','3'</EXIF>"
               u"-<EXIF>'e'=='e','4','5'</EXIF>','no'",
               u"2-4"},
        IfCase{"EmptyConditionalIsEmpty", u"'<EXIF></EXIF>'=='','y','n'", u"y"},
        IfCase{"CloseTagTakesAnySeventhCharacter", u"'a'=='a','<EXIF>'b'=='b','y','n'</EXIF\U0001F600','no'", u"y"},
        // The inner seventh character is the "<" that closes the middle body.
        IfCase{"CloseTagRightAfterCloseTag",
               u"'a'=='a','<EXIF>'b'!='b','x','<EXIF>'1'=='1','y'','m'</EXIF</EXIF>','no'", u"y"},
        IfCase{"TagsFormedByAValueStayText", u"'a'=='a','<EX<EXIF>'1'=='1','IF>','n'</EXIF>x</EXIF>','no'",
               u"<EXIF>x</EXIF>"},
        IfCase{"UnclosedTagIsText", u"'<EXIF>'=='<EXIF>','y','n'", u"y"},
        IfCase{"UnclosedTagBeforeConditional", u"'x<EXIF>'!='<EXIF>'1'=='1','x','y'</EXIF>','yes','no'", u"yes"},
        IfCase{"StrayCloseTagsAreText", u"'a</EXIF>'=='<EXIF>'1'=='1','a','b'</EXIF></EXIF>','y','n'", u"y"}),
    CaseName);

std::u16string Repeat(std::u16string_view piece, int times) {
  std::u16string out;
  for (int i = 0; i < times; ++i) out += piece;
  return out;
}

TEST(CreatedIfString, DeepNestingNeedsNoStack) {
  constexpr int kDepth = 100000;
  const std::u16string nested =
      u"'a'=='a','" + Repeat(u"<EXIF>'a'=='a','", kDepth) + u"y" + Repeat(u"','n'</EXIF>", kDepth) + u"','n'";
  EXPECT_EQ(Created(nested), u"y");
  const std::u16string unclosed = u"'" + Repeat(u"<EXIF>", kDepth) + u"'=='" + Repeat(u"<EXIF>", kDepth) + u"','y','n'";
  EXPECT_EQ(Created(unclosed), u"y");
  EXPECT_EQ(Created(u"'" + Repeat(u"</EXIF>", kDepth) + u"'!='','y','n'"), u"y");
}

}  // namespace
}  // namespace talp
