// ODBC record queries: the record list of a picker, the record loop that the
// source does not offer, and one record with the other records of its group.
#include <string>

#include "host/utf.h"
#include "sources/odbc/odbc_base.h"
#include "sources/odbc/odbc_connection.h"
#include "sources/odbc/odbc_rows.h"
#include "sources/sql/sql_text.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp {
namespace {

// Runs statement on a fresh cursor.
void Run(const std::string& statement) {
  SQLFreeStmt(hstmt.get(), SQL_CLOSE);
  odbc::ExecDirect(statement);
}

}  // namespace

int fetchRecordListODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        const PMString& sortField, const PMString& shownField, const PMString& search,
                        const PMString& groupField, WideString& result) {
  odbc::Session session;
  PMString condition = search;
  CreateODBCSearchString(user, password, dsn, table, condition);
  std::string statement = condition.GrabCString();
  // Unlike the MySQL source, a whole statement is run as it stands.
  if (!statement.starts_with("SELECT ")) {
    statement = sql::RecordListStatement(table, sortField, shownField, condition, groupField);
  }
  result.Clear();
  if (!odbc::ConnectOrAlert(user, password, dsn) || !odbc::EnsureStatement()) return 0;
  Run(statement);
  std::string bytes;
  odbc::RowReader rows;
  std::string_view value;
  while (rows.NextRow()) {
    for (SQLSMALLINT column = 1; column <= rows.Columns() && rows.Read(column, value); ++column) {
      bytes.append(value).push_back('\t');
    }
    bytes.push_back('\r');
  }
  sql::DecodeInto(bytes, result);
  return 0;
}

int fetchRecordLoopODBC(const PMString&, const PMString&, const PMString&, const PMString&, WideString&,
                        const PMString&) {
  return 1;
}

int fetchGroupAroundInfoODBC(const PMString& user, const PMString& password, const PMString& dsn,
                             const PMString& table, const PMString& keyField, const PMString& keyValue,
                             const PMString& groupField, int& groupColumn, WideString& groupValue) {
  odbc::Session session;
  WideString columns;
  fetchColumnListODBC(user, password, dsn, table, columns);
  groupColumn = static_cast<int>(odbc::ColumnPosition(columns, groupField));
  groupValue.Clear();
  if (!odbc::ConnectOrAlert(user, password, dsn) || !odbc::EnsureStatement()) return 0;
  Run(sql::SelectWhereEquals(table, keyField, keyValue.GrabCString()));
  odbc::RowReader rows;
  if (groupColumn < 0 || !rows.NextRow()) return 0;
  // Read in order, so that a NULL group value repeats what it does elsewhere.
  std::string_view value;
  for (SQLSMALLINT column = 1; column <= groupColumn + 1 && rows.Read(column, value); ++column) {
    if (column == groupColumn + 1) sql::DecodeInto(value, groupValue);
  }
  return 0;
}

int fetchSpecificRecordODBC(const PMString& user, const PMString& password, const PMString& dsn,
                            const PMString& table, const PMString& keyField, const PMString& keyValue,
                            const PMString& groupField, const PMString& lineLayout, const WideString& styling,
                            WideString& result) {
  odbc::Session session;
  const bool grouped = sql::AsksForGrouping(groupField);
  int groupColumn = -1;
  WideString groupValue;
  if (grouped) {
    fetchGroupAroundInfoODBC(user, password, dsn, table, keyField, keyValue, groupField, groupColumn, groupValue);
  }
  WideString header;
  fetchColumnListODBC(user, password, dsn, table, header);
  // Every name ends with CR, as the styling's own names do.
  header.AppendUnits(u"\r");
  AppendHeaderFromWordStyling(styling, header);
  if (!odbc::ConnectOrAlert(user, password, dsn) || !odbc::EnsureStatement()) return 0;

  Run(sql::SelectWhereEquals(table, keyField, keyValue.GrabCString()));
  std::string record;
  {
    odbc::RowReader rows;
    std::string_view value;
    while (rows.NextRow()) {
      for (SQLSMALLINT column = 1; column <= rows.Columns() && rows.Read(column, value); ++column) {
        sql::AppendProtected(record, value, true);
        record.push_back('\r');
      }
    }
  }
  std::u16string groupText;
  if (grouped) {
    Run(sql::SelectWhereEquals(table, groupField, groupValue.ToUTF8()));
    sql::GroupEntries entries(header, styling, lineLayout);
    odbc::RowReader rows;
    std::string bytes;
    std::u16string entry;
    while (rows.NextRow()) {
      odbc::LoopRecord(rows, bytes);
      entry.clear();
      utf::DecodeUTF8(bytes, entry);
      entries.Add(entry);
    }
    groupText = entries.Finish();
  }
  sql::DecodeInto(record, result);
  HandleWordStyling(styling, header, result);
  if (!groupText.empty()) result.Append(WideString(std::move(groupText)));
  return 0;
}

}  // namespace talp
