// The MySQL group loop: the records of a statement, consecutive records with
// the same group value folded into one line (see GroupRuns).
#include <string>

#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"
#include "sources/sql/sql_rows.h"
#include "text/group_runs.h"
#include "text/record_template.h"
#include "text/restyle_pipeline.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp {

int fetchRecordGroupLoopSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                            const PMString& database, const PMString& table, WideString& result,
                            const PMString& condition, const PMString& groupField, const PMString& lineLayout,
                            const WideString& styling) {
  sql::MySqlSession session;
  PMString search = condition;
  CreateSearchString(host, port, user, password, database, table, search);
  // Records are grouped as the server delivers them; a caller that wants
  // whole groups orders the statement itself.
  std::string statement = search.GrabCString();
  if (!statement.starts_with("SELECT ")) statement = "SELECT * FROM " + table.GrabCString() + statement;
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, database)) return 0;
  session.Prepare();
  session.Query(statement);
  if (session.ErrorNumber() != 0) return 1;
  const sql::Result rows = session.StoreResult();
  const sql::Result fields = session.ListFields(table);
  const WideString header = WideString::FromUTF8(sql::FieldNamesList(fields.get()));
  const long groupPosition = sql::FieldPosition(fields.get(), groupField);

  RestylePipeline restyle(styling);
  // The line layout may name computed fields too.
  WideString layoutNames = header;
  AppendHeaderFromWordStyling(styling, layoutNames);
  const RecordTemplate entryTemplate(lineLayout.AsWide().Units(), layoutNames.Units());
  std::u16string out(result.Units());
  GroupRuns runs(out, groupPosition >= 0, groupPosition, entryTemplate);
  sql::RowCursor cursor(rows.get());
  std::string bytes;
  const auto read = [&](std::u16string& record) {
    MYSQL_ROW row;
    const unsigned long* lengths;
    if (!cursor.Next(row, lengths)) return false;
    sql::LoopRecord(rows.get(), row, lengths, bytes, record);
    return true;
  };
  const auto assemble = [&](const RestylePipeline::Record& record) { runs.Add(record.text, record.fields); };
  restyle.Run(header, read, assemble);
  result = runs.Finish();
  session.Close();
  return 0;
}

}  // namespace talp
