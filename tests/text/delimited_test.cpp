#include "text/delimited.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace talp {
namespace {

WideString W(std::u16string_view units) { return WideString::FromUTF16(units); }
std::u16string U(const WideString& text) { return std::u16string(text.Units()); }

#define SMILE u"\U0001F600"

std::u16string Import(std::u16string_view text, const char* delimiter) {
  WideString converted = W(text);
  UnicodeImportHandling(converted, PMString(delimiter));
  return U(converted);
}

std::u16string Export(std::u16string_view text, const char* delimiter, const char* quote = "\"") {
  WideString converted = W(text);
  UnicodeExportHandling(converted, PMString(delimiter), PMString(quote));
  return U(converted);
}

TEST(DelimitedImportTest, UnicodeImportHandling) {
  const struct {
    const char* name;
    const char* delimiter;
    std::u16string_view text, want;
  } cases[] = {
      {"Plain", ",", u"a,b,c\r1,2,3", u"a\tb\tc\r1\t2\t3"},
      {"DoubledQuotesAndDelimiterInsideQuotes", ",", u"\"say \"\"hi\"\", 1,5\",x", u"say \"hi\", 1,5\tx"},
      {"MultiLineCell", ",", u"\"a\rb\",c\rd,e", u"a<br>b\tc\rd\te"},
      {"LineFeedAndTabInsideQuotes", ",", u"\"a\nb\tc\"", u"a<sr>b<tb>c"},
      {"TabInUnquotedFieldAndLineFeedKept", ",", u"a\tb\nc,d", u"a<tb>b\nc\td"},
      {"EmptyFieldsAndTrailingCR", ",", u",\"\",\r,\r", u"\t\t\r\t\r"},
      {"SemicolonFile", ";", u"a;b,c\r\"x;y\";z", u"a\tb,c\rx;y\tz"},
      {"QuoteInsideOrAfterBlankIsText", ",", u"ab\"c, \"a,b\"", u"ab\"c\t \"a\tb\""},
      {"TextAfterClosingQuoteKept", ",", u"\"ab\"c\"d\",e", u"abc\"d\"\te"},
      {"UnterminatedQuoteRunsToTheEnd", ",", u"\"a,b\rc", u"a,b<br>c"},
      {"LoneQuote", ",", u"\"", u""},
      {"PairsKept", ",", SMILE u",\"" SMILE u"\"", SMILE u"\t" SMILE},
      {"EmptyDelimiterChangesNothing", "", u"a,\"b\"", u"a,\"b\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Import(c.text, c.delimiter), c.want);
  }
}

TEST(DelimitedExportTest, UnicodeExportHandling) {
  const struct {
    const char* name;
    const char* delimiter;
    const char* quote;
    std::u16string_view text, want;
  } cases[] = {
      {"Plain", ",", "\"", u"a\tb\r1\t2", u"a,b\r1,2"},
      {"DelimiterQuotedQuoteDoubled", ",", "\"", u"a\tb\r1,5\tsay \"hi\"", u"a,b\r\"1,5\",\"say \"\"hi\"\"\""},
      {"MarkersBecomeCRAndTab", ",", "\"", u"a\rx<br>y<tb>z", u"a\r\"x\ry\tz\""},
      {"LineFeedMarkerStays", ",", "\"", u"a\rx<sr><end>", u"a\rx<sr><end>"},
      {"HeaderKeepsMarkers", ",", "\"", u"a<br>b\tc", u"a<br>b,c"},
      {"HeaderQuotedForDelimiter", ",", "\"", u"a,b\tc", u"\"a,b\",c"},
      {"EmptyFieldsAndTrailingCR", ",", "\"", u"\t\r\t\r", u",\r,\r"},
      {"LessThanBeforeMarker", ",", "\"", u"a\r<b<br>", u"a\r\"<b\r\""},
      {"SemicolonFile", ";", "\"", u"a\tb\r1,5\t2;3", u"a;b\r1,5;\"2;3\""},
      {"RawLineFeedQuoted", ",", "\"", u"a\rx\ny", u"a\r\"x\ny\""},
      {"OtherQuote", ",", "'", u"a\rit's", u"a\r'it''s'"},
      {"EmptyQuoteIsTheDoubleQuote", ",", "", u"a\r1,5", u"a\r\"1,5\""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Export(c.text, c.delimiter, c.quote), c.want);
  }
}

}  // namespace
}  // namespace talp
