#include "text/data_engine.h"

#include <string>

#include "sources/file/file_data.h"
#include "sources/file/record_filter.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {

int GetData(WideString& result, WideString& header, const PMString& search, const PMString& descriptor,
            const PMString&) {
  if (myGetLine(descriptor, ';', 10) != PMString("File")) return 0;
  WideString data;
  GetFileData(myGetLine(descriptor, ';', 12), data);
  // Every name ends with a CR, so that the header look-up reaches the last one.
  std::u16string names(FieldOf(data.Units(), kCR, 1));
  for (char16_t& unit : names) {
    if (unit == kTab) unit = kCR;
  }
  if (!data.IsEmpty()) names.push_back(kCR);
  header = WideString(std::move(names));
  // No CR after the last record: the list gets one entry per record.
  std::u16string selected = SelectRecords(data, WideString(search));
  if (!selected.empty()) selected.pop_back();
  result = WideString(std::move(selected));
  return 0;
}

}  // namespace talp
