// Writing one field of one MySQL record back.
#include <string>

#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"
#include "talp/host_services.h"

namespace talp {

int updateBaseFieldWithInfoSQL(const WideString& value, const PMString& field, const PMString& keyValue,
                               const PMString& host, int port, const PMString& user, const PMString& password,
                               const PMString& database, const PMString& table, const PMString& keyField) {
  sql::MySqlSession session;
  if (!session.Init()) return 1;
  if (!session.InitAndConnect(host, port, user, password, database)) return 0;
  session.Prepare();
  // The value is quoted, the key is not: keys are numbers, and a text key
  // arrives with its own quotes. Neither is escaped.
  const std::string statement = "UPDATE " + table.GrabCString() + " SET " + field.GrabCString() + "='" +
                                value.ToUTF8() + "' WHERE " + keyField.GrabCString() + "=" +
                                keyValue.GrabCString();
  session.Query(statement);
  if (const std::string error = session.ErrorText(); !error.empty()) CAlert::InformationAlert(PMString(error));
  const sql::Result ignored = session.StoreResult();
  session.Close();
  return 0;
}

}  // namespace talp
