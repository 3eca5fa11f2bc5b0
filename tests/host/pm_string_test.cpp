#include "talp/pm_string.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

struct NumberCase {
  const char* text;
  std::int32_t number;
  double value;
};

class PMStringNumbers : public testing::TestWithParam<NumberCase> {};

TEST_P(PMStringNumbers, ReadsALeadingNumber) {
  const PMString text(GetParam().text);
  EXPECT_EQ(text.GetAsNumber(), GetParam().number) << GetParam().text;
  EXPECT_DOUBLE_EQ(text.GetAsDouble(), GetParam().value) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(Texts, PMStringNumbers,
                         testing::Values(NumberCase{"3306", 3306, 3306}, NumberCase{"  \t42abc", 42, 42},
                                         NumberCase{"-7", -7, -7}, NumberCase{"+8", 8, 8},
                                         NumberCase{"", 0, 0}, NumberCase{"abc", 0, 0},
                                         NumberCase{"- 5", 0, 0}, NumberCase{"3.75x", 3, 3.75},
                                         NumberCase{".5", 0, 0.5}, NumberCase{"1e3", 1, 1000},
                                         NumberCase{"inf", 0, 0}, NumberCase{"nan", 0, 0},
                                         NumberCase{"0x1A", 0, 0},
                                         NumberCase{"99999999999", std::numeric_limits<std::int32_t>::max(), 99999999999.0},
                                         NumberCase{"-99999999999", std::numeric_limits<std::int32_t>::min(), -99999999999.0}));

TEST(PMString, HugeExponentsOverflowAndUnderflow) {
  EXPECT_TRUE(std::isinf(PMString("1e999").GetAsDouble()));
  EXPECT_LT(PMString("-1e999").GetAsDouble(), 0);
  EXPECT_EQ(PMString("1e-999").GetAsDouble(), 0);
}

TEST(PMString, EditsAndSearches) {
  PMString text("port=");
  text.AppendNumber(-8080);
  text.Append(PlatformChar{';'});
  text.Append(PMString("\xC3\xA9t\xC3\xA9"));
  EXPECT_EQ(text.GrabCString(), "port=-8080;\xC3\xA9t\xC3\xA9");
  EXPECT_EQ(text.CharCount(), 14u);
  EXPECT_EQ(text.GetChar(11), U'\u00E9');
  EXPECT_EQ(text.IndexOfString(PMString("t\xC3\xA9")), 12);
  EXPECT_EQ(text.IndexOfString(PMString("zz")), -1);
  text.Remove(0, 5);
  EXPECT_EQ(text.GrabCString(), "-8080;\xC3\xA9t\xC3\xA9");
  EXPECT_EQ(WideString(text).CharCount(), 9u);
}

}  // namespace
