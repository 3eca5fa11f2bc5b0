// Writing one field value back into every matching record of a data file.
#include <string>
#include <string_view>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
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

  FileLines lines(path);
  std::u16string_view record;
  std::u16string content;
  std::u16string header;
  long keyColumn = 1, updateColumn = 1;
  for (bool first = true; lines.Next(record); first = false) {
    if (first) {
      header = record;
      keyColumn = FindIndexInHeader(WideString::FromUTF16(header), keyField);
      updateColumn = FindIndexInHeader(WideString::FromUTF16(header), updateField);
      content.reserve(static_cast<std::size_t>(lines.FileSize()) + 16);
    }
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
  SaveFileData(path, WideString(std::move(content)));
  return 0;
}

}  // namespace talp
