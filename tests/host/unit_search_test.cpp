#include "host/unit_search.h"

#include <gtest/gtest.h>

#include <string>

namespace talp::host {
namespace {

// Every length across the sixteen- and sixty-four-byte steps and the tail,
// with the unit at every position: a high surrogate is found wherever it
// is, a low one, or a unit just outside the range, never.
TEST(HasHighSurrogate, FindsOneAtEveryPositionOfEveryLength) {
  for (const char16_t unit : {u'\xD800', u'\xDBFF', u'\xDC00', u'\xD7FF', u'\xDFFF'}) {
    const bool high = unit >= 0xD800 && unit <= 0xDBFF;
    for (std::size_t length = 1; length <= 80; ++length) {
      for (std::size_t at = 0; at < length; ++at) {
        std::u16string text(length, u'a');
        text[at] = unit;
        EXPECT_EQ(HasHighSurrogate(text), high) << "unit " << static_cast<int>(unit) << " at " << at << " of " << length;
      }
    }
  }
  EXPECT_FALSE(HasHighSurrogate(std::u16string_view()));
}

}  // namespace
}  // namespace talp::host
