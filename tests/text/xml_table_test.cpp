#include "text/xml_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <string_view>

#include "text_cases.h"

namespace talp {
namespace {

#define DECL u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r"

// The scan stops one character short; a pair after "<?xml" is one character.
TEST(XmlElementTest, IsXMLFile) {
  EXPECT_EQ(isXMLFile(W(u"ab<?xml")), 0);
  EXPECT_EQ(isXMLFile(W(u"<?xml ")), 1);
  EXPECT_EQ(isXMLFile(W(SMILE u"<?xml" SMILE)), 1);
}

TEST(XmlElementTest, CountsAndNumberedElements) {
  const std::u16string_view two = u"<Process>a</Process><Process>b</Process>";
  const struct {
    const char* name;
    std::u16string_view text, element;
    int depth;
    long n;
    std::u16string_view nth;
  } cases[] = {
      {"Second", two, u"Process", 2, 2, u"b"}, {"LongMinIsNone", two, u"Process", 2, LONG_MIN, u""},
      {"TagEndingTheTextIsNotCountedButFound", u"x<P>", u"P", 0, 1, u""},
      {"PairAfterTheTag", u"<P>" SMILE, u"P", 1, 1, SMILE},
      {"OverlappingTagsCount", u"<><><>x</><>", u"><", 2, 2, u"x"},
      {"UnclosedRunsToTheEnd", u"<A>x\ty", u"A", 1, 1, u"x\ty"},
      {"NestedSameName", u"<A><A>x</A></A>", u"A", 2, 1, u"<A>x"},
  };
  // Both turn the name into its tag.
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const std::u16string tag = u"<" + std::u16string(c.element) + u">";
    WideString counted = W(c.element), numbered = W(c.element), out = W(u"stale");
    EXPECT_EQ(CountElementDepth(W(c.text), counted), c.depth);
    GetElementNumber(out, W(c.text), numbered, c.n);
    EXPECT_EQ(U(out), c.nth);
    EXPECT_EQ(U(counted) + U(numbered), tag + tag);
  }
  EXPECT_EQ(CountRowDepth(W(u"<ROW><ROWS><row></ROW><RO")), 2);
}

TEST(XmlElementTest, GetAbsoluteField) {
  const struct { const char* name; std::u16string_view element, field, want; } cases[] = {
      {"TabAndCRBecomeMarkers", u"<A>x\ty\rz</A>", u"A", u"x<tb>y<br>z"}, {"SelfClosingIsEmpty", u"<A/>", u"A", u""},
      {"FirstChildWins", u"<B>1</B><A>2</A><A>3</A>", u"A", u"2"}, {"Missing", u"<B>1</B>", u"A", u""},
      {"UnclosedRunsToTheEnd", u"<A>xy", u"A", u"xy"}, {"TagCutShort", u"<A", u"A", u""},
      {"LongerNameIsTakenLiterally", u"<AB>y</AB><A>x</A>", u"A", u">y"},
  };
  for (const auto& c : cases) {
    WideString out = W(u"stale");
    GetAbsoluteField(out, W(c.element), W(c.field));
    EXPECT_EQ(U(out), c.want) << c.name;
  }
}

TEST(XmlExportTest, ExportXML) {
  const TextCase cases[] = {
      {"FewerThanThreeCRsGiveTheDeclarationOnly", u"a\tb\t\r1\t2\t\r", DECL},
      {"LastLineNeedsALineAfterIt", u"a\tb\t\r1\t2\t\r3\t4\t\r", DECL u"<ROW>\r<a>1</a>\r<b>2</b>\r</ROW>\r"},
      {"UnterminatedLastFieldIsLost", u"a\tb\r1\t2\r\r", DECL u"<ROW>\r<a>1</a>\r</ROW>\r"},
      {"StopsAtAnEmptyLine", u"a\t\r1\t\r\r2\t\r\r", DECL u"<ROW>\r<a>1</a>\r</ROW>\r"},
      {"MissingFieldsAreEmpty", u"a\tb\t\r1\r\r", DECL u"<ROW>\r<a>1</a>\r<b></b>\r</ROW>\r"},
      {"ValuesAreWrittenRaw", u"a\t\rx<&\t\r\r", DECL u"<ROW>\r<a>x<&</a>\r</ROW>\r"},
  };
  ExpectEach(cases, ExportXML);
}

TEST(XmlParseTest, ParseXML) {
  const TextCase cases[] = {
      {"NoRowsIsEmpty", DECL, u""},
      {"SelfClosingAndMissingAreEmpty", u"<ROW><a/><b>2</b></ROW><ROW><b>4</b></ROW><ROW><a>1</a><b/></ROW>",
       u"a\tb\r\t2\r\t4\r1\t"},
      {"PlacedByNameAndUnknownNameGetsANewColumn", u"<ROW><a>1</a><b>2</b></ROW><ROW><c>5</c><b>4</b><a>3</a></ROW>",
       u"a\tb\tc\r1\t2\t\r3\t4\t5"},
      {"TabAndCRBecomeMarkers", u"<ROW><a\t>x\ty\rz</a\t></ROW>", u"a<tb>\rx<tb>y<br>z"},
      {"StoredFormsAreLeft", u"<ROW><a>&amp;~br~</a></ROW>", u"a\r&amp;~br~"},
      {"LessThanAndNestedMarkupAreValue", u"<ROW><a>1<2 x<i>y</i>z</a></ROW>", u"a\r1<2 x<i>y</i>z"},
      {"UnclosedChildEndsAtNextTag", u"<ROW><a>1<b>2</b></ROW>", u"a\tb\r1\t2"},
      {"UnclosedRowEndsAtNextRow", u"<ROW><a>1</a><ROW><a>2</a></ROW>", u"a\r1\r2"},
      {"EmptyRowIsALineAndAttributesAreLeft", u"<ROW/><ROW id=\"7\"><a>1</a></ROW>", u"a\r\r1"},
      {"CommentsAndStrayClosingTagsIgnored", u"<!-- <ROW><x>1</x></ROW> --><ROW></b><a>1</a></a><!--c--></ROW>",
       u"a\r1"},
      {"Garbage", u"<<>><ROW<</ROW>>>", u""},
  };
  ExpectEach(cases, ParseXML);
}

// Thousands of unclosed elements and rows; a quadratic reader would not end.
TEST(XmlParseTest, PathologicalInputsStayLinear) {
  std::u16string unclosed = u"<ROW>", rows;
  for (int i = 0; i < 100000; ++i) unclosed += u"<a>";
  for (int i = 0; i < 100000; ++i) rows += u"<ROW><a>1</a>";
  EXPECT_EQ(Changed(unclosed, ParseXML).size(), 2 * 100000 - 1 + 1 + 100000 - 1);
  EXPECT_EQ(Changed(rows, ParseXML).size(), 1 + 100000 * 2);
}

// Every "~" is tried as the start of a marker. (How values are escaped shows
// in the tables the "File" source writes.)
TEST(XmlMarkersTest, CorrectMarkersInXML) {
  WideString stored = W(u"~~br~ ~xx~ ~tb~end~ ~br~tb~ ~sr");
  CorrectMarkersInXML(stored);
  EXPECT_EQ(U(stored), u"~<br> ~xx~ <tb>end~ <br>tb~ ~sr");
}

}  // namespace
}  // namespace talp
