// The group loop of the "Custom" source: the script's data lines that the
// query selects, with runs of lines that share a group value folded into one
// tagged line, without the counts of the other sources' group loops.
#include <string>
#include <string_view>
#include <vector>

#include "host/unit_search.h"
#include "sources/custom/custom_base.h"
#include "sources/custom/custom_data.h"
#include "sources/file/file_data.h"
#include "sources/file/record_filter.h"
#include "text/group_runs.h"
#include "text/item_cursor.h"
#include "text/record_template.h"
#include "text/text_handlers.h"

namespace talp {

int fetchRecordGroupLoopCustom(const PMString& scriptPath, WideString& result, const PMString& query,
                               const PMString& groupField, const PMString& groupContents, const WideString&) {
  WideString tabHeader, data;
  GetCustomDataFromScript(scriptPath, tabHeader, data, query, groupField, groupContents);
  const bool grouping = !groupField.IsEmpty() && groupField != PMString("None");
  const long groupColumn = grouping ? FindIndexInHeader(tabHeader, groupField) : -1;
  std::u16string names(tabHeader.Units());
  host::ReplaceUnit(names, kTab, kCR);
  const WideString header(std::move(names));
  RecordFilter filter(WideString(query), header);
  const RecordTemplate entryTemplate(groupContents.AsWide().Units(), header.Units());

  std::u16string out(result.Units());
  // The header names fields from 1.
  GroupRuns runs(out, grouping, groupColumn - 1, entryTemplate, GroupRuns::Form::kScript);
  std::u16string record;
  std::vector<std::u16string_view> fields;
  ItemCursor lines(data.Units(), kCR);
  std::u16string_view line;
  while (lines.Next(line) && lines.EndedBySeparator()) {
    // A line of the line array ends with a TAB where its CR was.
    record.assign(line).push_back(kTab);
    if (!query.IsEmpty() && !filter.Includes(record)) continue;
    SplitFieldsInto(record, kTab, fields);
    runs.Add(record, fields);
  }
  result = runs.Finish();
  return 0;
}

}  // namespace talp
