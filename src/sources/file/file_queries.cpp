// The record operations of the "File" source: one record by key, and the
// loop over every record a condition selects. Both walk the file's text once.
#include <string>
#include <string_view>

#include "host/unit_search.h"
#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
#include "sources/file/record_filter.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp {
namespace {

WideString WithTabsAsCR(std::u16string_view text) {
  std::u16string converted(text);
  host::ReplaceUnit(converted, kTab, kCR);
  return WideString(std::move(converted));
}

}  // namespace

int fetchSpecificRecordFile(const PMString& path, const PMString& keyField, const PMString& keyValue,
                            const WideString& styling, WideString& result) {
  FileLines lines(path);
  std::u16string_view line;
  const bool hasHeader = lines.Next(line);
  const std::u16string header(hasHeader ? line : std::u16string_view());
  const long keyColumn = FindIndexInHeader(WideString::FromUTF16(header), keyField);
  // The scan starts at the header, so a key value equal to the key column's
  // name returns the header, and stops before the last record, which is never
  // returned; callers rely on both.
  for (bool more = hasHeader; more; more = lines.Next(line)) {
    if (FieldOf(line, kTab, keyColumn) != keyValue.AsWide().Units()) continue;
    WideString found = WideString::FromUTF16(line);
    if (lines.HasNext()) result = std::move(found);
    break;
  }
  result = WithTabsAsCR(result.Units());
  HandleWordStyling(styling, WithTabsAsCR(header), result);
  return 0;
}

int fetchRecordLoopFile(const PMString& path, const PMString& condition, WideString& result) {
  FileLines lines(path);
  std::u16string selected = SelectRecords(lines, WideString(condition));
  if (result.IsEmpty()) {
    result = WideString(std::move(selected));
  } else {
    result.AppendUnits(selected);
  }
  return 0;
}

}  // namespace talp
