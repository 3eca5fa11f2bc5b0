#include "text/if_string.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

constexpr std::u16string_view kOpenTag = u"<EXIF>";
// The closing tag has a seventh character, taken as ">" without looking.
constexpr std::u16string_view kCloseTag = u"</EXIF";
constexpr std::size_t kNone = static_cast<std::size_t>(-1);

enum class Op { kEqual, kNotEqual, kGreater, kLess, kGreaterEqual, kLessEqual };

struct QuotedOp {
  std::u16string_view text;
  Op op;
};

// In the order they are looked for; the first one found is taken.
constexpr std::array<QuotedOp, 6> kOps = {{
    {u"'=='", Op::kEqual},
    {u"'!='", Op::kNotEqual},
    {u"'>'", Op::kGreater},
    {u"'<'", Op::kLess},
    {u"'>='", Op::kGreaterEqual},
    {u"'<='", Op::kLessEqual},
}};

bool Decide(Op op, const WideString& left, const WideString& right) {
  // U+FEFF alone stands for any value (callers use it for an empty field):
  // templates rely on it passing every '==' and failing everything else.
  if (left.Units() == u"\uFEFF") return op == Op::kEqual;
  const auto c = left <=> right;
  switch (op) {
    case Op::kEqual: return c == 0;
    case Op::kNotEqual: return c != 0;
    // '>' and '<' mean the reverse of their look; templates rely on it.
    case Op::kGreater: return c < 0;
    case Op::kLess: return c > 0;
    case Op::kGreaterEqual: return c >= 0;
    case Op::kLessEqual: return c <= 0;
  }
  return false;
}

// Unit offsets of an "<EXIF>" and of the "</EXIF" that closes it.
struct Conditional {
  std::size_t open;
  std::size_t close;
};

// The conditionals of text in the order of their opening tags. Counting
// from an "<EXIF>" comes back to even exactly where a stack of open tags
// pops it, so one pass pairs them all; tags left unpaired are not listed.
std::vector<Conditional> PairTags(std::u16string_view units) {
  std::vector<Conditional> found;
  std::vector<std::size_t> open;  // indexes into found
  for (std::size_t at = units.find(u'<'); at != units.npos; at = units.find(u'<', at + 1)) {
    const std::u16string_view rest = units.substr(at);
    if (rest.starts_with(kOpenTag)) {
      open.push_back(found.size());
      found.push_back({at, kNone});
    } else if (rest.starts_with(kCloseTag) && !open.empty()) {
      found[open.back()].close = at;
      open.pop_back();
    }
  }
  std::erase_if(found, [](const Conditional& c) { return c.close == kNone; });
  return found;
}

// Where the text after a closing tag starts: past its seventh character, a
// surrogate pair counting as one.
std::size_t AfterCloseTag(std::u16string_view units, std::size_t close) {
  std::size_t at = close + kCloseTag.size();
  if (at < units.size()) utf::NextChar(units, at);
  return at;
}

}  // namespace

void HandleOneLevelIfString(WideString& body) {
  static const WideString kApostrophe = WideString::FromUTF16(u"'");
  static const WideString kLeftQuote = WideString::FromUTF16(u"\u2018");
  static const WideString kRightQuote = WideString::FromUTF16(u"\u2019");
  static const WideString kItemSeparator = WideString::FromUTF16(u"','");

  DeleteFirstLastCharacters(body);
  // Most bodies hold no typographic quote; spare them two copies.
  if (body.Units().find_first_of(u"\u2018\u2019") != std::u16string_view::npos) {
    SearchReplaceUnicode(body, kLeftQuote, kApostrophe);
    SearchReplaceUnicode(body, kRightQuote, kApostrophe);
  }

  const auto found = std::find_if(kOps.begin(), kOps.end(), [&body](const QuotedOp& q) {
    return body.Units().find(q.text) != std::u16string_view::npos;
  });
  if (found == kOps.end()) {
    body.Clear();
    return;
  }
  const WideString op = WideString::FromUTF16(found->text);
  WideString left, rest, right, whenTrue, whenFalse;
  GetItemUnicode(left, body, op, 0);
  GetItemUnicode(rest, body, op, 1);
  GetItemUnicode(right, rest, kItemSeparator, 0);
  GetItemUnicode(whenTrue, rest, kItemSeparator, 1);
  GetItemUnicode(whenFalse, rest, kItemSeparator, 2);
  body = Decide(found->op, left, right) ? std::move(whenTrue) : std::move(whenFalse);
}

void CreateIfString(WideString& text) {
  const std::u16string_view units = text.Units();
  const std::vector<Conditional> conditionals = PairTags(units);

  // One frame per conditional being read, innermost last: the body read so
  // far, inner conditionals already replaced, and where its closing tag is.
  // The bottom frame is the text itself and ends with it.
  struct Frame {
    WideString body;
    std::size_t end;
  };
  std::vector<Frame> frames;
  frames.push_back({WideString(), units.size()});
  std::size_t at = 0;
  std::size_t next = 0;  // the first conditional not yet entered
  for (;;) {
    // An opening tag whose "<" went as the seventh character of a closing
    // tag is plain text now; its partner closing tag is then text too.
    while (next < conditionals.size() && conditionals[next].open < at) ++next;
    Frame& frame = frames.back();
    if (next < conditionals.size() && conditionals[next].open < frame.end) {
      const Conditional& inner = conditionals[next++];
      frame.body.AppendUnits(units.substr(at, inner.open - at));
      at = inner.open + kOpenTag.size();
      frames.push_back({WideString(), inner.close});
      continue;
    }
    frame.body.AppendUnits(units.substr(at, frame.end - at));
    if (frames.size() == 1) break;
    WideString value = std::move(frame.body);
    HandleOneLevelIfString(value);
    at = AfterCloseTag(units, frame.end);
    frames.pop_back();
    frames.back().body.Append(value);
    // The enclosing body may end inside the seventh character.
    at = std::min(at, frames.back().end);
  }
  WideString result = std::move(frames.front().body);
  HandleOneLevelIfString(result);
  text = std::move(result);
}

}  // namespace talp
