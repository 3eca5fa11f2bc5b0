#include <gtest/gtest.h>

#include <string>

#include "http/cyo_encode.h"

namespace {

// Both paddings, the last two letters of the alphabet, and a long input in one run without line breaks.
TEST(Base64Encode, WritesGroupsOfFourAndNothingBeyond) {
  std::string longOutput;
  for (int i = 0; i < 33333; ++i) longOutput += "Wlpa";
  const struct {
    const char* name;
    std::string input, expected;
  } rows[] = {
      {"two_pads", std::string(1, '\0'), "AA=="}, {"one_pad", "fooba", "Zm9vYmE="},
      {"plus_and_slash", "\xfb\xff\xbf", "+/+/"}, {"long", std::string(100000, '\x5a'), longOutput + "Wg=="},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::string out(row.expected.size() + 4, '#');
    const unsigned long count = CyoEncode::Base64Encode(out.data(), row.input.data(), row.input.size());
    EXPECT_EQ(count, row.expected.size());
    EXPECT_EQ(out, row.expected + "####");
  }
}

}  // namespace
