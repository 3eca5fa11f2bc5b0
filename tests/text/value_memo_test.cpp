#include "text/value_memo.h"

#include <gtest/gtest.h>

#include <string>

namespace talp {
namespace {

std::u16string Key(std::size_t n) {
  std::u16string key;
  for (const char c : std::to_string(n)) key.push_back(static_cast<char16_t>(c));
  return key;
}

// Every entry stays findable while the table grows, until the bound makes it
// start over; values come back as they were given.
TEST(ValueMemo, RemembersUntilTheBoundThenStartsOver) {
  ValueMemo memo;
  EXPECT_FALSE(memo.Find(u"").has_value());
  EXPECT_EQ(memo.Remember(u"", u"empty key"), u"empty key");
  for (std::size_t n = 1; n < ValueMemo::kMaxEntries; ++n) memo.Remember(Key(n), Key(n) + u"=v");
  for (std::size_t n = 1; n < ValueMemo::kMaxEntries; n += 97) {
    const auto found = memo.Find(Key(n));
    ASSERT_TRUE(found.has_value()) << n;
    EXPECT_EQ(*found, Key(n) + u"=v");
  }
  EXPECT_EQ(*memo.Find(u""), u"empty key");
  EXPECT_FALSE(memo.Find(u"1=v").has_value());  // a value is no key

  memo.Remember(u"one more", u"x");
  EXPECT_EQ(memo.Size(), 1u);
  EXPECT_FALSE(memo.Find(Key(5)).has_value());
  EXPECT_EQ(*memo.Find(u"one more"), u"x");
}

// A value longer than the pool holds is handed back whole, not kept.
TEST(ValueMemo, AValueTooLongToKeepIsStillReturned) {
  ValueMemo memo;
  memo.Remember(u"a", u"1");
  const std::u16string huge(ValueMemo::kMaxPoolUnits + 1, u'h');
  EXPECT_EQ(memo.Remember(u"big", huge), huge);
  EXPECT_FALSE(memo.Find(u"big").has_value());
  EXPECT_EQ(memo.Remember(u"b", u"2"), u"2");
  EXPECT_EQ(*memo.Find(u"b"), u"2");
}

}  // namespace
}  // namespace talp
