// Writing one field value back into every matching record of a data file.
#include <string>
#include <string_view>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
#include "talp/host_services.h"
#include "text/item_cursor.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

void AlertNotUpdated(const PMString& path, const char* why) {
  PMString message("Could not update the file ");
  message.Append(path);
  message.Append(": ");
  message.Append(why);
  CAlert::InformationAlert(message);
}

}  // namespace

int updateBaseFieldWithInfoFile(const WideString& newValue, const PMString& updateField, const PMString& keyField,
                                const PMString& keyValue, const PMString& path) {
  WideString value = newValue;
  SearchReplaceUnicode(value, WideString("\t"), WideString("<tb>"));
  SearchReplaceUnicode(value, WideString("\r"), WideString("<br>"));
  SearchReplaceUnicode(value, WideString("\n"), WideString("<sr>"));

  // Held from before the file is read until its replacement is in place, so
  // that concurrent updates of one file never lose each other's values.
  host::HostServices& host = host::Host();
  const host::FileLockAttempt attempt = host.LockFileForUpdate(path, host.FileLockWait());
  if (!attempt.lock) {
    if (attempt.timedOut) {
      AlertNotUpdated(path, "another update of it did not end in time.");
    } else {
      AlertNotUpdated(path, ("its lock file could not be opened (" + attempt.failure + ").").c_str());
    }
    return 0;
  }

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
  if (lines.ReadIncomplete()) {
    AlertNotUpdated(path, "it could not be read.");
    return 0;
  }
  SaveFileData(path, WideString(std::move(content)), lines.Stored());
  return 0;
}

}  // namespace talp
