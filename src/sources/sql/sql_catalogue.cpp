// The MySQL catalogue: databases, tables and columns, each name followed by
// CR, and one statement run for a caller that wants no result.
#include <string>

#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"
#include "talp/host_services.h"

namespace talp {
namespace {

// The first column of every row of result from row on, each followed by CR.
std::string FirstColumns(MYSQL_RES* result) {
  std::string names;
  if (result == nullptr) return names;
  while (MYSQL_ROW row = mysql_fetch_row(result)) {
    names.append(sql::FieldBytes(row, mysql_fetch_lengths(result), 0)).push_back('\r');
  }
  return names;
}

}  // namespace

int fetchDatabaseListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                         WideString& result) {
  sql::MySqlSession session;
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, PMString())) {
    CAlert::InformationAlert("NOT CONNECTED TO BASE");
    return 1;
  }
  session.Prepare();
  const sql::Result databases = session.ListDatabases();
  // The first database listed is never reported: on a typical server it is
  // the server's own schema information.
  if (databases) mysql_fetch_row(databases.get());
  sql::DecodeInto(FirstColumns(databases.get()), result);
  session.Close();
  return 0;
}

int fetchTableListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                      const PMString& database, WideString& result) {
  sql::MySqlSession session;
  if (!session.Init()) return 1;
  if (!session.Connect(host, port, user, password, database)) return 1;
  session.Prepare();
  const sql::Result tables = session.ListTables();
  if (session.ErrorNumber() != 0) return 0;
  sql::DecodeInto(FirstColumns(tables.get()), result);
  session.Close();
  // Kept from the original sequence; closing again is harmless, the session
  // knows its handle is gone.
  if (session.FreshHandleDiffersFromCurrent()) session.Close();
  return 0;
}

int fetchColumnListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                       const PMString& database, const PMString& table, const PMString& query, WideString& result) {
  sql::MySqlSession session;
  if (!session.Init() || table.CharCount() < 2) return 1;
  const std::string statement = query.GrabCString();
  const bool isStatement = statement.starts_with("SELECT ");
  // The table name goes into the socket slot; over the network the client
  // library does not use it.
  const std::string tableBytes = table.GrabCString();
  if (!session.InitAndConnect(host, port, user, password, database, tableBytes.c_str(),
                              sql::kLongPasswordAndLongFlag)) {
    return 0;
  }
  session.Prepare();
  sql::Result fields;
  if (isStatement) {
    if (session.Query(statement)) fields = session.StoreResult();
  } else {
    fields = session.ListFields(table);
  }
  if (session.ErrorNumber() != 0) {
    CAlert::InformationAlert(PMString(session.ErrorText()));
    return 1;
  }
  if (!fields) return 1;
  sql::DecodeInto(sql::FieldNamesList(fields.get()), result);
  session.Close();
  return 0;
}

int ConnectWithInfoSQL(const WideString& statement, const PMString& host, int port, const PMString& user,
                       const PMString& password, const PMString& database, const PMString& /*extra*/) {
  sql::MySqlSession session;
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, database)) return 0;
  session.Prepare();
  session.Query(statement.ToUTF8());
  // The message of a failing statement is shown twice: once after running it
  // and once more after asking for its result.
  if (const std::string error = session.ErrorText(); !error.empty()) CAlert::InformationAlert(PMString(error));
  const sql::Result ignored = session.StoreResult();
  if (const std::string error = session.ErrorText(); !error.empty()) CAlert::InformationAlert(PMString(error));
  session.Close();
  return 0;
}

}  // namespace talp
