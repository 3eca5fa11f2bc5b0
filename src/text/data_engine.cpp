#include "text/data_engine.h"

#include <string>

#include "host/unit_search.h"
#include "sources/file/file_lines.h"
#include "sources/file/record_filter.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {

int GetData(WideString& result, WideString& header, const PMString& search, const PMString& descriptor,
            const PMString&) {
  if (myGetLine(descriptor, ';', 10) != PMString("File")) return 0;
  FileLines lines(myGetLine(descriptor, ';', 12));
  std::u16string names;
  // No CR after the last record: the list gets one entry per record.
  std::u16string selected = SelectRecords(lines, WideString(search), &names);
  if (!selected.empty()) selected.pop_back();
  result = WideString(std::move(selected));
  // Every name ends with a CR, so that the header look-up reaches the last one.
  host::ReplaceUnit(names, kTab, kCR);
  if (!names.empty()) names.push_back(kCR);
  header = WideString(std::move(names));
  return 0;
}

}  // namespace talp
