#include <gtest/gtest.h>

#include "loopback_server.h"
#include "mysql_fixture.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlUpdate : public test::MySqlTest {};

// The rows after each update, in turn; a rejected statement shows the server's message.
TEST_F(SqlUpdate, WritesTheQuotedValueAtTheUnquotedKey) {
  Exec("CREATE TABLE t (id INT PRIMARY KEY, code VARCHAR(10), v TEXT);"
       "INSERT INTO t VALUES (42, 'a', 'old'), (43, 'b', 'old')");
  const test::RefusingPort refused;
  const struct { const char *value, *keyField, *keyValue, *rows, *alert = nullptr; int port = 0; } cases[] = {
      {"new", "id", "42", "42\tnew|43\told"},
      {"", "id", "43", "42\tnew|43\t"},
      {"x", "code", "'b'", "42\tnew|43\tx"},  // a text key brings its own quotes
      {"y", "id", "99", "42\tnew|43\tx"},     // no record: nothing happens, nothing is said
      {"it's", "id", "42", "42\tnew|43\tx", "syntax"},
      {"z", "code", "b", "42\tnew|43\tx", "'b'"},  // an unquoted text key is a column name here
      {"z", "id", "42", "42\tnew|43\tx", nullptr, refused.Port()},  // a refused connection is silent
  };
  for (const auto& c : cases) {
    alerts.alerts.clear();
    EXPECT_EQ(updateBaseFieldWithInfoSQL(c.value, "v", c.keyValue, host, c.port ? c.port : port, user, password,
                                         database, "t", c.keyField),
              0);
    const auto rows = Rows("SELECT id, v FROM t ORDER BY id");
    EXPECT_EQ(rows.at(0) + "|" + rows.at(1), c.rows) << c.value;
    ASSERT_EQ(alerts.alerts.size(), c.alert ? 1U : 0U) << c.value;
    if (c.alert) {
      EXPECT_NE(alerts.alerts[0].find(c.alert), std::string::npos) << alerts.alerts[0];
    }
  }
}

}  // namespace
}  // namespace talp
