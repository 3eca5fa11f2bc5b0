// Record selection of the "File" source: a condition is either a plain
// search word (any record containing it, in any letter case) or one "where"
// clause: where FIELD OPERATOR 'VALUE', with "%" wildcards at either end.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// 1 when record (TAB-separated fields) satisfies condition, else 0. header is
// the list of field names the clause's field is looked up in, by CR: a
// TAB-separated header therefore always selects the first column.
int SearchIncludedInLine(const WideString& record, const WideString& condition, const WideString& header);

// Reads "where FIELD OPERATOR 'VALUE'" from condition and appends its parts to
// op, field and value. Text after the closing quote is read again the same
// way and glued onto the three parts; only one condition is understood.
void FindFieldAndValueFromWhere(WideString& op, WideString& field, WideString& value, const WideString& condition);

// SearchIncludedInLine with the condition read once, for loops over many
// records. Not thread-safe: it reuses buffers between calls.
class RecordFilter {
 public:
  RecordFilter(const WideString& condition, const WideString& header);

  bool Includes(std::u16string_view record);

 private:
  enum class Mode { kEverything, kSearchWord, kWhere };

  bool WhereIncludes(std::u16string_view record);
  bool ContainsSearchWord(std::u16string_view record);

  Mode mode_;
  std::u16string needle_;  // the lower-cased search word
  // The units whose lower case is the word's first unit, when there are at
  // most two of them (the usual upper and lower case); empty otherwise.
  std::u16string firstVariants_;
  // One of the four value tests of a where clause, worked out in advance: the
  // value they see depends on the clause only, never on the record.
  struct ValueTest {
    enum Kind { kContains, kBeginsWith, kEndsWithNarrow, kEquals } kind;
    std::u16string value;  // the value the test compares (already shortened)
    bool lowerField;       // "LIKE" lower-cases the field again before the test
  };
  bool Passes(const ValueTest& test);

  long column_ = 1;
  std::vector<ValueTest> tests_;
  std::u16string lowered_;  // reused for each record
  std::u16string scratch_;
};

class FileLines;

// The records of a data file after its header line that condition selects,
// each followed by CR, as the record loop delivers them. lines must be
// positioned at the header; header, when given, receives it.
std::u16string SelectRecords(FileLines& lines, const WideString& condition, std::u16string* header = nullptr);

}  // namespace talp
