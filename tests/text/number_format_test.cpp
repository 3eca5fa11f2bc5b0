#include "text/number_format.h"

#include <gtest/gtest.h>

#include <limits>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "test_host.h"
#include "text_cases.h"
#include "text/restyle_pipeline.h"

namespace talp {
namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct DecimalCase {
  const char* name;
  const char* localizedDecimal;
  std::u16string_view text, want;
};

// Applies change to each case's text under the case's decimal setting.
template <std::size_t N>
void ExpectEach(const DecimalCase (&cases)[N], void (*change)(WideString&)) {
  test::TestHost host;
  for (const DecimalCase& c : cases) {
    host.localizedDecimal = c.localizedDecimal;
    EXPECT_EQ(Changed(c.text, change), c.want) << c.name;
  }
}

TEST(StripUserDecimal, KeepsTheNumberWithAPoint) {
  const DecimalCase cases[] = {
      {"PointDropsCommas", ".", u"1,234.5", u"1234.5"}, {"CommaDropsPoints", ",", u"1.234,5", u"1234.5"},
      {"MinusIsDropped", ".", u"-5", u"5"},
      {"OnlyAsciiDigitsStay", ",", u"\u20AC 1\u00A0234,5 \uFF17kg", u"1234.5"},
      {"UnknownSettingMeansPoint", ";", u"1,5;2.5", u"152.5"},
  };
  ExpectEach(cases, [](WideString& text) { text = StripUserDecimal(text).AsWide(); });
}

TEST(FormatCalcNumber, WritesAsPeopleDo) {
  test::TestHost host;
  host.localizedDecimal = ",";  // results keep "." whatever the user's setting
  const struct { const char* name; double value; std::string want; } cases[] = {
      {"SumWithoutNoise", 0.1 + 0.2, "0.3"}, {"PriceTimesStock", 345.16 * 2507, "865316.12"},
      {"NegativeZero", -0.0, "0"}, {"RoundsUp", 2.0 / 3, "0.666666666666667"},
      {"SixteenDigitsRound", 1234567890123456.0, "1234567890123460"},
      {"CarryGivesAPowerOfTen", 999999999999999.9, "1000000000000000"},
      {"LargeKeepsFifteenDigits", 1.2345678901234567e20, "123456789012346000000"},
      {"SmallKeepsFifteenDigits", 1.0 / 3e10, "0.0000000000333333333333333"},
      {"ExactTieToEven", 0x1p-22, "0.000000238418579101562"},
      {"Tiniest", std::numeric_limits<double>::denorm_min(), "0." + std::string(323, '0') + "494065645841247"},
      {"Lowest", std::numeric_limits<double>::lowest(), "-179769313486232" + std::string(294, '0')},
      {"Infinity", kInf, "inf"}, {"MinusInfinity", -kInf, "-inf"}, {"NaN", kNaN, "nan"}, {"MinusNaN", -kNaN, "-nan"},
  };
  for (const auto& c : cases) EXPECT_EQ(FormatCalcNumber(c.value).ToUTF8(), c.want) << c.name;
}

TEST(CreateFormatString, Formats) {
  const DecimalCase cases[] = {
      {"Grouped", ".", u"'1234.5','#,##0.00'", u"1,234.50"}, {"CommaDecimal", ",", u"'1234,5','#,##0.00'", u"1.234,50"},
      {"CurrencyPrefix", ",", u"'1234,5','\u20AC #,##0.00'", u"\u20AC 1.234,50"},
      {"RoundsTheTypedDigits", ".", u"'1.005','0.00'", u"1.01"}, {"HalfAwayFromZero", ".", u"'-2.5','0'", u"-3"},
      {"CarryAddsADigit", ".", u"'999.995','#,##0.00'", u"1,000.00"},
      {"MinusBeforePrefix", ".", u"'EUR -1234.5','$#,##0.00'", u"-$1,234.50"},
      {"RoundedToZeroHasNoSign", ".", u"'-0.001','0.00'", u"0.00"}, {"ZeroPadding", ".", u"'7','0,000'", u"0,007"},
      {"OptionalDecimalsDrop", ".", u"'5.10','0.0#'", u"5.1"}, {"NoDecimalsNoPoint", ",", u"'5','0.##'", u"5"},
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
    EXPECT_EQ(Changed(text, CreateFormatString), text);
  }
}

// The restyling workers call no host service: the separator is read on the
// caller's thread, and still governs the numbers of every record.
TEST(UserDecimal, IsReadOnTheCallersThreadOnly) {
  struct ThreadRecordingHost : test::TestHost {
    PMString LocalizedDecimal() const override {
      const std::lock_guard lock(mutex);
      threads.insert(std::this_thread::get_id());
      return ",";
    }
    mutable std::set<std::thread::id> threads;
    mutable std::mutex mutex;
  } host;
  const WideString styling(
      "<?xml version=\"1.0\"?><Styling>"
      "<Process><OutputField>twice</OutputField><ProcessType>Calc</ProcessType><ProcessInfo>[p]*2</ProcessInfo>"
      "</Process><Process><OutputField>shown</OutputField><ProcessType>Exfm</ProcessType>"
      "<ProcessInfo><EXIF>'[p]','0.00'</EXIF></ProcessInfo></Process></Styling>");
  RestylePipeline pipeline(styling, 2, 4);
  int read = 0;
  std::vector<std::u16string> records;
  pipeline.Run(
      WideString("p"), [&](std::u16string& record) { return read++ < 64 && (record = u"1,5\t", true); },
      [&](const RestylePipeline::Record& record) { records.push_back(record.text); });
  EXPECT_EQ(records, std::vector<std::u16string>(64, u"1,5\t3\t1,50\t"));
  EXPECT_EQ(host.threads, std::set<std::thread::id>{std::this_thread::get_id()});
}

}  // namespace
}  // namespace talp
