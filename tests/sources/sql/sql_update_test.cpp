#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "database_fixture.h"

namespace talp {
namespace {

class SqlUpdate : public test::SourceTest {};
ON_EVERY_SOURCE(SqlUpdate);

// The rows after each update, in turn. A rejected statement shows the
// server's message through MySQL and nothing through ODBC.
TEST_P(SqlUpdate, WritesTheQuotedValueAtTheUnquotedKey) {
  Exec({"CREATE TABLE t (id INT PRIMARY KEY, code VARCHAR(10), v TEXT)",
        "INSERT INTO t VALUES (42, 'a', 'old'), (43, 'b', 'old')"});
  const struct { const char *value, *keyField, *keyValue, *rows, *alert = nullptr; } cases[] = {
      {"new", "id", "42", "42\tnew|43\told"},
      // Characters beyond the Basic Multilingual Plane go out whole (and come
      // back whole: the record list of sql_records_test.cpp).
      {"\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E", "id", "43", "42\tnew|43\t\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E"},
      {"x", "code", "'b'", "42\tnew|43\tx"},  // a text key brings its own quotes
      {"y", "id", "99", "42\tnew|43\tx"},     // no record: nothing happens, nothing is said
      // The value is not escaped.
      {"it's", "id", "42", "42\tnew|43\tx", "syntax"},
  };
  for (const auto& c : cases) {
    alerts.alerts.clear();
    EXPECT_EQ(Update(c.value, "v", c.keyValue, "t", c.keyField), 0);
    const auto rows = Rows("SELECT id, v FROM t ORDER BY id");
    EXPECT_EQ(rows.at(0) + "|" + rows.at(1), c.rows) << c.value;
    ASSERT_EQ(alerts.alerts.size(), c.alert && !Odbc() ? 1U : 0U) << c.value;
    if (c.alert && !Odbc()) {
      EXPECT_NE(alerts.alerts[0].find(c.alert), std::string::npos) << alerts.alerts[0];
    }
  }
}

// The operations of a source share their handles: concurrent callers wait
// for each other instead of corrupting one another's results.
TEST_P(SqlUpdate, ConcurrentOperationsDoNotCorruptEachOther) {
  std::string insert = "INSERT INTO c VALUES (1, 'row1')", expected = "row1\t1\t\r";
  for (int i = 2; i <= 50; ++i) {
    insert += ", (" + std::to_string(i) + ", 'row" + std::to_string(i) + "')";
    expected += "row" + std::to_string(i) + "\t" + std::to_string(i) + "\t\r";
  }
  Exec({"CREATE TABLE t (id INT PRIMARY KEY, v TEXT)", "INSERT INTO t VALUES (42, 'old')",
        "CREATE TABLE c (id INT PRIMARY KEY, v TEXT)", insert});
  std::atomic<int> failures = 0;
  auto reader = [&] {
    for (int round = 0; round < 15; ++round) {
      WideString result;
      failures += List("c", "id", "v", "", "", result) != 0 || result.ToUTF8() != expected;
    }
  };
  auto writer = [&] {
    for (int round = 0; round < 15; ++round) failures += Update("old", "v", "42", "t", "id") != 0;
  };
  std::thread threads[] = {std::thread(reader), std::thread(reader), std::thread(writer)};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
