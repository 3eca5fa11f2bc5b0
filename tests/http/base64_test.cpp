#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "http/cyo_encode.h"

namespace {

using namespace std::string_literals;

TEST(Base64Encode, WritesGroupsOfFourAndNothingBeyond) {
  std::string longOutput;  // one run without line breaks
  for (int i = 0; i < 33333; ++i) longOutput += "Wlpa";
  const struct {
    const char* name;
    std::string input, expected;
  } rows[] = {
      {"empty", "", ""}, {"one_zero_byte", std::string(1, '\0'), "AA=="}, {"rfc_foobar", "foobar", "Zm9vYmFy"},
      {"rfc_fooba", "fooba", "Zm9vYmE="},
      {"plus_and_slash", "\xfb\xff\xbf", "+/+/"}, {"high_bytes", "\xff\xfe\xfd\x00\x01"s, "//79AAE="},
      {"long", std::string(100000, '\x5a'), longOutput + "Wg=="},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    std::string out(row.expected.size() + 4, '#');
    const unsigned long count = CyoEncode::Base64Encode(out.data(), row.input.data(), row.input.size());
    EXPECT_EQ(count, row.expected.size());
    EXPECT_EQ(out, row.expected + "####");
  }
}

TEST(Base64Encode, NullThrowsInvalidParameterEvenForNothing) {
  char out[4];
  const char in[] = "a";
  for (auto [dest, src] : {std::pair<void*, const void*>{out, nullptr}, {nullptr, in}}) {
    try {
      CyoEncode::Base64Encode(dest, src, 0);
      ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "Invalid parameter");
    }
  }
}

}  // namespace
