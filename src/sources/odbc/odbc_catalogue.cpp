// The ODBC catalogue: the tables of a data source and the columns of a table.
#include <algorithm>
#include <string>

#include "sources/odbc/odbc_base.h"
#include "sources/odbc/odbc_connection.h"
#include "sources/sql/sql_text.h"

namespace talp {
namespace {

// More columns than this are not listed.
constexpr SQLSMALLINT kMostColumns = 1024;

}  // namespace

int fetchTableListODBC(const PMString& user, const PMString& password, const PMString& dsn, WideString& result) {
  odbc::Session session;
  result.Clear();
  if (!odbc::ConnectOrAlert(user, password, dsn)) return 1;
  if (SQLTables(hstmt.get(), nullptr, 0, nullptr, 0, nullptr, 0, nullptr, 0) != SQL_SUCCESS) {
    ODBC_Errors("SQLTables(tables)");
    return 1;
  }
  std::string names;
  SQLRETURN rc;
  bool nameUnread = false;
  for (;;) {
    rc = SQLFetchScroll(hstmt.get(), SQL_FETCH_NEXT, 0);
    if (rc == SQL_NO_DATA) break;
    if (rc != SQL_SUCCESS) {
      ODBC_Errors("Fetch");
      rc = SQLMoreResults(hstmt.get());
      break;
    }
    char name[4096];
    SQLLEN indicator = 0;
    rc = SQLGetData(hstmt.get(), 3, SQL_C_CHAR, name, sizeof name, &indicator);
    if ((nameUnread = !SQL_SUCCEEDED(rc))) break;
    names.append(indicator == SQL_NULL_DATA ? "" : name).push_back('\r');
  }
  if (!nameUnread && (rc == SQL_NO_DATA || rc == SQL_SUCCESS)) {
    while ((rc = SQLMoreResults(hstmt.get())) == SQL_SUCCESS) {
    }
    if (rc == SQL_ERROR) ODBC_Errors("SQLMoreResults");
  }
  sql::DecodeInto(names, result);
  return 0;
}

int fetchColumnListODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        WideString& result) {
  odbc::Session session;
  const std::string statement = "SELECT * FROM " + table.GrabCString();
  result.Clear();
  if (!odbc::ConnectOrAlert(user, password, dsn)) return 1;
  if (!odbc::EnsureStatement()) return 1;
  // Only the descriptions are read, so one row is all the driver need fetch.
  SQLSetStmtAttr(hstmt.get(), SQL_ATTR_MAX_ROWS, reinterpret_cast<SQLPOINTER>(1), SQL_IS_UINTEGER);
  odbc::ExecDirect(statement);
  SQLSMALLINT count = 0;
  if (!SQL_SUCCEEDED(SQLNumResultCols(hstmt.get(), &count))) {
    ODBC_Errors("SQLNumResultCols");
    return 0;
  }
  if (count == 0) {
    SQLLEN rows = 0;
    SQLRowCount(hstmt.get(), &rows);
    return 0;
  }
  std::string names;
  for (SQLSMALLINT column = 1; column <= std::min(count, kMostColumns); ++column) {
    SQLCHAR name[1024];
    SQLSMALLINT length = 0, type = 0, digits = 0, nullable = 0;
    SQLULEN size = 0;
    if (!SQL_SUCCEEDED(SQLDescribeCol(hstmt.get(), column, name, sizeof name, &length, &type, &size, &digits,
                                      &nullable))) {
      ODBC_Errors("SQLDescribeCol");
      break;
    }
    // Separated, not ended, by CR: unlike the MySQL list.
    if (!names.empty()) names.push_back('\r');
    names.append(reinterpret_cast<const char*>(name));
  }
  sql::DecodeInto(names, result);
  return 0;
}

}  // namespace talp
