#include "text/xml_table.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"
#include "text/xml_text.h"

namespace talp {

using namespace xml;  // NOLINT: the helpers of this one component

int isXMLFile(const WideString& text) {
  // The scan stops one character short: a "<?xml" that ends the text is not
  // seen. Callers rely on this bound.
  const Units units = text.Units();
  const std::size_t at = units.find(u"<?xml");
  return at != kNone && at + 5 < units.size() ? 1 : 0;
}

int CountElementDepth(const WideString& text, WideString& name) {
  const Pattern tag(Tag(u"<", name.Units(), u">"));
  Units units = text.Units();
  // Only tags that end before the last character count; callers rely on it.
  if (!units.empty()) units.remove_suffix(SplitsPair(units, units.size() - 1) ? 2 : 1);
  long count = 0;
  tag.ForEach(units, 0, [&count](std::size_t) { return ++count < INT_MAX; });
  name = WideString::FromUTF16(Tag(u"<", name.Units(), u">"));
  return static_cast<int>(count);
}

int CountRowDepth(const WideString& text) {
  const Units units = text.Units();
  int count = 0;
  for (std::size_t at = units.find(u"<ROW"); at != kNone && count < INT_MAX; at = units.find(u"<ROW", at + 4)) ++count;
  return count;
}

void GetElementNumber(WideString& out, const WideString& text, WideString& name, long n) {
  const Units units = text.Units();
  const Pattern opening(Tag(u"<", name.Units(), u">"));
  const Pattern closing(Tag(u"</", name.Units(), u">"));
  std::size_t hit = kNone;
  long seen = 0;
  if (n > 0) {
    opening.ForEach(units, 0, [&](std::size_t at) {
      if (++seen < n) return true;
      hit = at;
      return false;
    });
  }
  std::u16string content;
  if (hit != kNone) {
    const std::size_t from = hit + opening.Size();
    const std::size_t to = closing.Find(units, from);
    content = units.substr(from, to == kNone ? kNone : to - from);
  }
  // Built before any assignment, so out and name may be the text itself.
  name = WideString::FromUTF16(Tag(u"<", name.Units(), u">"));
  out = WideString(std::move(content));
}

void GetAbsoluteField(WideString& out, const WideString& element, const WideString& name) {
  const Units units = element.Units();
  const Pattern opening(Tag(u"<", name.Units(), u""));
  std::u16string content;
  const std::size_t at = opening.Find(units, 0);
  const std::size_t after = at == kNone ? units.size() : at + opening.Size();
  if (at != kNone && !(after < units.size() && units[after] == u'/')) {
    // The character after "<name" is the tag's ">".
    const std::size_t from = std::min(after + 1, units.size());
    const std::size_t to = Pattern(Tag(u"</", name.Units(), u"")).Find(units, from);
    AppendCell(content, units.substr(from, to == kNone ? kNone : to - from));
  }
  out = WideString(std::move(content));
}

void ExportXML(WideString& table) {
  const Units units = table.Units();
  const auto lines = static_cast<std::size_t>(std::count(units.begin(), units.end(), kCR));
  std::u16string out;
  out.reserve(kDeclaration.size() + 1 + (lines >= 3 ? units.size() * 3 : 0));
  out.append(kDeclaration) += kCR;

  if (lines >= 3) {
    ItemCursor lineCursor(units, kCR);
    Units header;
    lineCursor.Next(header);
    // Only fields followed by a TAB count; the text-file source writes one
    // after every field.
    std::vector<Units> names(static_cast<std::size_t>(std::count(header.begin(), header.end(), kTab)));
    ItemCursor headerCursor(header, kTab);
    for (Units& name : names) headerCursor.Next(name);

    // Only lines followed by a CR count, and an empty line ends the table.
    Units line;
    for (std::size_t k = 2; k < lines && lineCursor.Next(line) && !line.empty(); ++k) {
      out.append(u"<ROW>") += kCR;
      ItemCursor fieldCursor(line, kTab);
      for (const Units name : names) {
        Units value;
        if (!fieldCursor.Next(value)) value = {};
        out.append(u"<").append(name).append(u">").append(value);
        out.append(u"</").append(name).append(u">") += kCR;
      }
      out.append(u"</ROW>") += kCR;
    }
  }
  table = WideString(std::move(out));
}

void CorrectMarkersInXML(WideString& data) {
  static constexpr std::pair<Units, Units> kMarkers[] = {
      {u"~tb~", u"<tb>"}, {u"~br~", u"<br>"}, {u"~sr~", u"<sr>"}, {u"~end~", u"<end>"}};
  const Units units = data.Units();
  std::size_t at = units.find(u'~');
  if (at == kNone) return;
  std::u16string out;
  out.reserve(units.size());
  std::size_t copied = 0;
  // Every "~" is tried, so a stray one just before a marker hides nothing.
  for (; at != kNone; at = units.find(u'~', at)) {
    const Units rest = units.substr(at);
    const auto marker = std::find_if(std::begin(kMarkers), std::end(kMarkers),
                                     [rest](const auto& m) { return rest.starts_with(m.first); });
    if (marker == std::end(kMarkers)) {
      ++at;
      continue;
    }
    out.append(units.substr(copied, at - copied)).append(marker->second);
    at += marker->first.size();
    copied = at;
  }
  out.append(units.substr(copied));
  data = WideString(std::move(out));
}

void EscapeValueForXML(WideString& value) {
  static constexpr std::pair<Units, Units> kMarkers[] = {
      {u"<tb>", u"~tb~"}, {u"<br>", u"~br~"}, {u"<sr>", u"~sr~"}, {u"<end>", u"~end~"}};
  const Units units = value.Units();
  std::u16string out;
  out.reserve(units.size() + units.size() / 8);
  for (std::size_t i = 0; i < units.size();) {
    const char16_t c = units[i];
    if (c == u'<') {
      const Units rest = units.substr(i);
      const auto marker = std::find_if(std::begin(kMarkers), std::end(kMarkers),
                                       [rest](const auto& m) { return rest.starts_with(m.first); });
      if (marker != std::end(kMarkers)) {
        out.append(marker->second);
        i += marker->first.size();
        continue;
      }
    }
    switch (c) {
      case u'&': out.append(u"&amp;"); break;
      case u'<': out.append(u"&lt;"); break;
      case u'>': out.append(u"&gt;"); break;
      case u'"': out.append(u"&quot;"); break;
      case u'\'': out.append(u"&apos;"); break;
      default: out += c;
    }
    ++i;
  }
  value = WideString(std::move(out));
}

}  // namespace talp
