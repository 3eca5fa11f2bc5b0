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
      {"  \t42abc", 42, 42}, {"abc", 0, 0}, {"- 5", 0, 0}, {"3.75x", 3, 3.75}, {".5", 0, 0.5}, {"1e3", 1, 1000},
      {"inf", 0, 0}, {"0x1A", 0, 0}, {"99999999999", std::numeric_limits<std::int32_t>::max(), 99999999999.0},
      {"-99999999999", std::numeric_limits<std::int32_t>::min(), -99999999999.0},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(PMString(c.text).GetAsNumber(), c.number) << c.text;
    EXPECT_DOUBLE_EQ(PMString(c.text).GetAsDouble(), c.value) << c.text;
  }
  EXPECT_TRUE(std::isinf(PMString("1e999").GetAsDouble()));
  EXPECT_EQ(PMString("1e-999").GetAsDouble(), 0);
}

}  // namespace
