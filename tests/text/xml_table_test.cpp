#include "text/xml_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <string>
#include <string_view>

#include "text/search_replace.h"

namespace talp {
namespace {

WideString W(std::u16string_view units) { return WideString::FromUTF16(units); }
std::u16string U(const WideString& text) { return std::u16string(text.Units()); }

#define SMILE u"\U0001F600"
#define DECL u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r"

TEST(XmlElementTest, IsXMLFile) {
  const struct {
    const char* name;
    std::u16string_view text;
    int want;
  } cases[] = {
      {"Declaration", u"<?xml version", 1},
      {"CaseSensitive", u"<?XML version", 0},
      {"AtTheVeryEndNotSeen", u"ab<?xml", 0},
      {"OneCharacterAfterIsEnough", u"<?xml ", 1},
      {"OnlyTheMarker", u"<?xml", 0},
      {"PairAfterIsOneCharacter", SMILE u"<?xml" SMILE, 1},
      {"Short", u"<?x", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(isXMLFile(W(c.text)), c.want);
  }
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
      {"Second", two, u"Process", 2, 2, u"b"},
      {"First", two, u"Process", 2, 1, u"a"},
      {"NoThird", two, u"Process", 2, 3, u""},
      {"ZeroIsNone", two, u"Process", 2, 0, u""},
      {"LongMinIsNone", two, u"Process", 2, LONG_MIN, u""},
      {"CaseSensitive", two, u"process", 0, 1, u""},
      {"TagEndingTheTextIsNotCountedButFound", u"x<P>", u"P", 0, 1, u""},
      {"PairAfterTheTag", u"<P>" SMILE, u"P", 1, 1, SMILE},
      {"OverlappingTagsCount", u"<><><>x</><>", u"><", 2, 2, u"x"},
      {"UnclosedRunsToTheEnd", u"<A>x\ty", u"A", 1, 1, u"x\ty"},
      {"NestedSameName", u"<A><A>x</A></A>", u"A", 2, 1, u"<A>x"},
      {"Empty", u"", u"A", 0, 1, u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString name = W(c.element);
    EXPECT_EQ(CountElementDepth(W(c.text), name), c.depth);
    EXPECT_EQ(U(name), u"<" + std::u16string(c.element) + u">");
    WideString out = W(u"stale");
    name = W(c.element);
    GetElementNumber(out, W(c.text), name, c.n);
    EXPECT_EQ(U(out), c.nth);
    EXPECT_EQ(U(name), u"<" + std::u16string(c.element) + u">");
  }
  EXPECT_EQ(CountRowDepth(W(u"<ROW><ROWS><row></ROW><RO")), 2);
}

TEST(XmlElementTest, GetAbsoluteField) {
  const struct {
    const char* name;
    std::u16string_view element, field, want;
  } cases[] = {
      {"TabBecomesMarker", u"<A>x\ty</A>", u"A", u"x<tb>y"},
      {"CRBecomesMarker", u"<A>x\ry</A>", u"A", u"x<br>y"},
      {"SelfClosingIsEmpty", u"<A/>", u"A", u""},
      {"FirstChildWins", u"<B>1</B><A>2</A><A>3</A>", u"A", u"2"},
      {"Missing", u"<B>1</B>", u"A", u""},
      {"UnclosedRunsToTheEnd", u"<A>xy", u"A", u"xy"},
      {"TagCutShort", u"<A", u"A", u""},
      {"LongerNameIsTakenLiterally", u"<AB>y</AB><A>x</A>", u"A", u">y"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString out = W(u"stale");
    GetAbsoluteField(out, W(c.element), W(c.field));
    EXPECT_EQ(U(out), c.want);
  }
}

TEST(XmlExportTest, ExportXML) {
  const struct {
    const char* name;
    std::u16string_view table, want;
  } cases[] = {
      {"FewerThanThreeCRsGiveTheDeclarationOnly", u"a\tb\t\r1\t2\t\r", DECL},
      {"ThreeCRsGiveOneRow", u"a\tb\t\r1\t2\t\r\r", DECL u"<ROW>\r<a>1</a>\r<b>2</b>\r</ROW>\r"},
      {"LastLineNeedsTheEmptyLineAfterIt", u"a\t\r1\t\r2\t\r", DECL u"<ROW>\r<a>1</a>\r</ROW>\r"},
      {"UnterminatedLastFieldIsLost", u"a\tb\r1\t2\r\r", DECL u"<ROW>\r<a>1</a>\r</ROW>\r"},
      {"StopsAtAnEmptyLine", u"a\t\r1\t\r\r2\t\r\r", DECL u"<ROW>\r<a>1</a>\r</ROW>\r"},
      {"MissingFieldsAreEmpty", u"a\tb\t\r1\r\r", DECL u"<ROW>\r<a>1</a>\r<b></b>\r</ROW>\r"},
      {"ValuesAreWrittenRaw", u"a\t\rx<&\t\r\r", DECL u"<ROW>\r<a>x<&</a>\r</ROW>\r"},
      {"Empty", u"", DECL},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString table = W(c.table);
    ExportXML(table);
    EXPECT_EQ(U(table), c.want);
  }
}

TEST(XmlParseTest, ParseXML) {
  const struct {
    const char* name;
    std::u16string_view xml, want;
  } cases[] = {
      {"ExportedTable", DECL u"<ROW>\r<a>1</a>\r<b>2</b>\r</ROW>\r<ROW>\r<a>3</a>\r<b>4</b>\r</ROW>\r", u"a\tb\r1\t2\r3\t4"},
      {"NoRowsIsEmpty", DECL, u""},
      {"WhitespaceBetweenElements", u"<ROWS>\n <ROW>\n  <a>1</a>\n  <b> 2 </b>\n </ROW>\n</ROWS>\n", u"a\tb\r1\t 2 "},
      {"SelfClosingIsEmpty", u"<ROW><a/><b>2</b></ROW><ROW><a>1</a><b/></ROW>", u"a\tb\r\t2\r1\t"},
      {"MissingFieldIsEmpty", u"<ROW><a>1</a><b>2</b></ROW><ROW><b>4</b></ROW>", u"a\tb\r1\t2\r\t4"},
      {"OtherOrderPlacedByName", u"<ROW><a>1</a><b>2</b></ROW><ROW><b>4</b><a>3</a></ROW>", u"a\tb\r1\t2\r3\t4"},
      {"UnknownNameGetsANewColumn", u"<ROW><a>1</a></ROW><ROW><c>5</c><a>3</a></ROW>", u"a\tc\r1\t\r3\t5"},
      {"RepeatedNamesKeepTheirPlaces", u"<ROW><a>1</a><a>2</a></ROW><ROW><a>3</a><a>4</a></ROW>", u"a\ta\r1\t2\r3\t4"},
      {"TabAndCRBecomeMarkers", u"<ROW><a\t>x\ty\rz</a\t></ROW>", u"a<tb>\rx<tb>y<br>z"},
      {"StoredFormsAreLeft", u"<ROW><a>&amp;~br~</a></ROW>", u"a\r&amp;~br~"},
      {"NameWithBlanks", u"<ROW><Price (EUR)>9</Price (EUR)></ROW>", u"Price (EUR)\r9"},
      {"EmptyName", u"<ROW><>1</></ROW>", u"\r1"},
      {"LessThanInValue", u"<ROW><a>1<2</a></ROW>", u"a\r1<2"},
      {"NestedMarkupIsValue", u"<ROW><a>x<i>y</i>z</a></ROW>", u"a\rx<i>y</i>z"},
      {"UnclosedChildEndsAtNextTag", u"<ROW><a>1<b>2</b></ROW>", u"a\tb\r1\t2"},
      {"UnclosedRowEndsAtNextRow", u"<ROW><a>1</a><ROW><a>2</a></ROW>", u"a\r1\r2"},
      {"UnclosedAtTheEnd", u"<ROW><a>1", u"a\r1"},
      {"RowWithAttributes", u"<ROW id=\"7\"><a>1</a></ROW>", u"a\r1"},
      {"EmptyRowIsALine", u"<ROW/><ROW><a>1</a></ROW>", u"a\r\r1"},
      {"CommentsIgnored", u"<!-- <ROW><x>1</x></ROW> --><ROW><a>1</a><!--c--></ROW>", u"a\r1"},
      {"StrayClosingTagsIgnored", u"<ROW></b><a>1</a></a></ROW>", u"a\r1"},
      {"Garbage", u"<<>><ROW<</ROW>>>", u""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString data = W(c.xml);
    ParseXML(data);
    EXPECT_EQ(U(data), c.want);
  }
}

// Thousands of unclosed elements and rows; a quadratic reader would not end.
TEST(XmlParseTest, PathologicalInputsStayLinear) {
  std::u16string unclosed = u"<ROW>";
  for (int i = 0; i < 100000; ++i) unclosed += u"<a>";
  WideString data = W(unclosed);
  ParseXML(data);
  EXPECT_EQ(data.CharCount(), 2 * 100000 - 1 + 1 + 100000 - 1);

  std::u16string rows;
  for (int i = 0; i < 100000; ++i) rows += u"<ROW><a>1</a>";
  data = W(rows);
  ParseXML(data);
  EXPECT_EQ(data.CharCount(), 1 + 100000 * 2);
}

TEST(XmlMarkersTest, CorrectMarkersAndEscape) {
  const struct {
    const char* name;
    std::u16string_view value, escaped;
  } cases[] = {
      {"Markers", u"<tb><br><sr><end>", u"~tb~~br~~sr~~end~"},
      {"Entities", u"&<>\"'", u"&amp;&lt;&gt;&quot;&apos;"},
      {"EntityTextIsEscapedAgain", u"&lt;", u"&amp;lt;"},
      {"LessThanBeforeAMarker", u"<<br>", u"&lt;~br~"},
      {"OtherTagsAreEscaped", u"<b>", u"&lt;b&gt;"},
      {"MarkerAfterText", u"x<br>tb~", u"x~br~tb~"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString value = W(c.value);
    EscapeValueForXML(value);
    EXPECT_EQ(U(value), c.escaped);
  }
  WideString stored = W(u"~~br~ ~xx~ ~tb~end~ ~br~tb~ ~sr");
  CorrectMarkersInXML(stored);
  EXPECT_EQ(U(stored), u"~<br> ~xx~ <tb>end~ <br>tb~ ~sr");
}

// The steps of the text-file source: reading is ParseXML, CorrectMarkersInXML
// and entity decoding with "&amp;" last; saving escapes each value, ends every
// field with a TAB and every line with a CR, adds an empty line and exports.
WideString ReadTable(WideString xml) {
  ParseXML(xml);
  CorrectMarkersInXML(xml);
  for (const auto& [entity, character] : {std::pair{u"&lt;", u"<"}, {u"&gt;", u">"}, {u"&quot;", u"\""},
                                          {u"&apos;", u"'"}, {u"&amp;", u"&"}}) {
    SearchReplaceUnicode(xml, W(entity), W(character));
  }
  return xml;
}

WideString SaveTable(std::u16string_view table) {
  std::u16string out;
  bool header = true;
  for (std::size_t start = 0, end = 0; end != std::u16string_view::npos; start = end + 1) {
    end = table.find(u'\r', start);
    const std::u16string_view line = table.substr(start, end - start);
    for (std::size_t from = 0, to = 0; to != std::u16string_view::npos; from = to + 1) {
      to = line.find(u'\t', from);
      WideString value = W(line.substr(from, to - from));
      if (!header) EscapeValueForXML(value);
      out.append(value.Units()) += u'\t';
    }
    out += u'\r';
    header = false;
  }
  WideString xml = W(out + u"\r");
  ExportXML(xml);
  return xml;
}

TEST(XmlTableRoundTripTest, KeepsEveryRecordColumnAndValue) {
  const std::u16string_view table =
      u"name\tnote\tPrice (EUR)\tname\r"
      u"A & B\t<br>line<tb>tab<sr><end>\t5 < 6 > 4\t\r"
      u"\"quoted\" 'single'\t&amp; &lt;br&gt; &quot;\t\t<end\r"
      u"\t\t\t\r"
      u"x\ny\t" SMILE u"\t</name>\t<ROW>";
  EXPECT_EQ(U(ReadTable(SaveTable(table))), table);
}

// Generated tables of awkward pieces; values hold no "~" (see the header).
TEST(XmlTableRoundTripTest, GeneratedTables) {
  const std::u16string_view names[] = {u"a", u"b", u"x y", u"Price (EUR)", u"é"};
  const std::u16string_view pieces[] = {u"",   u"a",    u"&",    u"<",     u">",     u"\"",       u"'",
                                        u" ",  u"\n",   u"<br>", u"<tb>",  u"<sr>",  u"<end>",    u"&amp;",
                                        u"&lt;", SMILE, u"</a>", u"<ROW>", u"<!--", u"&amp;lt;", u"<b"};
  std::mt19937 random(7);
  const auto pick = [&random](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  for (int round = 0; round < 300; ++round) {
    const std::size_t columns = 1 + pick(4);
    const std::size_t records = 1 + pick(4);
    std::u16string table;
    for (std::size_t c = 0; c < columns; ++c) table.append(c ? u"\t" : u"").append(names[pick(std::size(names))]);
    for (std::size_t r = 0; r < records; ++r) {
      table += u'\r';
      for (std::size_t c = 0; c < columns; ++c) {
        if (c) table += u'\t';
        for (std::size_t k = pick(4); k > 0; --k) table.append(pieces[pick(std::size(pieces))]);
      }
    }
    SCOPED_TRACE(std::string(WideString::FromUTF16(table).ToUTF8()));
    ASSERT_EQ(U(ReadTable(SaveTable(table))), table);
  }
}

}  // namespace
}  // namespace talp
