// Host strings from and to UTF-16 literals, and tables of in-place changes,
// for the text tests.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "talp/wide_string.h"

// A surrogate pair: one character of two units.
#define SMILE u"\U0001F600"

namespace talp {

inline WideString W(std::u16string_view units) { return WideString::FromUTF16(units); }
inline std::u16string U(const WideString& text) { return std::u16string(text.Units()); }

// What change makes of text in place.
inline std::u16string Changed(std::u16string_view text, void (*change)(WideString&)) {
  WideString changed = W(text);
  change(changed);
  return U(changed);
}

struct TextCase {
  const char* name;
  std::u16string_view text, want;
};

template <std::size_t N>
void ExpectEach(const TextCase (&cases)[N], void (*change)(WideString&)) {
  for (const TextCase& c : cases) EXPECT_EQ(Changed(c.text, change), c.want) << c.name;
}

}  // namespace talp
