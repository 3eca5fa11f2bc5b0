// The ODBC group loop: the records of a statement, consecutive records with
// the same group value folded into one line (see GroupRuns).
#include <string>

#include "host/large_text.h"
#include "host/utf.h"
#include "sources/odbc/odbc_base.h"
#include "sources/odbc/odbc_connection.h"
#include "sources/odbc/odbc_rows.h"
#include "sources/sql/sql_text.h"
#include "text/group_runs.h"
#include "text/record_template.h"
#include "text/restyle_pipeline.h"
#include "text/word_styling.h"

namespace talp {
namespace {

constexpr std::size_t kSampleRecords = 1024;

}  // namespace

int fetchRecordGroupLoopODBC(const PMString& user, const PMString& password, const PMString& dsn,
                             const PMString& table, WideString& result, const PMString& condition,
                             const PMString& groupField, const PMString& lineLayout, const WideString& styling) {
  odbc::Session session;
  PMString search = condition;
  CreateODBCSearchString(user, password, dsn, table, search);
  // Records are grouped as the driver delivers them; a caller that wants
  // whole groups orders the statement itself.
  std::string statement = search.GrabCString();
  if (!statement.starts_with("SELECT ")) statement = "SELECT * FROM " + table.GrabCString() + statement;
  WideString header;
  fetchColumnListODBC(user, password, dsn, table, header);
  // Every name ends with CR, as the styling's own names do.
  header.AppendUnits(u"\r");
  // Unlike the MySQL loop, any group field but "None" groups: one that names
  // no column gives every record the empty group value.
  const long groupPosition = odbc::ColumnPosition(header, groupField);
  if (!odbc::ConnectOrAlert(user, password, dsn) || !odbc::EnsureStatement()) return 0;
  odbc::ExecDirect(statement);
  // Drivers that hold the whole result know its number of rows.
  SQLLEN rowCount = 0;
  SQLRowCount(hstmt.get(), &rowCount);

  RestylePipeline restyle(styling);
  // The line layout may name computed fields too.
  WideString layoutNames = header;
  AppendHeaderFromWordStyling(styling, layoutNames);
  const RecordTemplate entryTemplate(lineLayout.AsWide().Units(), layoutNames.Units());
  std::u16string out(result.Units());
  GroupRuns runs(out, sql::AsksForGrouping(groupField), groupPosition, entryTemplate);
  odbc::RowReader rows;
  std::string bytes;
  const auto read = [&](std::u16string& record) {
    if (!rows.NextRow()) return false;
    odbc::LoopRecord(rows, bytes);
    utf::DecodeUTF8(bytes, record);
    return true;
  };
  std::size_t assembled = 0;
  const auto assemble = [&](const RestylePipeline::Record& record) {
    runs.Add(record.text, record.fields);
    // With the number of rows known, a sample of records tells the size of
    // the text: room for it all (a quarter more, unused pages cost nothing)
    // spares the copies, and the twice-the-text peaks, of a growing string.
    if (++assembled == kSampleRecords && rowCount > static_cast<SQLLEN>(kSampleRecords)) {
      host::ReserveLargeText(out, out.size() / kSampleRecords * static_cast<std::size_t>(rowCount) / 4 * 5);
    }
  };
  restyle.Run(header, read, assemble);
  result = runs.Finish();
  return 0;
}

}  // namespace talp
