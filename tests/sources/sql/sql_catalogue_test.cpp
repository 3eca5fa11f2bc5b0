#include <gtest/gtest.h>

#include "loopback_server.h"
#include "mysql_fixture.h"
#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlCatalogue : public test::MySqlTest {};

// The server lists information_schema first, and the first database is dropped.
TEST_F(SqlCatalogue, DatabaseListDropsTheFirstDatabaseTheServerLists) {
  const std::string only = CreateUser("db", "pw"), none = CreateUser("none", "pw");
  Exec("REVOKE ALL ON " + database.GrabCString() + ".* FROM '" + none + "'@'%'");
  WideString result("untouched");
  EXPECT_EQ(fetchDatabaseListSQL(host, port, PMString(only), "pw", result), 0);
  EXPECT_EQ(result.ToUTF8(), database.GrabCString() + "\r");
  // A user who sees one database only has an empty list.
  EXPECT_EQ(fetchDatabaseListSQL(host, port, PMString(none), "pw", result), 0);
  EXPECT_EQ(result.ToUTF8(), "");
}

// No operation leaves a closed handle in the shared slot, the table list's
// closing comparison included.
TEST_F(SqlCatalogue, TableListNamesEveryTable) {
  Exec("CREATE TABLE b (x INT); CREATE TABLE a (x INT); CREATE TABLE `t\xC3\xB6` (x INT)");
  WideString result;
  EXPECT_EQ(fetchTableListSQL(host, port, user, password, database, result), 0);
  EXPECT_EQ(result.ToUTF8(), "a\rb\rt\xC3\xB6\r");
  EXPECT_EQ(pConnection, nullptr);
}

// A failed column list leaves the output alone and shows the server's message
// naming the culprit, or nothing for a one-character table name, which never
// gets as far as connecting.
TEST_F(SqlCatalogue, ColumnListOfATableOrOfAStatement) {
  Exec("CREATE TABLE tt (id INT, name TEXT, price DECIMAL(8,2)); CREATE TABLE t (id INT)");
  const test::RefusingPort refused;
  const struct { const char *table, *query, *expected, *named = nullptr; int port = 0; } cases[] = {
      {"tt", "", "id\rname\rprice\r"},
      {"tt", "SELECT price, id AS k FROM tt", "price\rk\r"},
      {"tt", "select id from tt", "id\rname\rprice\r"},  // not upper case: the table's fields
      {"tt", "SELECTid FROM tt", "id\rname\rprice\r"},
      {"no table", "SELECT 1 AS one, 'x' AS \xC3\xA9t\xC3\xA9", "one\r\xC3\xA9t\xC3\xA9\r"},
      {"missing", "", "untouched", "missing"},
      {"tt", "SELECT nope FROM nowhere", "untouched", "nowhere"},
      {"t", "", "untouched"},
      {"t", "", "untouched", nullptr, refused.Port()},
  };
  for (const auto& c : cases) {
    alerts.alerts.clear();
    WideString result("untouched");
    const int status = fetchColumnListSQL(host, c.port ? c.port : port, user, password, database, c.table, c.query,
                                          result);
    EXPECT_EQ(status, std::string(c.expected) == "untouched" ? 1 : 0) << c.table << " " << c.query;
    EXPECT_EQ(result.ToUTF8(), c.expected) << c.table << " " << c.query;
    ASSERT_EQ(alerts.alerts.size(), c.named ? 1U : 0U) << c.table;
    if (c.named) {
      EXPECT_NE(alerts.alerts[0].find(c.named), std::string::npos) << alerts.alerts[0];
    }
  }
}

// A rejected statement is shown twice.
TEST_F(SqlCatalogue, ConnectWithInfoRunsTheStatementAndDiscardsRows) {
  Exec("CREATE TABLE t (id INT)");
  EXPECT_EQ(ConnectWithInfoSQL("INSERT INTO t VALUES (7), (8)", host, port, user, password, database, ""), 0);
  EXPECT_EQ(ConnectWithInfoSQL("SELECT * FROM t", host, port, user, password, database, ""), 0);
  EXPECT_EQ(Rows("SELECT id FROM t ORDER BY id"), (std::vector<std::string>{"7", "8"}));
  EXPECT_TRUE(alerts.alerts.empty());
  EXPECT_EQ(ConnectWithInfoSQL("DROP TABLE nowhere", host, port, user, password, database, "ignored"), 0);
  ASSERT_EQ(alerts.alerts.size(), 2U);
  EXPECT_NE(alerts.alerts[0].find("nowhere"), std::string::npos) << alerts.alerts[0];
  EXPECT_EQ(alerts.alerts[1], alerts.alerts[0]);
}

// Failures across the catalogue: status, alerts, output left alone.
class SqlFailures : public test::MySqlTest {};

// A refused port, a wrong password and an unknown database fail the connect:
// only the database list says so.
TEST_F(SqlFailures, FailedConnect) {
  const test::RefusingPort refused;
  const struct { int port; const char *password, *database; } cases[] = {
      {refused.Port(), nullptr, nullptr}, {port, "not-the-password", nullptr}, {port, nullptr, "no_such_db"}};
  for (const auto& c : cases) {
    alerts.alerts.clear();
    const PMString secret = c.password ? PMString(c.password) : password;
    const PMString base = c.database ? PMString(c.database) : database;
    WideString databases;  // the database list names no database: it connects there
    EXPECT_EQ(fetchDatabaseListSQL(host, c.port, user, secret, databases), c.database ? 0 : 1);
    WideString result("untouched");
    EXPECT_EQ(fetchTableListSQL(host, c.port, user, secret, base, result), 1);
    EXPECT_EQ(fetchColumnListSQL(host, c.port, user, secret, base, "tt", "", result), 0);
    EXPECT_EQ(ConnectWithInfoSQL("SELECT 1", host, c.port, user, secret, base, ""), 0);
    EXPECT_EQ(result.ToUTF8(), "untouched");
    EXPECT_EQ(alerts.alerts, std::vector<std::string>(c.database ? 0 : 1, "NOT CONNECTED TO BASE"));
  }
}

// The client library overruns a buffer with table names of some 350 bytes
// and more; such names must not reach it.
TEST_F(SqlFailures, LongNamesAreRefusedNotOverrun) {
  const std::string longName(1000, 'x');
  WideString result("untouched");
  EXPECT_EQ(fetchDatabaseListSQL(host, port, PMString(longName), PMString(longName), result), 1);
  EXPECT_EQ(fetchTableListSQL(host, port, user, password, PMString(longName), result), 1);
  for (const std::size_t length : {100, 256, 257, 400, 1000}) {
    const PMString table(longName.substr(0, length));
    EXPECT_EQ(fetchColumnListSQL(host, port, user, password, database, table, "", result), 1);
  }
  EXPECT_EQ(fetchSpecificRecordSQL(host, port, user, password, database, PMString(longName), "id", "1", "", "", "",
                                   result),
            0);
  EXPECT_EQ(result.ToUTF8(), "untouched");
  ASSERT_EQ(alerts.alerts.size(), 6U);
  for (std::size_t i = 1; i < 6; ++i) EXPECT_TRUE(alerts.alerts[i].starts_with("Incorrect table name 'xxx"));
}

// A peer that is no MySQL server, or a broken one, is a failed connect.
TEST(SqlHostilePeer, IsAFailedConnect) {
  const std::string packetHeaderOnly("\x4a\x00\x00\x00\x0a", 5);  // a greeting cut short
  const std::string hugePacket("\xff\xff\xff\x00\x0a5.5.5", 10);
  const std::string errorPacket("\x17\x00\x00\x00\xff\x10\x04Too many connections", 27);
  for (const std::string& answer : {std::string(), std::string("HTTP/1.0 200 OK\r\n\r\n"), packetHeaderOnly,
                                    hugePacket, errorPacket, std::string(100000, '\xff')}) {
    test::TestHost alerts;
    test::LoopbackServer first(test::LoopbackServer::Mode::kAnswerAtOnce, {answer}),
        second(test::LoopbackServer::Mode::kAnswerAtOnce, {answer});
    WideString result("untouched");
    EXPECT_EQ(fetchDatabaseListSQL("127.0.0.1", first.Port(), "u", "p", result), 1);
    EXPECT_EQ(alerts.alerts, std::vector<std::string>{"NOT CONNECTED TO BASE"});
    EXPECT_EQ(fetchRecordLoopSQL("127.0.0.1", second.Port(), "u", "p", "d", "tt", result, ""), 0);
    EXPECT_EQ(result.ToUTF8(), "");
  }
}

}  // namespace
}  // namespace talp
