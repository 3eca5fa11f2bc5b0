#include "text/delimited.h"

#include <gtest/gtest.h>

#include <string>

#include "text_cases.h"

namespace talp {
namespace {

// Import turns delimited into tabs, export turns tabs into delimited; a row for both is checked both ways.
enum Way { kImport = 1, kExport = 2, kBoth = kImport | kExport };

TEST(DelimitedTest, ImportAndExportHandling) {
  const struct {
    const char* name;
    Way way;
    const char* delimiter;
    std::u16string_view delimited, tabs;
    const char* quote = "\"";  // exporting only
  } cases[] = {
      {"DoubledQuotesAndDelimiterInsideQuotes", kBoth, ",", u"\"say \"\"hi\"\", 1,5\",x", u"say \"hi\", 1,5\tx"},
      {"CRAndTabInsideQuotesAsMarkers", kBoth, ",", u"a\r\"x\ry\tz\",b\rc", u"a\rx<br>y<tb>z\tb\rc"},
      {"EmptyFieldsAndTrailingCR", kBoth, ",", u",\r,\r", u"\t\r\t\r"},
      {"TabDelimiter", kBoth, "\t", u"a\tb\r\"c\td\"", u"a\tb\rc<tb>d"},
      {"EmptyDelimiterChangesNothing", kBoth, "", u"a,\"b\"", u"a,\"b\""},
      {"LineFeedAndTabInsideQuotes", kImport, ",", u"\"a\nb\tc\"", u"a<sr>b<tb>c"},
      {"TabInUnquotedFieldAndLineFeedKept", kImport, ",", u"a\tb\nc,d", u"a<tb>b\nc\td"},
      {"QuoteInsideOrAfterBlankIsText", kImport, ",", u"ab\"c, \"a,b\"", u"ab\"c\t \"a\tb\""},
      {"TextAfterClosingQuoteKept", kImport, ",", u"\"ab\"c\"d\",e", u"abc\"d\"\te"},
      {"UnterminatedQuoteRunsToTheEnd", kImport, ",", u"\"a,b\rc", u"a,b<br>c"},
      {"PairsKept", kImport, ",", SMILE u",\"" SMILE u"\"", SMILE u"\t" SMILE},
      {"CRDelimiterOnlyEndsRecords", kImport, "\r", u"a\rb,c\r\"d\re\"", u"a\rb,c\rd<br>e"},
      {"QuoteDelimiterTurnsQuotingOff", kImport, "\"", u"a\"b\r\"c", u"a\tb\r\tc"},
      {"LineFeedDelimiter", kImport, "\n", u"a\nb\rc", u"a\tb\rc"},
      {"LineFeedMarkerStays", kExport, ",", u"a\rx<sr><end>", u"a\rx<sr><end>"},
      {"HeaderKeepsMarkers", kExport, ",", u"a<br>b,c", u"a<br>b\tc"},
      {"LessThanBeforeMarker", kExport, ",", u"a\r\"<b\r\"", u"a\r<b<br>"},
      {"RawLineFeedQuoted", kExport, ",", u"a\r\"x\ny\"", u"a\rx\ny"},
      {"OtherQuote", kExport, ",", u"a\r'it''s'", u"a\rit's", "'"},
      {"EmptyQuoteIsTheDoubleQuote", kExport, ",", u"a\r\"1,5\"", u"a\r1,5", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (c.way & kExport) {
      WideString text = W(c.tabs);
      UnicodeExportHandling(text, PMString(c.delimiter), PMString(c.quote));
      EXPECT_EQ(U(text), c.delimited) << "exported";
    }
    if (!(c.way & kImport)) continue;
    WideString text = W(c.delimited);
    UnicodeImportHandling(text, PMString(c.delimiter));
    EXPECT_EQ(U(text), c.tabs) << "imported";
    // The plain character-by-character rule gives the same, whole or fed a unit at a time.
    if (*c.delimiter == '\0') continue;
    for (const std::size_t piece : {c.delimited.size() + 1, std::size_t{1}}) {
      DelimitedImporter reference(PMString(c.delimiter).GetChar(0), DelimitedImporter::Scan::kEachCharacter);
      std::u16string out;
      for (std::size_t at = 0; at < c.delimited.size(); at += piece) reference.Feed(c.delimited.substr(at, piece), out);
      EXPECT_EQ(out, c.tabs) << "in pieces of " << piece;
    }
  }
}

}  // namespace
}  // namespace talp
