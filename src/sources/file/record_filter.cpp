#include "sources/file/record_filter.h"

#include "host/case_mapping.h"
#include "host/large_text.h"
#include "host/unit_search.h"
#include "host/utf.h"
#include "talp/host_services.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
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
    const char16_t* lower = host::LowerTable();
    for (char32_t u = 0; u < 0x10000 && firstVariants_.size() <= 2; ++u) {
      if (!utf::IsSurrogate(u) && lower[u] == needle_[0]) firstVariants_.push_back(static_cast<char16_t>(u));
    }
    if (firstVariants_.size() > 2) firstVariants_.clear();
    return;
  }
  WideString op, field, value;
  FindFieldAndValueFromWhere(op, field, value, condition);
  column_ = FindIndexInLineHeader(Lowered(header), PMString(field));
  // A value that starts with "%%" takes every record.
  if (value.CharCount() >= 2 && First(value) == kPercent && value.GetUTF32TextChar(1) == kPercent) {
    mode_ = Mode::kEverything;
    return;
  }
  mode_ = Mode::kWhere;
  // The four tests run in order on a value that each of the first three
  // shortens; with the operator "LIKE" the lower-casing persists too.
  const bool like = op == WideString("LIKE");
  const auto add = [&](ValueTest::Kind kind, WideString inner) {
    if (like) inner.ToLower();
    tests_.push_back({kind, std::u16string(inner.Units()), like});
    value = std::move(inner);
  };
  if (First(value) == kPercent && Last(value) == kPercent) add(ValueTest::kContains, WithoutFirstAndLast(value));
  if (First(value) != kPercent && Last(value) == kPercent) {
    add(ValueTest::kBeginsWith, value.Substring(0, value.CharCount() - 1));
  }
  if (First(value) == kPercent && Last(value) != kPercent) add(ValueTest::kEndsWithNarrow, value.Substring(1));
  if (First(value) != kPercent && Last(value) != kPercent) add(ValueTest::kEquals, value);
}

bool RecordFilter::Includes(std::u16string_view record) {
  switch (mode_) {
    case Mode::kEverything:
      return true;
    case Mode::kSearchWord:
      return ContainsSearchWord(record);
    case Mode::kWhere:
      return WhereIncludes(record);
  }
  return false;
}

// Whether the lower-cased record contains the search word, compared unit by
// unit through the lower-case table without making a lower-cased copy. Only
// a record with surrogates, where a match could involve a pair, takes the
// full way through a copy.
bool RecordFilter::ContainsSearchWord(std::u16string_view record) {
  const char16_t* lower = host::LowerTable();
  const char16_t* units = record.data();
  const std::size_t n = record.size();
  const std::size_t m = needle_.size();
  const char16_t first = needle_[0];
  bool surrogates = false;
  const bool skipAhead = !firstVariants_.empty();
  const char16_t variantA = skipAhead ? firstVariants_.front() : 0;
  const char16_t variantB = skipAhead ? firstVariants_.back() : 0;
  for (std::size_t i = 0; i < n; ++i) {
    if (skipAhead) {
      i = host::FindUnit(record, i, variantA, variantB, true);
      if (i == host::kNotFound) break;
    }
    const char16_t unit = units[i];
    if (utf::IsSurrogate(unit)) {
      surrogates = true;
      break;
    }
    if (lower[unit] != first || n - i < m) continue;
    std::size_t j = 1;
    while (j < m && !utf::IsSurrogate(units[i + j]) && lower[units[i + j]] == needle_[j]) ++j;
    if (j == m) return true;
  }
  if (!surrogates) return false;
  lowered_.clear();
  host::AppendLower(record, lowered_);
  return utf::FindAtCharBoundaries(lowered_, needle_, 0) != std::u16string_view::npos;
}

// Records are compared lower-cased while the value keeps its case unless the
// operator is "LIKE", so "=" matches only lower-case values; callers rely on it.
bool RecordFilter::WhereIncludes(std::u16string_view record) {
  lowered_.clear();
  host::AppendLower(FieldOf(record, kTab, column_), lowered_);
  bool included = false;
  for (const ValueTest& test : tests_) {
    if (test.kind == ValueTest::kContains) {
      included = Passes(test);
    } else if (Passes(test)) {
      included = true;
    }
  }
  return included;
}

bool RecordFilter::Passes(const ValueTest& test) {
  if (test.lowerField) {
    scratch_.clear();
    host::AppendLower(lowered_, scratch_);
    lowered_.swap(scratch_);
  }
  const std::u16string_view field = lowered_;
  const std::u16string_view value = test.value;
  switch (test.kind) {
    case ValueTest::kContains:
      return utf::FindAtCharBoundaries(field, value, 0) != std::u16string_view::npos;
    case ValueTest::kBeginsWith:
      return utf::FindAtCharBoundaries(field, value, 0) == 0;
    case ValueTest::kEquals:
      return field == value;
    case ValueTest::kEndsWithNarrow: {
      // Kept as it is: the search starts M + 2 characters before the end and
      // only a hit beyond position M + 2 counts, so short fields never pass.
      const WideString fv = WideString::FromUTF16(field);
      const auto m = static_cast<long>(WideString::FromUTF16(value).CharCount());
      const long start = static_cast<long>(fv.CharCount()) - m - 2;
      const std::int32_t at = fv.IndexOf(WideString::FromUTF16(value), static_cast<std::size_t>(start < 0 ? 0 : start));
      return at >= 0 && at > m + 2;
    }
  }
  return false;
}

std::u16string SelectRecords(FileLines& lines, const WideString& condition, std::u16string* header) {
  std::u16string_view line;
  if (!lines.Next(line)) return {};
  if (header != nullptr) *header = line;
  RecordFilter filter(condition, WideString::FromUTF16(line));
  std::u16string selected;
  // Room for every record: pages that stay unused cost no memory.
  host::ReserveLargeText(selected, static_cast<std::size_t>(lines.FileSize()));
  for (std::size_t i = 2; lines.Next(line); ++i) {
    if (i % kProgressEvery == 0) host::Host().Progress("records", lines.BytesRead(), lines.FileSize());
    if (filter.Includes(line)) {
      selected.append(line);
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
