// The record operations of the "File" source: one record by key, and the
// loop over every record a condition selects. Both walk the file's text once.
#include <string>
#include <string_view>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/record_filter.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp {
namespace {

WideString WithTabsAsCR(std::u16string_view text) {
  std::u16string converted(text);
  for (char16_t& unit : converted) {
    if (unit == kTab) unit = kCR;
  }
  return WideString(std::move(converted));
}

}  // namespace

int fetchSpecificRecordFile(const PMString& path, const PMString& keyField, const PMString& keyValue,
                            const WideString& styling, WideString& result) {
  WideString data;
  GetFileData(path, data);
  const std::u16string_view header = FieldOf(data.Units(), kCR, 1);
  const long keyColumn = FindIndexInHeader(WideString::FromUTF16(header), keyField);
  const int lines = CountUnicodeLines(data);
  // The scan starts at the header, so a key value equal to the key column's
  // name returns the header, and stops before the last record, which is never
  // returned; callers rely on both.
  ItemCursor records(data.Units(), kCR);
  std::u16string_view record;
  for (int i = 1; i < lines && records.Next(record); ++i) {
    if (FieldOf(record, kTab, keyColumn) == keyValue.AsWide().Units()) {
      result = WideString::FromUTF16(record);
      break;
    }
  }
  result = WithTabsAsCR(result.Units());
  HandleWordStyling(styling, WithTabsAsCR(header), result);
  return 0;
}

int fetchRecordLoopFile(const PMString& path, const PMString& condition, WideString& result) {
  WideString data;
  GetFileData(path, data);
  result.AppendUnits(SelectRecords(data, WideString(condition)));
  return 0;
}

}  // namespace talp
