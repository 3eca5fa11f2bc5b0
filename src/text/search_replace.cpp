#include "text/search_replace.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

using Units = std::u16string_view;

// The replacement pass on units. find and replacement may point into text:
// text is only assigned once the new text is complete.
void ReplaceUnits(WideString& text, Units find, Units replacement) {
  const Units units = text.Units();
  // An empty find string would never advance; it changes nothing.
  if (units.empty() || find.empty()) return;
  std::vector<char32_t> wanted;
  for (std::size_t i = 0; i < find.size();) wanted.push_back(utf::NextChar(find, i));

  std::u16string out;
  std::size_t copied = 0;
  bool replaced = false;
  std::size_t i = 0;
  while ((i = FindCharacter(units, i, wanted[0])) != Units::npos) {
    const std::size_t at = i;
    utf::NextChar(units, i);
    std::size_t matched = 1;
    // The character that differs is consumed with the candidate: there is no
    // backtracking, so "ab" is not found in "aab". Callers rely on this one
    // pass. A candidate cut short by the end of the text stays as it is.
    while (matched < wanted.size() && i < units.size() && utf::NextChar(units, i) == wanted[matched]) ++matched;
    if (matched < wanted.size()) continue;
    if (!replaced) out.reserve(units.size());
    out.append(units.substr(copied, at - copied)).append(replacement);
    copied = i;
    replaced = true;
  }
  if (!replaced) return;
  out.append(units.substr(copied));
  text = WideString(std::move(out));
}

// The values of one record by name, indexed on first use so that a template
// with many placeholders costs one pass over the record. The first of equal
// names wins, as in FindDataInRecord.
class RecordValues {
 public:
  RecordValues(const WideString& names, const WideString& values) : names_(names), values_(values) {}

  // Appends the decoded value of name to out; nothing when name is unknown.
  void AppendValue(Units name, std::u16string& out) {
    if (!byName_) Index();
    const auto found = byName_->find(name);
    if (found == byName_->end()) return;
    // A one-field record with an empty name decodes the raw value exactly as
    // FindDataInRecord decodes it in the full record.
    WideString value;
    FindDataInRecord(WideString(), WideString::FromUTF16(found->second), WideString(), value);
    out.append(value.Units());
  }

 private:
  void Index() {
    byName_.emplace();
    ItemCursor nameCursor(names_.Units(), kCR);
    ItemCursor valueCursor(values_.Units(), kCR);
    Units name;
    Units value;
    bool valuesLeft = true;
    while (nameCursor.Next(name)) {
      valuesLeft = valuesLeft && valueCursor.Next(value);
      byName_->try_emplace(name, valuesLeft ? value : Units());
    }
  }

  const WideString& names_;
  const WideString& values_;
  std::optional<std::unordered_map<Units, Units>> byName_;
};

}  // namespace

void SearchReplaceUnicode(WideString& text, const WideString& find, const WideString& replacement) {
  ReplaceUnits(text, find.Units(), replacement.Units());
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
  const Units pattern = text.Units();
  RecordValues record(names, values);
  std::u16string out;
  out.reserve(pattern.size());
  bool closersLeft = true;
  std::size_t i = 0;
  while (i < pattern.size()) {
    const std::size_t open = pattern.find(u'[', i);
    if (open == Units::npos) {
      out.append(pattern.substr(i));
      break;
    }
    out.append(pattern.substr(i, open - i));
    // Once no "]" is left, none is searched for again: every later "[" is dropped.
    const std::size_t close = closersLeft ? pattern.find(u']', open + 1) : Units::npos;
    if (close == Units::npos) {
      closersLeft = false;
      i = open + 1;
      continue;
    }
    record.AppendValue(pattern.substr(open + 1, close - open - 1), out);
    i = close + 1;
  }
  // Assigned last, as names or values may be text itself.
  text = WideString(std::move(out));
}

}  // namespace talp
