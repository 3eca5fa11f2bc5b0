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

// A name of the running test's own: tests run one after the other in a
// process, or in processes of their own.
std::string TestTag() {
  static int tests = 0;
  return "t" + std::to_string(::getpid()) + "_" + std::to_string(++tests);
}

// Runs statement on an ODBC data source, given as a connection string,
// directly through the driver manager; appends the rows as Rows does.
void OdbcRun(const std::string& connection, const std::string& statement, std::vector<std::string>* rows = nullptr) {
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
  for (char value[4096]; rows && columns > 0 && SQL_SUCCEEDED(SQLFetch(stmt));) {
    std::string line;
    for (SQLUSMALLINT c = 1; c <= columns; ++c) {
      SQLLEN length = 0;
      SQLGetData(stmt, c, SQL_C_CHAR, value, sizeof value, &length);
      line += (c > 1 ? "\t" : "") + std::string(length == SQL_NULL_DATA ? "\\N" : value);
    }
    rows->push_back(line);
  }
  SQLFreeHandle(SQL_HANDLE_STMT, stmt);
  SQLDisconnect(dbc);
  SQLFreeHandle(SQL_HANDLE_DBC, dbc);
  SQLFreeHandle(SQL_HANDLE_ENV, env);
}

}  // namespace

std::string SourceName(const testing::TestParamInfo<Source>& info) {
  return info.param == Source::kMySQL ? "MySQL" : info.param == Source::kOdbcSQLite ? "OdbcSQLite" : "OdbcMariaDB";
}

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
  // test never prepares what it is tested on.
  const std::string name = TestTag();
  dsn = PMString(server_);
  Exec({"DROP DATABASE IF EXISTS " + name, "CREATE DATABASE " + name + " CHARACTER SET utf8mb4"});
  database = PMString(name);
  dsn = PMString(server_ + ";DATABASE=" + name);
}

void DatabaseTest::TearDown() {
  if (database.IsEmpty()) return;
  // A test may have changed them.
  dsn = PMString(server_);
  user = PMString(Env("TALP_MYSQL_USER"));
  password = PMString(Env("TALP_MYSQL_PASSWORD"));
  for (const std::string& name : users_) Exec({"DROP USER IF EXISTS '" + name + "'@'%'"});
  Exec({"DROP DATABASE IF EXISTS " + database.GrabCString()});
}

void DatabaseTest::Exec(std::initializer_list<std::string> statements) {
  for (const std::string& statement : statements) OdbcRun(Connection(), statement);
}

std::vector<std::string> DatabaseTest::Rows(const std::string& query) {
  std::vector<std::string> rows;
  OdbcRun(Connection(), query, &rows);
  return rows;
}

std::string DatabaseTest::Connection() const {
  return "DSN=" + dsn.GrabCString() + ";UID=" + user.GrabCString() + ";PWD=" + password.GrabCString();
}

std::string DatabaseTest::CreateUser(const std::string& suffix, const std::string& secret) {
  const std::string name = "u" + std::to_string(::getpid()) + suffix;
  users_.push_back(name);
  Exec({"CREATE USER '" + name + "'@'%' IDENTIFIED BY '" + secret + "'",
        "GRANT ALL ON " + database.GrabCString() + ".* TO '" + name + "'@'%'"});
  return name;
}

}  // namespace talp::test
