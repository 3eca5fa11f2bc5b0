// Writing one field value back into every matching record of a data file.
#include <string>
#include <string_view>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "text/item_cursor.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"

namespace talp {

int updateBaseFieldWithInfoFile(const WideString& newValue, const PMString& updateField, const PMString& keyField,
                                const PMString& keyValue, const PMString& path) {
  WideString value = newValue;
  SearchReplaceUnicode(value, WideString("\t"), WideString("<tb>"));
  SearchReplaceUnicode(value, WideString("\r"), WideString("<br>"));
  SearchReplaceUnicode(value, WideString("\n"), WideString("<sr>"));

  WideString data;
  GetFileData(path, data);
  const WideString header = WideString::FromUTF16(FieldOf(data.Units(), kCR, 1));
  const long keyColumn = FindIndexInHeader(header, keyField);
  const long updateColumn = FindIndexInHeader(header, updateField);
  const int lines = CountUnicodeLines(data);

  std::u16string content;
  content.reserve(data.NumUTF16TextChars() + static_cast<std::size_t>(lines) + 1);
  ItemCursor records(data.Units(), kCR);
  std::u16string_view record;
  for (int i = 1; i <= lines && records.Next(record); ++i) {
    if (FieldOf(record, kTab, keyColumn) != keyValue.AsWide().Units()) {
      content.append(record);
    } else {
      // Only the fields followed by a TAB are rebuilt: the last field is
      // dropped, and an update aimed at it writes nothing, as the column
      // look-ups that never compare the last column expect.
      ItemCursor fields(record, kTab);
      std::u16string_view field;
      for (long j = 1; fields.Next(field) && fields.EndedBySeparator(); ++j) {
        content.append(j == updateColumn ? value.Units() : field);
        content.push_back(kTab);
      }
    }
    content.push_back(kCR);
  }
  data.Clear();
  SaveFileData(path, WideString(std::move(content)));
  return 0;
}

}  // namespace talp
