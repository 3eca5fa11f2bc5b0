#include "text/number_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "test_host.h"

namespace talp {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct TextCase {
  const char* name;
  const char* localizedDecimal;
  std::u16string_view text, want;
};

// Applies change to each case's text under the case's decimal setting and compares the result with want.
template <std::size_t N>
void ExpectEach(const TextCase (&cases)[N], void (*change)(WideString&)) {
  test::TestHost host;
  for (const TextCase& c : cases) {
    host.localizedDecimal = c.localizedDecimal;
    WideString text = WideString::FromUTF16(c.text);
    change(text);
    EXPECT_EQ(std::u16string(text.Units()), c.want) << c.name;
  }
}

TEST(StripUserDecimal, KeepsTheNumberWithAPoint) {
  const TextCase cases[] = {
      {"PointDropsCommas", ".", u"1,234.5", u"1234.5"}, {"Empty", ",", u"", u""},
      {"CommaDropsPoints", ",", u"1.234,5", u"1234.5"}, {"Minus", ".", u"-5", u"5"},
      {"OnlyAsciiDigitsStay", ",", u"\u20AC 1\u00A0234,5 \uFF17kg", u"1234.5"},
      {"UnknownSettingMeansPoint", ";", u"1,5;2.5", u"152.5"},
  };
  ExpectEach(cases, [](WideString& text) { text = StripUserDecimal(text).AsWide(); });
}

TEST(FormatCalcNumber, WritesAsPeopleDo) {
  test::TestHost host;
  host.localizedDecimal = ",";  // results keep "." whatever the user's setting
  // A sum keeps its last digit; extremes read back exactly, and nothing has an exponent.
  const std::pair<double, const char*> cases[] = {
      {20, "20"}, {3.5, "3.5"}, {0.1, "0.1"}, {0.1 + 0.2, "0.30000000000000004"}, {-2.25, "-2.25"}, {-0.0, "0"},
      {1e21, "1000000000000000000000"}, {1e-7, "0.0000001"}, {kInf, "inf"}, {-kInf, "-inf"}, {kNaN, "nan"},
      {-kNaN, "-nan"},
  };
  for (const auto& [value, want] : cases) EXPECT_EQ(FormatCalcNumber(value).ToUTF8(), want);
  for (double value : {std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::min(),
                       std::numeric_limits<double>::lowest(), 123456.789, -0.000123}) {
    const std::string text = FormatCalcNumber(value).ToUTF8();
    EXPECT_EQ(text.find_first_of("eE"), std::string::npos) << text;
    EXPECT_EQ(PMString(text).GetAsDouble(), value) << text;
  }
}

TEST(CreateFormatString, Formats) {
  const TextCase cases[] = {
      {"Grouped", ".", u"'1234.5','#,##0.00'", u"1,234.50"}, {"CommaDecimal", ",", u"'1234,5','#,##0.00'", u"1.234,50"},
      {"ReadsGroupedValue", ",", u"'1.234.567,891','#,##0.##'", u"1.234.567,89"},
      {"CurrencyPrefix", ",", u"'1234,5','\u20AC #,##0.00'", u"\u20AC 1.234,50"},
      {"UnitSuffix", ".", u"'2.25','#,##0.0 kg'", u"2.3 kg"}, {"RoundsTheTypedDigits", ".", u"'1.005','0.00'", u"1.01"},
      {"HalfAwayFromZero", ".", u"'-2.5','0'", u"-3"}, {"CarryAddsADigit", ".", u"'999.995','#,##0.00'", u"1,000.00"},
      {"MinusBeforePrefix", ".", u"'EUR -1234.5','$#,##0.00'", u"-$1,234.50"},
      {"RoundedToZeroHasNoSign", ".", u"'-0.001','0.00'", u"0.00"},
      {"OptionalDecimalsDrop", ".", u"'5.10','0.0#'", u"5.1"}, {"NoDecimalsNoPoint", ",", u"'5','0.##'", u"5"},
      {"Zero", ".", u"'0','#'", u"0"}, {"ZeroPadding", ".", u"'7','0,000'", u"0,007"},
      {"OptionalIntegerDigit", ".", u"'0.5','#.00'", u".50"},
      {"LastGroupSizeCounts", ".", u"'1234567','#,##,#0'", u"1,23,45,67"},
      {"TypographicQuotes", ".", u"\u20181234.5\u2019,\u2018#,##0\u2019", u"1,235"},
      {"QuotedLiteral", ".", u"'12','\"No. #\"0\u201C pcs\u201D'", u"No. #12 pcs"},
      {"ApostropheInSuffix", ".", u"'3','0 o'clock'", u"3 o'clock"},
      {"HugeValue", ".", u"'12345678901234567890123','#,##0'", u"12,345,678,901,234,567,890,123"},
      {"ManyDecimals", ".", u"'0.1','0.0000000000000000000'", u"0.1000000000000000000"},
  };
  ExpectEach(cases, CreateFormatString);
}

// Not quoted, one or three parts, empty, no digits, two points, an empty pattern or one without placeholders,
// grouping among the decimals, a literal between digits, or typographic quotes around what is not a number.
TEST(CreateFormatString, LeavesAloneWhatItCannotRead) {
  test::TestHost host;
  for (const std::u16string_view text :
       {u"1234,#,##0", u"'1234'", u"'1','0','0'", u"", u"'inf','0.00'", u"'5','0.0.0'", u"'5',''", u"'5','kg'",
        u"'5','0.0,0'", u"'5','0 000'", u"\u2018x\u2019,\u20180\u2019"}) {
    WideString changed = WideString::FromUTF16(text);
    CreateFormatString(changed);
    EXPECT_EQ(std::u16string(changed.Units()), text);
  }
}

}  // namespace
}  // namespace talp
