#include "text/item_cursor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace talp {
namespace {

TEST(ItemCursorTest, Fields) {
  const struct {
    const char* name;
    std::u16string_view text;
    char32_t separator;
    std::vector<std::u16string> fields;
  } cases[] = {
      {"EmptyTextHasOneEmptyField", u"", '\t', {u""}},
      {"NoSeparator", u"ab", '\t', {u"ab"}},
      {"FinalSeparatorEndsWithEmptyField", u"a\tb\t", '\t', {u"a", u"b", u""}},
      {"OnlySeparators", u"\r\r", '\r', {u"", u"", u""}},
      {"SupplementarySeparator", u"a\U0001F600b", 0x1F600, {u"a", u"b"}},
      {"LoneSurrogateSeparatorSkipsPairs", u"\U0001F600\xD83D" u"b", 0xD83D, {u"\U0001F600", u"b"}},
      {"NoCharacterBeyondUnicode", u"a", 0x110000, {u"a"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    ItemCursor cursor(c.text, c.separator);
    std::vector<std::u16string> got;
    std::u16string_view field;
    while (cursor.Next(field)) {
      EXPECT_EQ(cursor.ItemOffset(), static_cast<std::size_t>(field.data() - c.text.data()));
      EXPECT_EQ(cursor.EndedBySeparator(), got.size() + 1 < c.fields.size());
      got.emplace_back(field);
    }
    EXPECT_EQ(got, c.fields);
    EXPECT_FALSE(cursor.Next(field));
  }
}

}  // namespace
}  // namespace talp
