#include "database_fixture.h"

#include <odbcinst.h>
#include <sql.h>
#include <sqlext.h>
#include <unistd.h>

#include <cstdlib>

namespace talp::test {
namespace {

std::string Env(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// Runs statement on an ODBC data source, given as a connection string,
// directly through the driver manager; its rows as Rows gives them.
std::vector<std::string> OdbcRun(const std::string& connection, const std::string& statement) {
  std::vector<std::string> rows;
  SQLHANDLE env, dbc, stmt;
  SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &env);
  SQLSetEnvAttr(env, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  SQLAllocHandle(SQL_HANDLE_DBC, env, &dbc);
  std::string text = connection, query = statement;
  SQLDriverConnect(dbc, nullptr, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS, nullptr, 0, nullptr, 0);
  SQLAllocHandle(SQL_HANDLE_STMT, dbc, &stmt);
  EXPECT_TRUE(SQL_SUCCEEDED(SQLExecDirect(stmt, reinterpret_cast<SQLCHAR*>(query.data()), SQL_NTS))) << statement;
  SQLSMALLINT columns = 0;
  SQLNumResultCols(stmt, &columns);
  for (char value[4096]; columns > 0 && SQL_SUCCEEDED(SQLFetch(stmt));) {
    std::string line;
    for (SQLUSMALLINT c = 1; c <= columns; ++c) {
      SQLLEN length = 0;
      SQLGetData(stmt, c, SQL_C_CHAR, value, sizeof value, &length);
      line += (c > 1 ? "\t" : "") + std::string(length == SQL_NULL_DATA ? "\\N" : value);
    }
    rows.push_back(line);
  }
  SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  SQLDisconnect(dbc);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc);
  SQLFreeHandle(SQL_HANDLE_ENV, env);
  return rows;
}

}  // namespace

void DatabaseTest::SetUp() {
  host = PMString(Env("TALP_MYSQL_HOST"));
  port = std::atoi(Env("TALP_MYSQL_PORT").c_str());
  user = PMString(Env("TALP_MYSQL_USER"));
  password = PMString(Env("TALP_MYSQL_PASSWORD"));
  server_ = Env("TALP_ODBC_MARIADB_DSN");
  char driver[256] = "";
  SQLGetPrivateProfileString(server_.c_str(), "Driver", "", driver, sizeof driver, "odbc.ini");
  ASSERT_FALSE(host.IsEmpty() || driver[0] == '\0')
      << "no test server or data sources: run the tests with scripts/run-tests.sh";
  if (Kind() == Source::kOdbcSQLite) {
    folder_ = std::make_unique<TempFolder>();
    dsn = PMString(Env("TALP_ODBC_SQLITE_DSN") + ";Database=" + (*folder_ / "test.db").string());
    return;
  }
  // The MariaDB driver sets up the MySQL tests' data too: the code under
  // test never prepares what it is tested on. Tests run one after the other
  // in a process, or in processes of their own.
  static int tests = 0;
  const std::string name = "t" + std::to_string(::getpid()) + "_" + std::to_string(++tests);
  dsn = PMString(server_);
  Exec({"DROP DATABASE IF EXISTS " + name, "CREATE DATABASE " + name + " CHARACTER SET utf8mb4"});
  database = PMString(name);
  dsn = PMString(server_ + ";DATABASE=" + name);
}

void DatabaseTest::TearDown() {
  if (database.IsEmpty()) return;
  dsn = PMString(server_);  // a test may have changed it
  Exec({"DROP DATABASE IF EXISTS " + database.GrabCString()});
}

void DatabaseTest::Exec(std::initializer_list<std::string> statements) {
  for (const std::string& statement : statements) Rows(statement);
}

std::vector<std::string> DatabaseTest::Rows(const std::string& query) {
  return OdbcRun("DSN=" + dsn.GrabCString() + ";UID=" + user.GrabCString() + ";PWD=" + password.GrabCString(), query);
}

}  // namespace talp::test
