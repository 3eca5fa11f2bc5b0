#include "text/number_format.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "test_host.h"
#include "text/restyle_pipeline.h"

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

// Short decimals take a quicker way in and out; both must agree with the
// C++ library's correctly rounded reading and shortest writing everywhere.
TEST(CalcNumbers, QuickPathsAgreeWithTheLibrary) {
  std::mt19937_64 random(7);
  const auto reference = [](double value) {
    char buffer[400];
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed).ptr;
    return std::string(buffer, static_cast<std::size_t>(end - buffer));
  };
  // Where the quick way gives up: a value times 10^k near 2^52.
  std::vector<double> edges;
  for (const double power : {1.0, 10.0, 100.0, 1000.0, 10000.0}) {
    double above = 0x1p52 / power, below = above;
    for (int step = 0; step < 8; ++step) {
      edges.push_back(above);
      edges.push_back(below);
      above = std::nextafter(above, 1e300);
      below = std::nextafter(below, 0.0);
    }
  }
  for (const double value : edges) ASSERT_EQ(FormatCalcNumber(value).ToUTF8(), reference(value)) << value;
  for (int i = 0; i < 50000; ++i) {
    // Prices times quantities, short decimals of every size, and any double.
    const double price = static_cast<double>(random() % 100000) / 100, stock = static_cast<double>(random() % 1000);
    const double scaled = static_cast<double>(random() % 100000000) / std::pow(10.0, static_cast<int>(random() % 12));
    const double raw = std::bit_cast<double>(random());
    for (const double value : {price * stock, price, scaled, -scaled, raw}) {
      if (std::isnan(value) || std::isinf(value) || value == 0) continue;
      const std::string want = reference(value);
      ASSERT_EQ(FormatCalcNumber(value).ToUTF8(), want);
      double read = 0;
      std::from_chars(want.data() + (value < 0), want.data() + want.size(), read);
      ASSERT_EQ(ReadUserNumber(WideString(want).Units(), u'.'), read) << want;
    }
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

// The restyling workers call no host service: the separator is read on the
// caller's thread, and still governs the numbers of every record.
TEST(UserDecimal, IsReadOnTheCallersThreadOnly) {
  class ThreadRecordingHost : public test::TestHost {
   public:
    PMString LocalizedDecimal() const override {
      const std::lock_guard lock(mutex_);
      threads.insert(std::this_thread::get_id());
      return ",";
    }
    mutable std::set<std::thread::id> threads;

   private:
    mutable std::mutex mutex_;
  } host;
  const WideString styling(
      "<?xml version=\"1.0\"?><Styling>"
      "<Process><OutputField>twice</OutputField><ProcessType>Calc</ProcessType><ProcessInfo>[p]*2</ProcessInfo>"
      "</Process><Process><OutputField>shown</OutputField><ProcessType>Exfm</ProcessType>"
      "<ProcessInfo><EXIF>'[p]','0.00'</EXIF></ProcessInfo></Process></Styling>");
  RestylePipeline pipeline(styling, 2, 4);
  int read = 0, assembled = 0;
  pipeline.Run(
      WideString("p"),
      [&](std::u16string& record) {
        if (read == 64) return false;
        record = u"1,5\t";
        return ++read > 0;
      },
      [&](const RestylePipeline::Record& record) {
        ++assembled;
        EXPECT_EQ(record.text, u"1,5\t3\t1,50\t");
      });
  EXPECT_EQ(assembled, 64);
  EXPECT_EQ(host.threads, std::set<std::thread::id>{std::this_thread::get_id()});
}

}  // namespace
}  // namespace talp
