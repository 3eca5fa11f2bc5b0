#include "text/search_replace.h"

#include <gtest/gtest.h>

#include <string>

#include "text/text_handlers.h"
#include "text_cases.h"

namespace talp {
namespace {

// The narrow myReplace compares only the first and the last character of a
// span; SearchReplaceUnicode needs every character. Neither backtracks.
TEST(SearchReplaceTest, MyReplaceAndSearchReplaceUnicode) {
  const struct {
    const char* name;
    std::u16string_view text, find, replacement, wantMyReplace, wantSearchReplace;
  } cases[] = {
      {"ReplacesEvery", u"a&gt;b&gt;", u"&gt;", u">", u"a>b>", u"a>b>"},
      {"OnlyMyReplaceSkipsTheMiddle", u"axc", u"abc", u"Q", u"Q", u"axc"},
      {"DifferingCharacterIsConsumed", u"aab", u"ab", u"Q", u"aab", u"aab"},
      {"MatchAfterFailedCandidate", u"axab", u"ab", u"Q", u"axQ", u"axQ"},
      {"SpanPastEndNeverMatches", u"xab", u"abc", u"Q", u"xab", u"xab"},
      {"ReplacementNotRescanned", u"aa", u"a", u"aa", u"aaaa", u"aaaa"},
      {"EmptyFindChangesNothing", u"abc", u"", u"Q", u"abc", u"abc"},
      {"PairIsOneCharacter", SMILE u"y" SMILE, SMILE u"z" SMILE, u"Q", u"Q", SMILE u"y" SMILE},
      {"LoneSurrogateSkipsPairs", SMILE u"\xD83D", u"\xD83D", u"x", SMILE u"x", SMILE u"x"},
  };
  for (const auto& c : cases) {
    const PMString replaced = myReplace(PMString(W(c.text)), PMString(W(c.find)), PMString(W(c.replacement)));
    EXPECT_EQ(U(replaced.AsWide()), c.wantMyReplace) << c.name;
    WideString text = W(c.text);
    SearchReplaceUnicode(text, W(c.find), W(c.replacement));
    EXPECT_EQ(U(text), c.wantSearchReplace) << c.name;
  }
  WideString text = W(u"abc");
  SearchReplaceUnicode(text, text, W(u"x"));  // find may be the text
  EXPECT_EQ(U(text), u"x");
}

TEST(SearchReplaceTest, MergeContentToString) {
  const struct { const char* name; std::u16string_view pattern, names, values, want; } cases[] = {
      {"FillsAndDecodes", u"Dear [Name], [Nope]!", u"Name", u"Ann &amp; Bo", u"Dear Ann & Bo, !"},
      {"UnclosedBracketsDropped", u"[a]x[a[b", u"a", u"v", u"vxab"},
      {"BracketsDoNotNest", u"[a[b]", u"a[b", u"v", u"v"}, {"CloseOutsideIsCopied", u"a]b[]", u"", u"v", u"a]bv"},
  };
  for (const auto& c : cases) {
    WideString text = W(c.pattern);
    MergeContentToString(text, W(c.names), W(c.values));
    EXPECT_EQ(U(text), c.want) << c.name;
  }
}

}  // namespace
}  // namespace talp
