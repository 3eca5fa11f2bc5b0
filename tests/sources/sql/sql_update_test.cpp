#include <gtest/gtest.h>

#include "loopback_server.h"
#include "mysql_fixture.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlUpdate : public test::MySqlTest {
 protected:
  void SetUp() override {
    MySqlTest::SetUp();
    if (HasFatalFailure()) return;  // no server: the failure says why
    Exec("CREATE TABLE t (id INT PRIMARY KEY, code VARCHAR(10), v TEXT);"
         "INSERT INTO t VALUES (42, 'a', 'old'), (43, 'b', 'old')");
  }
  int Update(const std::string& value, const std::string& keyField, const std::string& keyValue) {
    return updateBaseFieldWithInfoSQL(WideString(value), "v", PMString(keyValue), host, port, user, password,
                                      database, "t", PMString(keyField));
  }
};

TEST_F(SqlUpdate, WritesTheQuotedValueAtTheUnquotedKey) {
  const struct {
    const char *value, *keyField, *keyValue, *expected;
  } cases[] = {
      {"new", "id", "42", "42\tnew|43\told"},
      {"", "id", "43", "42\tnew|43\t"},
      {"x", "code", "'b'", "42\tnew|43\tx"},  // a text key brings its own quotes
      {"y", "id", "99", "42\tnew|43\tx"},     // no record: nothing happens, nothing is said
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Update(c.value, c.keyField, c.keyValue), 0);
    const auto rows = Rows("SELECT id, v FROM t ORDER BY id");
    EXPECT_EQ(rows.at(0) + "|" + rows.at(1), c.expected) << c.value;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

TEST_F(SqlUpdate, ARejectedStatementShowsTheServersMessage) {
  EXPECT_EQ(Update("it's", "id", "42"), 0);
  ASSERT_EQ(alerts.alerts.size(), 1U);
  EXPECT_NE(alerts.alerts[0].find("syntax"), std::string::npos) << alerts.alerts[0];
  EXPECT_EQ(Update("z", "code", "b"), 0);  // an unquoted text key is a column name here
  EXPECT_EQ(alerts.alerts.size(), 2U);
  EXPECT_EQ(Rows("SELECT v FROM t ORDER BY id"), (std::vector<std::string>{"old", "old"}));
}

TEST_F(SqlUpdate, ARefusedConnectionIsSilent) {
  EXPECT_EQ(updateBaseFieldWithInfoSQL("v", "v", "42", host, test::RefusingPort().Port(), user, password, database, "t", "id"), 0);
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
