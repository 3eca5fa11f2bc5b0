// The group loop of the "File" source: selected records, with runs of
// records that share a group value folded into one tagged line.
#include <string>
#include <string_view>
#include <vector>

#include "host/large_text.h"
#include "host/unit_search.h"
#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
#include "sources/file/record_filter.h"
#include "talp/host_services.h"
#include "text/group_runs.h"
#include "text/item_cursor.h"
#include "text/record_template.h"
#include "text/restyle_pipeline.h"
#include "text/text_handlers.h"

namespace talp {

int fetchRecordGroupLoopFile(const PMString& path, const PMString& query, WideString& result,
                             const PMString& groupField, const PMString& groupContents, const WideString& styling) {
  FileLines lines(path);
  std::u16string_view line;
  std::u16string names;
  if (lines.Next(line)) names = line;
  const bool grouping = !groupField.IsEmpty() && groupField != PMString("None");
  const long groupColumn = grouping ? FindIndexInHeader(WideString::FromUTF16(names), groupField) : -1;
  // From here on the header is a CR-separated list of names, so that the
  // where clause finds its field by name.
  host::ReplaceUnit(names, kTab, kCR);
  const WideString header(std::move(names));
  RecordFilter filter(WideString(query), header);
  RestylePipeline restyle(styling);
  const RecordTemplate entryTemplate(groupContents.AsWide().Units(), header.Units());

  std::u16string out(result.Units());
  // The result is about twice the file in UTF-16, more with long computed fields.
  host::ReserveLargeText(out, out.size() + 4 * static_cast<std::size_t>(lines.FileSize()));
  // The header names fields from 1.
  GroupRuns runs(out, grouping, groupColumn - 1, entryTemplate);
  std::size_t lineNumber = 1;
  const auto read = [&](std::u16string& record) {
    if (!lines.Next(line)) return false;
    if (++lineNumber % (1 << 16) == 0) host::Host().Progress("records", lines.BytesRead(), lines.FileSize());
    // Lines that ended with a CR end with a TAB here, like the last field.
    record.assign(line);
    if (lines.LastEndedWithCR()) record.push_back(kTab);
    return true;
  };
  const auto assemble = [&](const RestylePipeline::Record& record) {
    if (query.IsEmpty() || filter.Includes(record.text)) runs.Add(record.text, record.fields);
  };
  restyle.Run(header, read, assemble);
  result = runs.Finish();
  return 0;
}

}  // namespace talp
