#include "text/value_memo.h"

#include <gtest/gtest.h>

#include <string>

#include "text_cases.h"

namespace talp {
namespace {

// Every entry stays findable while the table grows, until the bound makes it
// start over; values come back as they were given. A value longer than the
// pool holds is handed back whole, not kept, and the memo goes on.
TEST(ValueMemo, RemembersUntilTheBoundThenStartsOver) {
  const auto key = [](std::size_t n) { return U(WideString(std::to_string(n))); };
  ValueMemo memo;
  EXPECT_FALSE(memo.Find(u"").has_value());
  EXPECT_EQ(memo.Remember(u"", u"empty key"), u"empty key");
  for (std::size_t n = 1; n < ValueMemo::kMaxEntries; ++n) memo.Remember(key(n), key(n) + u"=v");
  for (std::size_t n = 1; n < ValueMemo::kMaxEntries; n += 97) EXPECT_EQ(memo.Find(key(n)), key(n) + u"=v");
  EXPECT_EQ(memo.Find(u""), u"empty key");
  EXPECT_FALSE(memo.Find(u"1=v").has_value());  // a value is no key
  memo.Remember(u"one more", u"x");
  EXPECT_EQ(memo.Size(), 1u);
  EXPECT_FALSE(memo.Find(key(5)).has_value());
  const std::u16string huge(ValueMemo::kMaxPoolUnits + 1, u'h');
  EXPECT_EQ(memo.Remember(u"big", huge), huge);
  EXPECT_FALSE(memo.Find(u"big").has_value());
  EXPECT_EQ(memo.Remember(u"b", u"2"), u"2");
  EXPECT_EQ(memo.Find(u"b"), u"2");
}

}  // namespace
}  // namespace talp
