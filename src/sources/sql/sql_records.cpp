// MySQL record queries: the record list of a picker, the record loop and one
// record with the other records of its group.
#include <string>

#include "host/large_text.h"
#include "host/utf.h"
#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"
#include "sources/sql/sql_rows.h"
#include "text/record_template.h"
#include "text/text_handlers.h"
#include "text/word_styling.h"

namespace talp {
namespace {

// Bytes of every field of result, an upper bound for its UTF-16 length.
std::size_t TotalBytes(MYSQL_RES* result) {
  std::size_t total = 0;
  if (result == nullptr) return total;
  const unsigned n = mysql_num_fields(result);
  while (mysql_fetch_row(result) != nullptr) {
    const unsigned long* lengths = mysql_fetch_lengths(result);
    for (unsigned i = 0; i < n; ++i) total += lengths[i] + 1;
    ++total;
  }
  mysql_data_seek(result, 0);
  return total;
}

}  // namespace

int fetchRecordListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                       const PMString& database, const PMString& table, const PMString& sortField,
                       const PMString& shownField, const PMString& search, const PMString& groupField,
                       WideString& result) {
  sql::MySqlSession session;
  PMString condition = search;
  CreateSearchString(host, port, user, password, database, table, condition);
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, database)) return 0;
  session.Prepare();
  session.Query(sql::RecordListStatement(table, sortField, shownField, condition, groupField));
  if (session.ErrorNumber() != 0) return 0;
  const sql::Result rows = session.StoreResult();
  std::string bytes;
  sql::ForEachRow(rows.get(), [&](MYSQL_ROW row, const unsigned long* lengths) {
    for (unsigned i = 0, n = mysql_num_fields(rows.get()); i < n; ++i) {
      bytes.append(row[i] ? sql::FieldBytes(row, lengths, i) : "NULL").push_back('\t');
    }
    bytes.push_back('\r');
  });
  sql::DecodeInto(bytes, result);
  session.Close();
  return 0;
}

int fetchRecordLoopSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                       const PMString& database, const PMString& table, WideString& result,
                       const PMString& condition) {
  sql::MySqlSession session;
  const std::string statement = "SELECT * FROM " + table.GrabCString() + " " + condition.GrabCString();
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, database)) {
    result = WideString();
    return 0;
  }
  session.Prepare();
  session.Query(statement);
  if (session.ErrorNumber() != 0) return 1;
  const sql::Result rows = session.StoreResult();
  std::u16string out;
  // Decoded straight from the stored result: the text never exists twice.
  host::ReserveLargeText(out, TotalBytes(rows.get()));
  std::string line;
  sql::ForEachRow(rows.get(), [&](MYSQL_ROW row, const unsigned long* lengths) {
    line.clear();
    for (unsigned i = 0, n = mysql_num_fields(rows.get()); i < n; ++i) {
      line.append(sql::FieldBytes(row, lengths, i)).push_back('\t');
    }
    // CRs go as bytes, before decoding, so that decoding sees each value the
    // way the server holds it.
    if (line.find('\r') != std::string::npos) std::erase(line, '\r');
    utf::DecodeUTF8(line, out);
    out.push_back(kCR);
  });
  result = WideString(std::move(out));
  session.Close();
  return 0;
}

int fetchSpecificRecordSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                           const PMString& database, const PMString& table, const PMString& keyField,
                           const PMString& keyValue, const PMString& groupField, const PMString& lineLayout,
                           const WideString& styling, WideString& result) {
  sql::MySqlSession session;
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, database)) return 0;
  const sql::Result fields = session.ListFields(table);
  WideString header = WideString::FromUTF8(sql::FieldNamesList(fields.get()));
  const long groupPosition = sql::FieldPosition(fields.get(), groupField);
  AppendHeaderFromWordStyling(styling, header);

  session.Prepare();
  session.Query(sql::SelectWhereEquals(table, keyField, keyValue.GrabCString()));
  if (session.ErrorNumber() != 0) return 0;
  const sql::Result rows = session.StoreResult();
  std::string record;
  std::string groupValue;
  sql::ForEachRow(rows.get(), [&](MYSQL_ROW row, const unsigned long* lengths) {
    for (unsigned i = 0, n = mysql_num_fields(rows.get()); i < n; ++i) {
      const std::string_view value = sql::FieldBytes(row, lengths, i);
      sql::AppendProtected(record, value);
      record.push_back('\r');
      if (static_cast<long>(i) == groupPosition) groupValue = value;
    }
  });

  std::u16string groupText;
  if (sql::AsksForGrouping(groupField) && session.Query(sql::SelectWhereEquals(table, groupField, groupValue))) {
    const sql::Result group = session.StoreResult();
    sql::GroupEntries entries(header, styling, lineLayout);
    std::string bytes;
    std::u16string entry;
    sql::ForEachRow(group.get(), [&](MYSQL_ROW row, const unsigned long* lengths) {
      sql::LoopRecord(group.get(), row, lengths, bytes, entry);
      entries.Add(entry);
    });
    groupText = entries.Finish();
  }
  sql::DecodeInto(record, result);
  HandleWordStyling(styling, header, result);
  if (!groupText.empty()) result.Append(WideString(std::move(groupText)));
  session.Close();
  return 0;
}

}  // namespace talp
