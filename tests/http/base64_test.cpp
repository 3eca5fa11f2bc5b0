#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "http/cyo_encode.h"

namespace {

using namespace std::string_literals;

struct Base64Row {
  const char* name;
  std::string input;
  std::string expected;
};
void PrintTo(const Base64Row& row, std::ostream* out) { *out << row.name; }

class Base64Encode : public testing::TestWithParam<Base64Row> {};

TEST_P(Base64Encode, WritesGroupsOfFourAndNothingBeyond) {
  const Base64Row& row = GetParam();
  std::string out(row.expected.size() + 4, '#');
  const unsigned long count = CyoEncode::Base64Encode(out.data(), row.input.data(), row.input.size());
  EXPECT_EQ(count, row.expected.size());
  EXPECT_EQ(out, row.expected + "####");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Base64Encode,
    testing::Values(Base64Row{"empty", "", ""}, Base64Row{"one_zero_byte", std::string(1, '\0'), "AA=="},
                    Base64Row{"two_bytes", "ab", "YWI="}, Base64Row{"three_bytes", "abc", "YWJj"},
                    Base64Row{"rfc_foobar", "foobar", "Zm9vYmFy"}, Base64Row{"rfc_fooba", "fooba", "Zm9vYmE="},
                    Base64Row{"plus_and_slash", "\xfb\xff\xbf", "+/+/"},
                    Base64Row{"high_bytes", "\xff\xfe\xfd\x00\x01"s, "//79AAE="}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Base64EncodeLong, IsOneRunWithoutLineBreaks) {
  const std::string input(100000, '\x5a');
  std::string out(133336, '\0');
  EXPECT_EQ(CyoEncode::Base64Encode(out.data(), input.data(), input.size()), 133336u);
  EXPECT_EQ(out.substr(0, 133332).find_first_not_of("Wlpa"), std::string::npos);
  EXPECT_EQ(out.substr(133332), "Wg==");
}

TEST(Base64EncodeNull, ThrowsInvalidParameterEvenForNothing) {
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
