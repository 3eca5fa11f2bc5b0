#include "text/delimited.h"

#include <gtest/gtest.h>

#include <string>

namespace talp {
namespace {

WideString W(std::u16string_view units) { return WideString::FromUTF16(units); }
std::u16string U(const WideString& text) { return std::u16string(text.Units()); }

#define SMILE u"\U0001F600"

struct DelimitedCase {
  const char* name;
  const char* delimiter;
  std::u16string_view text, want;
  const char* quote = "\"";  // exporting only
};

TEST(DelimitedImportTest, UnicodeImportHandling) {
  const DelimitedCase cases[] = {
      {"Plain", ",", u"a,b,c\r1,2,3", u"a\tb\tc\r1\t2\t3"},
      {"DoubledQuotesAndDelimiterInsideQuotes", ",", u"\"say \"\"hi\"\", 1,5\",x", u"say \"hi\", 1,5\tx"},
      {"MultiLineCell", ",", u"\"a\rb\",c\rd,e", u"a<br>b\tc\rd\te"},
      {"LineFeedAndTabInsideQuotes", ",", u"\"a\nb\tc\"", u"a<sr>b<tb>c"},
      {"TabInUnquotedFieldAndLineFeedKept", ",", u"a\tb\nc,d", u"a<tb>b\nc\td"},
      {"EmptyFieldsAndTrailingCR", ",", u",\"\",\r,\r", u"\t\t\r\t\r"},
      {"SemicolonFile", ";", u"a;b,c\r\"x;y\";z", u"a\tb,c\rx;y\tz"},
      {"QuoteInsideOrAfterBlankIsText", ",", u"ab\"c, \"a,b\"", u"ab\"c\t \"a\tb\""},
      {"TextAfterClosingQuoteKept", ",", u"\"ab\"c\"d\",e", u"abc\"d\"\te"},
      {"UnterminatedQuoteRunsToTheEnd", ",", u"\"a,b\rc", u"a,b<br>c"}, {"LoneQuote", ",", u"\"", u""},
      {"PairsKept", ",", SMILE u",\"" SMILE u"\"", SMILE u"\t" SMILE},
      {"CRDelimiterOnlyEndsRecords", "\r", u"a\rb,c\r\"d\re\"", u"a\rb,c\rd<br>e"},
      {"QuoteDelimiterTurnsQuotingOff", "\"", u"a\"b\r\"c", u"a\tb\r\tc"},
      {"TabDelimiter", "\t", u"a\tb\r\"c\td\"", u"a\tb\rc<tb>d"},
      {"LineFeedDelimiter", "\n", u"a\nb\rc", u"a\tb\rc"},
      {"EmptyDelimiterChangesNothing", "", u"a,\"b\"", u"a,\"b\""},
  };
  for (const auto& c : cases) {
    WideString text = W(c.text);
    UnicodeImportHandling(text, PMString(c.delimiter));
    EXPECT_EQ(U(text), c.want) << c.name;
    // The plain character-by-character rule gives the same, whole or fed a unit at a time.
    if (*c.delimiter == '\0') continue;
    for (const std::size_t piece : {c.text.size() + 1, std::size_t{1}}) {
      DelimitedImporter reference(PMString(c.delimiter).GetChar(0), DelimitedImporter::Scan::kEachCharacter);
      std::u16string out;
      for (std::size_t at = 0; at < c.text.size(); at += piece) reference.Feed(c.text.substr(at, piece), out);
      EXPECT_EQ(out, c.want) << c.name << " in pieces of " << piece;
    }
  }
}

TEST(DelimitedExportTest, UnicodeExportHandling) {
  const DelimitedCase cases[] = {
      {"Plain", ",", u"a\tb\r1\t2", u"a,b\r1,2"},
      {"DelimiterQuotedQuoteDoubled", ",", u"a\tb\r1,5\tsay \"hi\"", u"a,b\r\"1,5\",\"say \"\"hi\"\"\""},
      {"MarkersBecomeCRAndTab", ",", u"a\rx<br>y<tb>z", u"a\r\"x\ry\tz\""},
      {"LineFeedMarkerStays", ",", u"a\rx<sr><end>", u"a\rx<sr><end>"},
      {"HeaderKeepsMarkers", ",", u"a<br>b\tc", u"a<br>b,c"},
      {"HeaderQuotedForDelimiter", ",", u"a,b\tc", u"\"a,b\",c"},
      {"EmptyFieldsAndTrailingCR", ",", u"\t\r\t\r", u",\r,\r"},
      {"LessThanBeforeMarker", ",", u"a\r<b<br>", u"a\r\"<b\r\""},
      {"SemicolonFile", ";", u"a\tb\r1,5\t2;3", u"a;b\r1,5;\"2;3\""},
      {"RawLineFeedQuoted", ",", u"a\rx\ny", u"a\r\"x\ny\""}, {"OtherQuote", ",", u"a\rit's", u"a\r'it''s'", "'"},
      {"EmptyQuoteIsTheDoubleQuote", ",", u"a\r1,5", u"a\r\"1,5\"", ""},
  };
  for (const auto& c : cases) {
    WideString text = W(c.text);
    UnicodeExportHandling(text, PMString(c.delimiter), PMString(c.quote));
    EXPECT_EQ(U(text), c.want) << c.name;
  }
}

}  // namespace
}  // namespace talp
