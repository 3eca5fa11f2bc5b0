#include <gtest/gtest.h>

#include <functional>

#include "database_fixture.h"
#include "loopback_server.h"
#include "sources/odbc/odbc_base.h"
#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlCatalogue : public test::SourceTest {};
ON_EVERY_SOURCE(SqlCatalogue);

TEST_P(SqlCatalogue, TableListNamesEveryTable) {
  Exec({"CREATE TABLE a (x INT)", "CREATE TABLE b (x INT)", "CREATE TABLE `t\xC3\xB6` (x INT)"});
  WideString result("untouched");
  EXPECT_EQ(Tables(result), 0);
  // The MariaDB driver lists every database's tables, ours among them.
  if (Kind() == test::Source::kOdbcMariaDB) {
    EXPECT_NE(result.ToUTF8().find("\ra\rb\rt\xC3\xB6\r"), std::string::npos) << result.ToUTF8();
  } else {
    EXPECT_EQ(result.ToUTF8(), "a\rb\rt\xC3\xB6\r");
  }
  // No MySQL operation leaves a closed handle in the shared slot, the table
  // list's closing comparison included.
  EXPECT_EQ(pConnection, nullptr);
}

// The names of a table's columns, or through MySQL of a statement's (one that
// starts "SELECT " in upper case). A failed list shows the server's message
// naming the culprit (MySQL) or writes the driver's diagnostics (ODBC, whose
// list is then empty).
TEST_P(SqlCatalogue, ColumnList) {
  std::string wide = "CREATE TABLE wide (c1 INT", wideNames = "c1";
  for (int i = 2; i <= 1500; ++i) wide += ", c" + std::to_string(i) + " INT";
  for (int i = 2; i <= 1024; ++i) wideNames += "\rc" + std::to_string(i);
  Exec({"CREATE TABLE tt (id INT, name TEXT, price DECIMAL(8,2))", "CREATE TABLE t1 (only_one INT)",
        wide + (Kind() == test::Source::kOdbcSQLite ? ")" : ") ENGINE=Aria")});
  const struct { const char *table, *mysql, *odbc, *culprit = nullptr, *query = ""; } cases[] = {
      {"tt", "id\rname\rprice\r", "id\rname\rprice"},
      {"t1", "only_one\r", "only_one"},
      // At most 1024 names through ODBC.
      {"wide", nullptr, wideNames.c_str()},
      {"missing", "untouched", "", "missing"},
      {"tt", "price\rk\r", nullptr, nullptr, "SELECT price, id AS k FROM tt"},
      {"tt", "id\rname\rprice\r", nullptr, nullptr, "select id from tt"},  // not upper case: the table's fields
      {"tt", "untouched", nullptr, "nowhere", "SELECT nope FROM nowhere"},
  };
  for (const auto& c : cases) {
    if (!Pick(c.mysql, c.odbc)) continue;
    SCOPED_TRACE(std::string(c.table) + " " + c.query);
    alerts.alerts.clear();
    WideString result("untouched");
    int status = 0;
    const std::string diagnostics = test::Diagnostics([&] { status = Columns(c.table, result, c.query); });
    EXPECT_EQ(result.ToUTF8(), Pick(c.mysql, c.odbc));
    EXPECT_EQ(status, result.ToUTF8() == "untouched" ? 1 : 0);
    ASSERT_EQ(alerts.alerts.size(), c.culprit && !Odbc() ? 1U : 0U);
    if (c.culprit && !Odbc()) {
      EXPECT_NE(alerts.alerts[0].find(c.culprit), std::string::npos) << alerts.alerts[0];
    }
    EXPECT_EQ(diagnostics, c.culprit && Odbc() ? "1: SQLNumResultCols = [unixODBC][Driver Manager]Function sequence "
                                                 "error (0) SQLSTATE=HY010\n"
                                               : "");
  }
}

// Every operation with a connection that fails (a refused port or an unknown
// data source): its status and the output it leaves. Through MySQL only the
// database list says so (MySqlHostilePeer); through ODBC every operation
// alerts once, however often it connects, and writes the diagnostics.
TEST_P(SqlCatalogue, FailedConnect) {
  const test::RefusingPort refused;
  port = refused.Port();
  dsn = PMString("talp_no_such_source");
  const struct { const char* name; std::function<int(WideString&)> run; int mysql, odbc; const char* odbcOutput; }
      operations[] = {
          {"tables", [&](auto& out) { return Tables(out); }, 1, 1, ""},
          {"columns", [&](auto& out) { return Columns("tt", out); }, 0, 1, ""},
          {"record", [&](auto& out) { return Record("t", "a", "1", "g", "", "", out); }, 0, 0, "untouched"},
          {"group", [&](auto& out) { return Group("t", out, "x", "g", "", ""); }, 0, 0, "untouched"},
          {"update", [&](auto&) { return Update("v", "f", "1", "t", "k"); }, 0, 0, "untouched"},
      };
  for (const auto& o : operations) {
    alerts.alerts.clear();
    WideString result("untouched");
    const std::string diagnostics =
        test::Diagnostics([&] { EXPECT_EQ(o.run(result), Odbc() ? o.odbc : o.mysql) << o.name; });
    EXPECT_EQ(result.ToUTF8(), Odbc() ? o.odbcOutput : "untouched") << o.name;
    EXPECT_EQ(alerts.alerts, std::vector<std::string>(Odbc(), "Unable to connect to the data source!")) << o.name;
    EXPECT_TRUE(diagnostics.starts_with(Odbc() ? "1: SQLDriverConnect = [unixODBC][Driver Manager]Data source name "
                                                 "not found and no default driver specified (0) SQLSTATE=IM002\n"
                                               : ""))
        << diagnostics;
  }
}

// unixODBC reports a driver library that cannot be loaded with state 01000;
// the process then ends, through the host, with status -1.
class OdbcConnection : public test::DatabaseTest {};

TEST_F(OdbcConnection, MissingDriverEndsTheProcess) {
  WideString result("untouched");
  const std::string diagnostics = test::Diagnostics([&] {
    try {
      fetchTableListODBC(user, password, PMString(std::getenv("TALP_ODBC_MISSING_DSN")), result);
      ADD_FAILURE() << "the process went on";
    } catch (const test::ProcessExit& exit) {
      EXPECT_EQ(exit.status, -1);
    }
  });
  EXPECT_TRUE(diagnostics.starts_with("1: SQLDriverConnect = [unixODBC][Driver Manager]Can't open lib '"))
      << diagnostics;
  EXPECT_TRUE(diagnostics.ends_with("no-such-driver.so' : file not found (0) SQLSTATE=01000\n")) << diagnostics;
  EXPECT_TRUE(alerts.alerts.empty());
}

// The database list and the statements are MySQL's alone.
class MySqlCatalogue : public test::DatabaseTest {};

// The server lists information_schema first, and the first database is
// dropped: a user allowed the test's database only sees that one.
TEST_F(MySqlCatalogue, DatabaseListDropsTheFirstDatabaseTheServerLists) {
  const std::string only = "u" + database.GrabCString();
  Exec({"CREATE USER '" + only + "'@'%' IDENTIFIED BY 'pw'",
        "GRANT ALL ON " + database.GrabCString() + ".* TO '" + only + "'@'%'"});
  WideString result("untouched");
  EXPECT_EQ(fetchDatabaseListSQL(host, port, PMString(only), "pw", result), 0);
  Exec({"DROP USER '" + only + "'@'%'"});
  EXPECT_EQ(result.ToUTF8(), database.GrabCString() + "\r");
}

// A statement run for its effect; one the server rejects is shown, twice.
TEST_F(MySqlCatalogue, Statements) {
  Exec({"CREATE TABLE tt (id INT, name TEXT)"});
  EXPECT_EQ(ConnectWithInfoSQL("INSERT INTO tt (id) VALUES (7), (8)", host, port, user, password, database, ""), 0);
  EXPECT_EQ(Rows("SELECT id FROM tt ORDER BY id"), (std::vector<std::string>{"7", "8"}));
  EXPECT_EQ(ConnectWithInfoSQL("DROP TABLE nowhere", host, port, user, password, database, "ignored"), 0);
  ASSERT_EQ(alerts.alerts.size(), 2U);
  EXPECT_NE(alerts.alerts[0].find("nowhere"), std::string::npos) << alerts.alerts[0];
  EXPECT_EQ(alerts.alerts[1], alerts.alerts[0]);
}

// The client library overruns a buffer with table names of some 350 bytes
// and more; such names must not reach it.
TEST_F(MySqlCatalogue, LongTableNamesAreRefusedNotOverrun) {
  const PMString longName(std::string(1000, 'x'));
  WideString result("untouched");
  EXPECT_EQ(fetchColumnListSQL(host, port, user, password, database, longName, "", result), 1);
  EXPECT_EQ(fetchSpecificRecordSQL(host, port, user, password, database, longName, "id", "1", "", "", "", result), 0);
  EXPECT_EQ(result.ToUTF8(), "untouched");
  ASSERT_EQ(alerts.alerts.size(), 1U);
  EXPECT_TRUE(alerts.alerts[0].starts_with("Incorrect table name 'xxx")) << alerts.alerts[0];
}

// A peer that is no MySQL server, or a broken one, is a failed connect.
TEST(MySqlHostilePeer, IsAFailedConnect) {
  const std::string packetHeaderOnly("\x4a\x00\x00\x00\x0a", 5);  // a greeting cut short
  const std::string hugePacket("\xff\xff\xff\x00\x0a5.5.5", 10);
  const std::string errorPacket("\x17\x00\x00\x00\xff\x10\x04Too many connections", 27);
  for (const std::string& answer : {std::string(), std::string("HTTP/1.0 200 OK\r\n\r\n"), packetHeaderOnly,
                                    hugePacket, errorPacket, std::string(100000, '\xff')}) {
    test::TestHost alerts;
    const test::LoopbackServer server(test::LoopbackServer::Mode::kAnswerAtOnce, {answer});
    WideString result("untouched");
    EXPECT_EQ(fetchDatabaseListSQL("127.0.0.1", server.Port(), "u", "p", result), 1);
    EXPECT_EQ(alerts.alerts, std::vector<std::string>{"NOT CONNECTED TO BASE"});
  }
}

}  // namespace
}  // namespace talp
