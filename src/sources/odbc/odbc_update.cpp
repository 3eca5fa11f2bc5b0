// Writing one field of one record back through ODBC.
#include <string>

#include "sources/odbc/odbc_base.h"
#include "sources/odbc/odbc_connection.h"

namespace talp {

int updateBaseFieldWithInfoODBC(const WideString& value, const PMString& field, const PMString& keyValue,
                                const PMString& user, const PMString& password, const PMString& dsn,
                                const PMString& table, const PMString& keyField) {
  odbc::Session session;
  // As the MySQL update: the value is quoted, the key is not; neither is
  // escaped.
  const std::string statement = "UPDATE " + table.GrabCString() + " SET " + field.GrabCString() + "='" +
                                value.ToUTF8() + "' WHERE " + keyField.GrabCString() + "=" + keyValue.GrabCString();
  if (odbc::ConnectOrAlert(user, password, dsn) && odbc::EnsureStatement()) {
    // Whatever the driver answers, nothing is said.
    odbc::ExecDirect(statement);
    SQLCloseCursor(hstmt.get());
  }
  return 0;
}

}  // namespace talp
