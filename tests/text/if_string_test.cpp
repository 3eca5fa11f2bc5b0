#include "text/if_string.h"

#include <gtest/gtest.h>

#include <string>

#include "text_cases.h"

namespace talp {
namespace {

// A text without "<EXIF>" is one body, as HandleOneLevelIfString reads it.
TEST(CreatedIfString, ChoosesItsTextInsideOut) {
  const TextCase cases[] = {
      {"Equal", u"'a'=='a','yes','no'", u"yes"}, {"NotEqual", u"'a'!='a','yes','no'", u"no"},
      {"TypographicQuotes", u"\u2018a\u2019==\u2018a\u2019,\u2018yes\u2019,\u2018no\u2019", u"yes"},
      {"LessIsReversed", u"'abc'<'abd','yes','no'", u"no"}, {"GreaterWhenBefore", u"'abc'>'abd','yes','no'", u"yes"},
      {"LessEqualNotReversed", u"'abc'<='abd','yes','no'", u"yes"},
      {"TextualNotNumeric", u"'10'>='9','yes','no'", u"no"},
      {"CodePointsNotUnits", u"'\U0001F600'>'\uFFFD','yes','no'", u"no"},
      // A lone U+FEFF equals anything, and never differs from it nor orders against it.
      {"AnythingIsEqual", u"'\uFEFF'=='x','yes','no'", u"yes"},
      {"AnythingNeverDiffers", u"'\uFEFF'!='x','yes','no'", u"no"},
      {"AnythingOnlyAlone", u"'\uFEFF\uFEFF'!='x','yes','no'", u"yes"},
      // "'>='" holds no "'>'", but a "'>'" elsewhere is found first.
      {"QuotedGreaterInTextWins", u"'b'>='a','>','no'", u",'no"}, {"NoOperatorGivesEmpty", u"'a'~'a','yes','no'", u""},
      {"NestedInSequence",
       u"'a'=='a','<EXIF>'b'=='b','<EXIF>'c'=='d','1','2'</EXIF>','3'</EXIF>-<EXIF>'e'=='e','4','5'</EXIF>','no'",
       u"2-4"},
      {"SideBySide", u"'<EXIF>'1'=='1','x','y'</EXIF>'=='<EXIF>'2'=='3','z','x'</EXIF>','same','differ'", u"same"},
      {"EmptyConditionalIsEmpty", u"'<EXIF></EXIF>'=='','y','n'", u"y"},
      {"CloseTagTakesAnySeventhCharacter", u"'a'=='a','<EXIF>'b'=='b','y','n'</EXIF\U0001F600','no'", u"y"},
      // The inner seventh character is the "<" that closes the middle body.
      {"CloseTagRightAfterCloseTag",
       u"'a'=='a','<EXIF>'b'!='b','x','<EXIF>'1'=='1','y'','m'</EXIF</EXIF>','no'", u"y"},
      {"TagsFormedByAValueStayText", u"'a'=='a','<EX<EXIF>'1'=='1','IF>','n'</EXIF>x</EXIF>','no'",
       u"<EXIF>x</EXIF>"},
      {"UnclosedTagIsText", u"'x<EXIF>'!='<EXIF>'1'=='1','x','y'</EXIF>','yes','no'", u"yes"},
      {"StrayCloseTagsAreText", u"'a</EXIF>'=='<EXIF>'1'=='1','a','b'</EXIF></EXIF>','y','n'", u"y"},
  };
  ExpectEach(cases, CreateIfString);
}

std::u16string Repeat(std::u16string_view piece, int times) {
  std::u16string out;
  for (int i = 0; i < times; ++i) out += piece;
  return out;
}

TEST(CreatedIfString, DeepNestingNeedsNoStack) {
  constexpr int kDepth = 100000;
  const std::u16string nested =
      u"'a'=='a','" + Repeat(u"<EXIF>'a'=='a','", kDepth) + u"y" + Repeat(u"','n'</EXIF>", kDepth) + u"','n'";
  EXPECT_EQ(Changed(nested, CreateIfString), u"y");
  const std::u16string unclosed = u"'" + Repeat(u"<EXIF>", kDepth) + u"'=='" + Repeat(u"<EXIF>", kDepth) + u"','y','n'";
  EXPECT_EQ(Changed(unclosed, CreateIfString), u"y");
  EXPECT_EQ(Changed(u"'" + Repeat(u"</EXIF>", kDepth) + u"'!='','y','n'", CreateIfString), u"y");
}

}  // namespace
}  // namespace talp
