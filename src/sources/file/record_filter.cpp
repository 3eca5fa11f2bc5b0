#include "sources/file/record_filter.h"

#include "host/case_mapping.h"
#include "host/utf.h"
#include "talp/host_services.h"
#include "sources/file/file_data.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

constexpr char16_t kSpace = u' ';
constexpr char16_t kApostrophe = u'\'';
constexpr char16_t kPercent = u'%';
// Gluing re-reads text after an unclosed value again and again; past this
// many characters a clause is nonsense and the scan stops.
constexpr std::size_t kMaxClauseOutput = std::size_t{1} << 20;
constexpr int kProgressEvery = 1 << 16;

WideString Lowered(const WideString& text) {
  WideString lowered = text;
  lowered.ToLower();
  return lowered;
}

UTF32TextChar First(const WideString& s) { return s.GetUTF32TextChar(0); }
UTF32TextChar Last(const WideString& s) { return s.IsEmpty() ? 0 : s.GetUTF32TextChar(s.CharCount() - 1); }

WideString WithoutFirstAndLast(const WideString& s) {
  return s.CharCount() < 2 ? WideString() : s.Substring(1, s.CharCount() - 2);
}

}  // namespace

void FindFieldAndValueFromWhere(WideString& op, WideString& field, WideString& value, const WideString& condition) {
  const std::u16string_view c = condition.Units();
  const std::size_t len = c.size();
  if (condition.CharCount() < 5) return;
  std::u16string fieldText(field.Units()), opText(op.Units()), valueText(value.Units());

  // Collects the next word into word: leading spaces skipped, the first space
  // after it ends it. Returns the position of that space (or len).
  const auto collectWord = [&](std::size_t p, std::u16string& word) {
    bool collected = false;
    for (; p < len; ++p) {
      if (c[p] == kSpace) {
        if (collected) break;
        continue;
      }
      word.push_back(c[p]);
      collected = true;
    }
    return p;
  };

  // Scanning starts just after the five letters of "where"; each space met
  // starts another round, glued onto the same three outputs.
  std::size_t p = condition.UnitOffsetOf(5);
  while (p < len && fieldText.size() + opText.size() + valueText.size() < kMaxClauseOutput) {
    while (p < len && c[p] != kSpace) ++p;
    if (p >= len) break;
    p = collectWord(p + 1, fieldText);
    if (p >= len) break;
    p = collectWord(p + 1, opText);
    if (p >= len) break;
    std::size_t firstOfValue = len;
    std::size_t closingQuote = len;
    for (++p; p < len; ++p) {
      if (c[p] == kApostrophe) {
        if (valueText.empty()) continue;  // the opening quote
        closingQuote = p;
        break;
      }
      if (firstOfValue == len) firstOfValue = p;
      valueText.push_back(c[p]);
    }
    if (closingQuote < len) {
      p = closingQuote + 2;
    } else if (firstOfValue < len) {
      p = firstOfValue + 1;
    } else {
      break;
    }
  }
  field = WideString(std::move(fieldText));
  op = WideString(std::move(opText));
  value = WideString(std::move(valueText));
}

RecordFilter::RecordFilter(const WideString& condition, const WideString& header) {
  if (condition.IsEmpty()) {
    mode_ = Mode::kEverything;
    return;
  }
  const WideString lowerCondition = Lowered(condition);
  if (!lowerCondition.Contains(WideString("where"))) {
    mode_ = Mode::kSearchWord;
    needle_ = std::u16string(lowerCondition.Units());
    return;
  }
  mode_ = Mode::kWhere;
  WideString op, field;
  FindFieldAndValueFromWhere(op, field, value_, condition);
  like_ = op == WideString("LIKE");
  column_ = FindIndexInLineHeader(Lowered(header), PMString(field));
}

bool RecordFilter::Includes(std::u16string_view record) {
  switch (mode_) {
    case Mode::kEverything:
      return true;
    case Mode::kSearchWord:
      lowered_.clear();
      host::AppendLower(record, lowered_);
      return utf::FindAtCharBoundaries(lowered_, needle_, 0) != std::u16string_view::npos;
    case Mode::kWhere:
      return WhereIncludes(record);
  }
  return false;
}

// The four value tests run in order on a value that each of the first three
// shortens; with the operator "LIKE" the lower-casing persists too. Records
// are compared lower-cased while the value keeps its case, so "=" matches only
// lower-case values; callers rely on both.
bool RecordFilter::WhereIncludes(std::u16string_view record) {
  lowered_.clear();
  host::AppendLower(FieldOf(record, kTab, column_), lowered_);
  WideString fv = WideString::FromUTF16(lowered_);
  WideString value = value_;
  if (value.CharCount() >= 2 && First(value) == kPercent && value.GetUTF32TextChar(1) == kPercent) return true;

  bool included = false;
  const auto lowerBothForLike = [&](WideString& inner) {
    if (!like_) return;
    inner.ToLower();
    fv.ToLower();
  };
  if (First(value) == kPercent && Last(value) == kPercent) {
    WideString inner = WithoutFirstAndLast(value);
    lowerBothForLike(inner);
    included = fv.Contains(inner);
    value = inner;
  }
  if (First(value) != kPercent && Last(value) == kPercent) {
    WideString inner = value.Substring(0, value.CharCount() - 1);
    lowerBothForLike(inner);
    if (fv.IndexOf(inner) == 0) included = true;
    value = inner;
  }
  if (First(value) == kPercent && Last(value) != kPercent) {
    WideString inner = value.Substring(1);
    lowerBothForLike(inner);
    // A narrow ends-with test, kept as it is: the search starts M + 2 before
    // the end and only a hit beyond position M + 2 counts.
    const auto m = static_cast<long>(inner.CharCount());
    const long start = static_cast<long>(fv.CharCount()) - m - 2;
    const std::int32_t at = fv.IndexOf(inner, static_cast<std::size_t>(start < 0 ? 0 : start));
    if (at >= 0 && at > m + 2) included = true;
    value = inner;
  }
  if (First(value) != kPercent && Last(value) != kPercent) {
    lowerBothForLike(value);
    if (value == fv) included = true;
  }
  return included;
}

std::u16string SelectRecords(const WideString& data, const WideString& condition) {
  const int lines = CountUnicodeLines(data);
  ItemCursor records(data.Units(), kCR);
  std::u16string_view header;
  records.Next(header);
  RecordFilter filter(condition, WideString::FromUTF16(header));
  std::u16string selected;
  std::u16string_view record;
  const std::uint64_t total = data.NumUTF16TextChars();
  for (int i = 2; i <= lines && records.Next(record); ++i) {
    if (i % kProgressEvery == 0) host::Host().Progress("records", records.ItemOffset(), total);
    if (filter.Includes(record)) {
      selected.append(record);
      selected.push_back(kCR);
    }
  }
  return selected;
}

int SearchIncludedInLine(const WideString& record, const WideString& condition, const WideString& header) {
  RecordFilter filter(condition, header);
  return filter.Includes(record.Units()) ? 1 : 0;
}

}  // namespace talp
