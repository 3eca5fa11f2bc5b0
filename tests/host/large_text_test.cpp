#include "host/large_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The text keeps what it holds; room the system will not grant is asked for
// in smaller steps instead of failing.
TEST(LargeText, ReservesWhatCanBeHad) {
  struct Case {
    std::size_t asked;
    std::size_t atLeast;
  };
  const Case cases[] = {
      {0, 5},                                        // less than held: nothing changes
      {std::size_t{8} << 20, std::size_t{8} << 20},  // large-page room
      {std::u16string().max_size() + 1, 5},          // more than a text can hold
      {std::size_t{1} << 61, 5},                     // more than the machine has
  };
  for (const Case& c : cases) {
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizer's allocator aborts where the system's throws bad_alloc.
    if (c.asked > c.atLeast) continue;
#endif
    std::u16string text = u"12345";
    talp::host::ReserveLargeText(text, c.asked);
    EXPECT_EQ(text, u"12345") << c.asked;
    EXPECT_GE(text.capacity(), c.atLeast) << c.asked;
    text.append(c.atLeast, u'x');  // the room is usable
  }
}

}  // namespace
