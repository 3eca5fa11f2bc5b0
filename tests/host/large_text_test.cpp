#include "host/large_text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

// The text keeps what it holds; room the system will not grant is asked for
// in smaller steps instead of failing.
TEST(LargeText, ReservesWhatCanBeHad) {
  const std::pair<std::size_t, std::size_t> cases[] = {
      // units asked for, and the room there is at least afterwards
      {std::size_t{8} << 20, std::size_t{8} << 20},  // large-page room
      {std::u16string().max_size() + 1, 5},          // more than a text can hold
      {std::size_t{1} << 61, 5},                     // more than the machine has
  };
  for (const auto& [asked, atLeast] : cases) {
#if defined(__SANITIZE_ADDRESS__)
    // The sanitizer's allocator aborts where the system's throws bad_alloc.
    if (asked > atLeast) continue;
#endif
    std::u16string text = u"12345";
    talp::host::ReserveLargeText(text, asked);
    EXPECT_EQ(text, u"12345") << asked;
    EXPECT_GE(text.capacity(), atLeast) << asked;
    text.append(atLeast, u'x');  // the room is usable
  }
}

}  // namespace
