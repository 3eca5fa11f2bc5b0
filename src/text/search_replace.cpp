#include "text/search_replace.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/item_cursor.h"
#include "text/record_template.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

using Units = std::u16string_view;

// The replacement pass on units. find and replacement may point into text:
// text is only assigned once the new text is complete.
// Whether units hold find at all (then out receives the replaced text).
bool ReplaceInto(Units units, Units find, Units replacement, std::u16string& out) {
  // An empty find string would never advance; it changes nothing.
  if (units.empty() || find.empty()) return false;
  std::size_t afterFirst = 0;
  const char32_t first = utf::NextChar(find, afterFirst);

  std::size_t copied = 0;
  bool replaced = false;
  std::size_t i = 0;
  while ((i = FindCharacter(units, i, first)) != Units::npos) {
    const std::size_t at = i;
    utf::NextChar(units, i);
    std::size_t j = afterFirst;
    // The character that differs is consumed with the candidate: there is no
    // backtracking, so "ab" is not found in "aab". Callers rely on this one
    // pass. A candidate cut short by the end of the text stays as it is.
    while (j < find.size() && i < units.size()) {
      std::size_t next = j;
      if (utf::NextChar(units, i) != utf::NextChar(find, next)) break;
      j = next;
    }
    if (j < find.size()) continue;
    if (!replaced) out.reserve(out.size() + units.size());
    out.append(units.substr(copied, at - copied)).append(replacement);
    copied = i;
    replaced = true;
  }
  if (replaced) out.append(units.substr(copied));
  return replaced;
}

void ReplaceUnits(WideString& text, Units find, Units replacement) {
  std::u16string out;
  if (ReplaceInto(text.Units(), find, replacement, out)) text = WideString(std::move(out));
}

}  // namespace

void SearchReplaceUnicode(WideString& text, const WideString& find, const WideString& replacement) {
  ReplaceUnits(text, find.Units(), replacement.Units());
}

void SearchReplaceUnits(std::u16string_view text, std::u16string_view find, std::u16string_view replacement,
                        std::u16string& out) {
  if (!ReplaceInto(text, find, replacement, out)) out.append(text);
}

void DecodeXMLEntities(WideString& text) {
  static const std::pair<WideString, WideString> kEntities[] = {
      {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
  for (const auto& [entity, character] : kEntities) {
    SearchReplaceUnicode(text, entity, character);
  }
}

void UnicodeCleaning(WideString& text, const WideString& table) {
  // The table is read while text changes, so it must not be text itself.
  if (&table == &text) {
    const WideString copy = table;
    UnicodeCleaning(text, copy);
    return;
  }
  ItemCursor lines(table.Units(), kCR);
  Units line;
  while (lines.Next(line)) {
    // Field 1 is the find string and field 2 the replacement; a line without
    // TAB deletes its text, an empty line changes nothing.
    ItemCursor fields(line, kTab);
    Units find;
    Units replacement;
    fields.Next(find);
    if (!fields.Next(replacement)) replacement = {};
    ReplaceUnits(text, find, replacement);
  }
}

void MergeContentToString(WideString& text, const WideString& names, const WideString& values) {
  std::u16string out;
  out.reserve(text.NumUTF16TextChars());
  RecordTemplate(text.Units(), names.Units()).Fill(SplitFields(values.Units(), kCR), out);
  // Assigned last, as names or values may be text itself.
  text = WideString(std::move(out));
}

}  // namespace talp
