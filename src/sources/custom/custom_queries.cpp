// The record operations of the "Custom" source: one record by key, and the
// loop over the records a condition selects. Both walk the script's data
// once; only lines ended by CR count, so a last line without one is never
// looked at.
#include <string>
#include <string_view>

#include "host/unit_search.h"
#include "sources/custom/custom_base.h"
#include "sources/custom/custom_data.h"
#include "sources/file/file_data.h"
#include "sources/file/record_filter.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {

std::u16string SelectCustomRecords(const WideString& header, const WideString& data, const PMString& where) {
  // The header goes to the filter as the script gave it, TAB-separated.
  RecordFilter filter{WideString(where), header};
  std::u16string selected;
  ItemCursor lines(data.Units(), kCR);
  std::u16string_view line;
  for (bool first = true; lines.Next(line) && lines.EndedBySeparator(); first = false) {
    if (first || !filter.Includes(line)) continue;
    selected.append(line);
    selected.push_back(kCR);
  }
  return selected;
}

int fetchSpecificRecordCustom(const PMString& scriptPath, const PMString& keyField, const PMString& keyValue,
                              const WideString&, WideString& result) {
  WideString header, data;
  GetCustomDataFromScript(scriptPath, header, data, PMString(), PMString(), PMString());
  const long keyColumn = FindIndexInHeader(header, keyField);
  ItemCursor lines(data.Units(), kCR);
  std::u16string_view line;
  while (lines.Next(line) && lines.EndedBySeparator()) {
    if (FieldOf(line, kTab, keyColumn) != keyValue.AsWide().Units()) continue;
    result = WideString::FromUTF16(line);
    break;
  }
  std::u16string fields(result.Units());
  host::ReplaceUnit(fields, kTab, kCR);
  result = WideString(std::move(fields));
  return 0;
}

int fetchRecordLoopCustom(const PMString& scriptPath, WideString& result, const PMString& where) {
  WideString header, data;
  GetCustomDataFromScript(scriptPath, header, data, where, PMString(), PMString());
  result.AppendUnits(SelectCustomRecords(header, data, where));
  return 0;
}

}  // namespace talp
