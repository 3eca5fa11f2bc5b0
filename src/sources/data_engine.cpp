#include "sources/data_engine.h"

#include <string>

#include "host/unit_search.h"
#include "sources/custom/custom_data.h"
#include "sources/file/file_lines.h"
#include "sources/file/record_filter.h"
#include "text/text_handlers.h"

namespace talp {

int GetData(WideString& result, WideString& header, const PMString& search, const PMString& descriptor,
            const PMString&) {
  const PMString type = myGetLine(descriptor, ';', 10);
  std::u16string names, selected;
  if (type == PMString("File")) {
    FileLines lines(myGetLine(descriptor, ';', 12));
    selected = SelectRecords(lines, WideString(search), &names);
  } else if (type == PMString("Custom")) {
    WideString tabHeader, data;
    GetCustomDataFromScript(myGetLine(descriptor, ';', 19), tabHeader, data, search, myGetLine(descriptor, ';', 14),
                            myGetLine(descriptor, ';', 15));
    selected = SelectCustomRecords(tabHeader, data, search);
    names = tabHeader.Units();
  } else {
    return 0;
  }
  // No CR after the last record: the list gets one entry per record.
  if (!selected.empty()) selected.pop_back();
  result = WideString(std::move(selected));
  // Every name ends with a CR, so that the header look-up reaches the last one.
  host::ReplaceUnit(names, kTab, kCR);
  if (!names.empty()) names.push_back(kCR);
  header = WideString(std::move(names));
  return 0;
}

}  // namespace talp
