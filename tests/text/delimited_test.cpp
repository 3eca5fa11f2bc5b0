#include "text/delimited.h"

#include <gtest/gtest.h>

#include <random>
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
      {"DoubledQuotes", ",", u"\"say \"\"hi\"\"\",x", u"say \"hi\"\tx"},
      {"DelimiterInsideQuotes", ",", u"\"1,5\",2", u"1,5\t2"},
      {"MultiLineCell", ",", u"\"a\rb\",c\rd,e", u"a<br>b\tc\rd\te"},
      {"LineFeedAndTabInsideQuotes", ",", u"\"a\nb\tc\"", u"a<sr>b<tb>c"},
      {"TabInUnquotedField", ",", u"a\tb,c", u"a<tb>b\tc"},
      {"LineFeedInUnquotedFieldKept", ",", u"a\nb", u"a\nb"},
      {"EmptyFields", ",", u",,\r,", u"\t\t\r\t"},
      {"EmptyQuotedField", ",", u"\"\",x", u"\tx"},
      {"TrailingCR", ",", u"a,b\r", u"a\tb\r"},
      {"SemicolonFile", ";", u"a;b,c\r\"x;y\";z", u"a\tb,c\rx;y\tz"},
      {"QuoteInMiddleOfUnquotedField", ",", u"ab\"c,d", u"ab\"c\td"},
      {"QuoteAfterBlankIsText", ",", u" \"a,b\"", u" \"a\tb\""},
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
      {"DelimiterQuoted", ",", "\"", u"a\r1,5", u"a\r\"1,5\""},
      {"QuoteDoubled", ",", "\"", u"a\rsay \"hi\"", u"a\r\"say \"\"hi\"\"\""},
      {"BreakMarkerBecomesCR", ",", "\"", u"a\rx<br>y", u"a\r\"x\ry\""},
      {"TabMarkerBecomesTab", ",", "\"", u"a\rx<tb>y", u"a\r\"x\ty\""},
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

// import(export(T)) == T for TAB/CR tables whose values hold no CR or LF.
TEST(DelimitedRoundTripTest, GeneratedTables) {
  const std::u16string_view pieces[] = {u"",  u"a",    u"b c",  u",",     u";",  u"\"", u"\"\"", u"<br>", u"<tb>",
                                        u"<sr>", u"<end>", u"<b", u"r>", u"<", u"x\"y", SMILE, u"é",  u" "};
  std::mt19937 random(11);
  const auto pick = [&random](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  for (int round = 0; round < 500; ++round) {
    std::u16string table;
    for (std::size_t line = 1 + pick(5); line > 0; --line) {
      for (std::size_t field = 1 + pick(4); field > 0; --field) {
        for (std::size_t k = pick(4); k > 0; --k) table.append(pieces[pick(std::size(pieces))]);
        if (field > 1) table += u'\t';
      }
      if (line > 1 || pick(2)) table += u'\r';
    }
    for (const char* delimiter : {",", ";"}) {
      SCOPED_TRACE(std::string(delimiter) + " " + WideString::FromUTF16(table).ToUTF8());
      ASSERT_EQ(Import(Export(table, delimiter), delimiter), table);
    }
  }
}

}  // namespace
}  // namespace talp
