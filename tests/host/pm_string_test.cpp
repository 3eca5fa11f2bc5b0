#include "talp/pm_string.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

// GetAsNumber and GetAsDouble read the number a text starts with; GetAsNumber clamps to 32 bits.
TEST(PMString, ReadsALeadingNumber) {
  const struct {
    const char* text;
    std::int32_t number;
    double value;
  } cases[] = {
      {"3306", 3306, 3306}, {"  \t42abc", 42, 42}, {"-7", -7, -7}, {"+8", 8, 8}, {"", 0, 0}, {"abc", 0, 0},
      {"- 5", 0, 0}, {"3.75x", 3, 3.75}, {".5", 0, 0.5}, {"1e3", 1, 1000}, {"inf", 0, 0}, {"nan", 0, 0},
      {"0x1A", 0, 0}, {"99999999999", std::numeric_limits<std::int32_t>::max(), 99999999999.0},
      {"-99999999999", std::numeric_limits<std::int32_t>::min(), -99999999999.0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(PMString(c.text).GetAsNumber(), c.number) << c.text;
    EXPECT_DOUBLE_EQ(PMString(c.text).GetAsDouble(), c.value) << c.text;
  }
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
