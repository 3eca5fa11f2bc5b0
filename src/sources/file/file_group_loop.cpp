// The group loop of the "File" source: selected records, with runs of
// records that share a group value folded into one tagged line.
#include <string>
#include <string_view>
#include <vector>

#include "host/unit_search.h"
#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
#include "sources/file/record_filter.h"
#include "talp/host_services.h"
#include "text/item_cursor.h"
#include "text/record_template.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp {
namespace {

// No real record holds it, so the first selected record always opens a run.
constexpr std::u16string_view kNoGroupYet = u"zzzzzzzzzzzzzzzzzzzzzzzzzzzzh";
constexpr std::u16string_view kLight = u"<pstyle:LineLight>";
constexpr std::u16string_view kDark = u"<pstyle:LineDark>";

void AppendCount(std::u16string& out, long runCount) {
  out.push_back(kTab);
  out.append(GetNumberAsWideString(runCount + 1).Units());
}

}  // namespace

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
  WordStyling restyle(styling);
  const RecordTemplate entryTemplate(groupContents.AsWide().Units(), header.Units());

  std::u16string out;
  // Room for a result several times the file: pages that stay unused cost
  // no memory, and the text is never copied while it grows.
  out.reserve(result.NumUTF16TextChars() + static_cast<std::size_t>(lines.FileSize()) * 4);
  out.append(result.Units());
  std::u16string_view style = kLight;
  std::u16string previous(kNoGroupYet);
  long runCount = 0;
  std::u16string entry;
  std::u16string record;
  std::vector<std::u16string_view> fields;
  for (std::size_t i = 2; lines.Next(line); ++i) {
    if (i % (1 << 16) == 0) host::Host().Progress("records", lines.BytesRead(), lines.FileSize());
    // Lines that ended with a CR end with a TAB here, like the last field.
    record.assign(line);
    if (lines.LastEndedWithCR()) record.push_back(kTab);
    const std::vector<std::u16string_view>* recordFields = &fields;
    if (restyle.IsDocument()) {
      restyle.ApplyDocument(header, record);
      // A styling document leaves the fields CR-separated; the loop reads
      // them by TAB, computed fields included. The fields found while
      // restyling stay valid: only separators change.
      host::ReplaceUnit(record, kCR, kTab);
      recordFields = &restyle.LastFields();
    } else {
      WideString cleaned(std::move(record));
      restyle.Apply(header, cleaned);
      record.assign(cleaned.Units());
      SplitFieldsInto(record, kTab, fields);
    }
    if (!query.IsEmpty() && !filter.Includes(record)) continue;
    if (!grouping) {
      out.append(record);
      out.push_back(kCR);
      continue;
    }
    const std::u16string_view groupValue =
        groupColumn >= 1 && static_cast<std::size_t>(groupColumn) <= recordFields->size()
            ? (*recordFields)[static_cast<std::size_t>(groupColumn) - 1]
            : std::u16string_view();
    entry.clear();
    entryTemplate.Fill(*recordFields, entry);
    // The style changes with every selected record, across runs too, and
    // before it is used: the first record is dark.
    style = style == kLight ? kDark : kLight;
    if (groupValue == previous) {
      out.append(u"<br>").append(style).append(entry);
      ++runCount;
    } else {
      if (!out.empty()) {
        AppendCount(out, runCount);
        out.push_back(kCR);
      }
      out.append(record).append(style).append(entry);
      previous = groupValue;
      runCount = 0;
    }
  }
  if (grouping) AppendCount(out, runCount);
  result = WideString(std::move(out));
  return 0;
}

}  // namespace talp
