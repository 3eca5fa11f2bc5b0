#include "text/number_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <ostream>
#include <string>

#include "test_host.h"

namespace talp {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::u16string U(const WideString& text) { return std::u16string(text.Units()); }
std::string NameOf(const auto& p) { return p.param.name; }

struct TextCase {
  const char* name;
  const char* localizedDecimal;
  std::u16string_view text, want;
  friend void PrintTo(const TextCase& c, std::ostream* os) { *os << c.name; }
};

class StripUserDecimalTest : public testing::TestWithParam<TextCase> {};

TEST_P(StripUserDecimalTest, KeepsTheNumberWithAPoint) {
  test::TestHost host;
  host.localizedDecimal = GetParam().localizedDecimal;
  EXPECT_EQ(U(StripUserDecimal(WideString::FromUTF16(GetParam().text))), GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, StripUserDecimalTest,
    testing::Values(TextCase{"PointDropsCommas", ".", u"1,234.5", u"1234.5"}, TextCase{"Empty", ",", u"", u""},
                    TextCase{"CommaDropsPoints", ",", u"1.234,5", u"1234.5"}, TextCase{"Minus", ".", u"-5", u"5"},
                    TextCase{"OnlyAsciiDigitsStay", ",", u"\u20AC 1\u00A0234,5 \uFF17kg", u"1234.5"},
                    TextCase{"UnknownSettingMeansPoint", ";", u"1,5;2.5", u"152.5"}),
    NameOf<testing::TestParamInfo<TextCase>>);

struct CalcCase {
  const char* name;
  double value;
  const char* want;
  friend void PrintTo(const CalcCase& c, std::ostream* os) { *os << c.name; }
};

class FormatCalcNumberTest : public testing::TestWithParam<CalcCase> {};

TEST_P(FormatCalcNumberTest, WritesAsPeopleDo) {
  test::TestHost host;
  host.localizedDecimal = ",";  // results keep "." whatever the user's setting
  EXPECT_EQ(FormatCalcNumber(GetParam().value).ToUTF8(), GetParam().want);
}

INSTANTIATE_TEST_SUITE_P(
    Values, FormatCalcNumberTest,
    testing::Values(CalcCase{"Integer", 20, "20"}, CalcCase{"Half", 3.5, "3.5"}, CalcCase{"Tenth", 0.1, "0.1"},
                    CalcCase{"SumKeepsItsLastDigit", 0.1 + 0.2, "0.30000000000000004"},
                    CalcCase{"Negative", -2.25, "-2.25"}, CalcCase{"NegativeZero", -0.0, "0"},
                    CalcCase{"Large", 1e21, "1000000000000000000000"}, CalcCase{"Small", 1e-7, "0.0000001"},
                    CalcCase{"Inf", kInf, "inf"}, CalcCase{"MinusInf", -kInf, "-inf"}, CalcCase{"NaN", kNaN, "nan"},
                    CalcCase{"MinusNaN", -kNaN, "-nan"}),
    NameOf<testing::TestParamInfo<CalcCase>>);

TEST(FormatCalcNumber, ExtremesReadBackWithoutExponent) {
  for (double value : {std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::min(),
                       std::numeric_limits<double>::lowest(), 123456.789, -0.000123}) {
    const std::string text = FormatCalcNumber(value).ToUTF8();
    EXPECT_EQ(text.find_first_of("eE"), std::string::npos) << text;
    EXPECT_EQ(PMString(text).GetAsDouble(), value) << text;
  }
}

class CreateFormatStringTest : public testing::TestWithParam<TextCase> {};

TEST_P(CreateFormatStringTest, FormatsOrLeavesAlone) {
  test::TestHost host;
  host.localizedDecimal = GetParam().localizedDecimal;
  WideString text = WideString::FromUTF16(GetParam().text);
  CreateFormatString(text);
  EXPECT_EQ(U(text), GetParam().want.empty() ? GetParam().text : GetParam().want);
}

// An empty want means the text comes back unchanged.
INSTANTIATE_TEST_SUITE_P(
    Texts, CreateFormatStringTest,
    testing::Values(TextCase{"Grouped", ".", u"'1234.5','#,##0.00'", u"1,234.50"},
                    TextCase{"CommaDecimal", ",", u"'1234,5','#,##0.00'", u"1.234,50"},
                    TextCase{"ReadsGroupedValue", ",", u"'1.234.567,891','#,##0.##'", u"1.234.567,89"},
                    TextCase{"CurrencyPrefix", ",", u"'1234,5','\u20AC #,##0.00'", u"\u20AC 1.234,50"},
                    TextCase{"UnitSuffix", ".", u"'2.25','#,##0.0 kg'", u"2.3 kg"},
                    TextCase{"RoundsTheTypedDigits", ".", u"'1.005','0.00'", u"1.01"},
                    TextCase{"HalfAwayFromZero", ".", u"'-2.5','0'", u"-3"},
                    TextCase{"CarryAddsADigit", ".", u"'999.995','#,##0.00'", u"1,000.00"},
                    TextCase{"MinusBeforePrefix", ".", u"'EUR -1234.5','$#,##0.00'", u"-$1,234.50"},
                    TextCase{"RoundedToZeroHasNoSign", ".", u"'-0.001','0.00'", u"0.00"},
                    TextCase{"OptionalDecimalsDrop", ".", u"'5.10','0.0#'", u"5.1"},
                    TextCase{"NoDecimalsNoPoint", ",", u"'5','0.##'", u"5"}, TextCase{"Zero", ".", u"'0','#'", u"0"},
                    TextCase{"ZeroPadding", ".", u"'7','0,000'", u"0,007"},
                    TextCase{"OptionalIntegerDigit", ".", u"'0.5','#.00'", u".50"},
                    TextCase{"LastGroupSizeCounts", ".", u"'1234567','#,##,#0'", u"1,23,45,67"},
                    TextCase{"TypographicQuotes", ".", u"\u20181234.5\u2019,\u2018#,##0\u2019", u"1,235"},
                    TextCase{"QuotedLiteral", ".", u"'12','\"No. #\"0\u201C pcs\u201D'", u"No. #12 pcs"},
                    TextCase{"ApostropheInSuffix", ".", u"'3','0 o'clock'", u"3 o'clock"},
                    TextCase{"HugeValue", ".", u"'12345678901234567890123','#,##0'", u"12,345,678,901,234,567,890,123"},
                    TextCase{"ManyDecimals", ".", u"'0.1','0.0000000000000000000'", u"0.1000000000000000000"},
                    TextCase{"NotQuoted", ".", u"1234,#,##0", u""}, TextCase{"NoSeparator", ".", u"'1234'", u""},
                    TextCase{"TwoSeparators", ".", u"'1','0','0'", u""}, TextCase{"Empty", ".", u"", u""},
                    TextCase{"NoDigits", ".", u"'inf','0.00'", u""}, TextCase{"TwoPoints", ".", u"'5','0.0.0'", u""},
                    TextCase{"EmptyPattern", ".", u"'5',''", u""}, TextCase{"NoPlaceholders", ".", u"'5','kg'", u""},
                    TextCase{"GroupedDecimals", ".", u"'5','0.0,0'", u""},
                    TextCase{"LiteralBetweenDigits", ".", u"'5','0 000'", u""},
                    TextCase{"TypographicLeftAsTyped", ".", u"\u2018x\u2019,\u20180\u2019", u""}),
    NameOf<testing::TestParamInfo<TextCase>>);

}  // namespace
}  // namespace talp
