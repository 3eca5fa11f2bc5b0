// The record operations and the update of the "mySQL" and "ODBC" sources,
// on a table of goods in a real database.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "database_fixture.h"
#include "loopback_server.h"
#include "sources/odbc/odbc_base.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

// Every output starts as "untouched", to show what a failure leaves.
class SqlRecords : public test::SourceTest {
 protected:
  void SetUp() override {
    SourceTest::SetUp();
    if (HasFatalFailure()) return;  // no server: the failure says why
    Exec({"CREATE TABLE goods (id INT PRIMARY KEY, name TEXT, cat TEXT, note TEXT)",
          "INSERT INTO goods VALUES (1, 'Hammer', 'tools', NULL), (2, 'Drill', 'tools', 'two\r\nlines'),"
          "(3, 'Screws', 'fasteners', 'a\tb'), (4, 'Box \xF0\x9F\x93\xA6', 'fasteners', '')"});
  }
};
ON_EVERY_SOURCE(SqlRecords);

// MySQL shows NULL as "NULL"; through ODBC a NULL repeats the value read
// before it, in its row or the row before (empty before the first).
TEST_P(SqlRecords, RecordListLayout) {
  const std::string longValue = "SELECT '" + std::string(5000, 'x') + "', id FROM goods WHERE id=1";
  const std::string cut = std::string(4095, 'x') + "\t1\t\r";
  const struct { const char *sort, *shown, *search, *group, *mysql, *odbc; } cases[] = {
      {"id", "name", "", "", "Hammer\t1\t\rDrill\t2\t\rScrews\t3\t\rBox \xF0\x9F\x93\xA6\t4\t\r", nullptr},
      {"id", "note", "", "", "NULL\t1\t\rtwo\r\nlines\t2\t\ra\tb\t3\t\r\t4\t\r",
       "\t1\t\rtwo\r\nlines\t2\t\ra\tb\t3\t\r\t4\t\r"},
      {"name", "id", "", "", "4\tBox \xF0\x9F\x93\xA6\t\r2\tDrill\t\r1\tHammer\t\r3\tScrews\t\r", nullptr},
      {"cat", "cat", "", "cat", "fasteners\tfasteners\t\rtools\ttools\t\r", nullptr},
      // Through ODBC a whole statement runs as it stands; MySQL appends it and fails.
      {"id", "note", "SELECT note, id, note FROM goods WHERE id<3 ORDER BY id DESC", "", "untouched",
       "two\r\nlines\t2\ttwo\r\nlines\t\rtwo\r\nlines\t1\t1\t\r"},
      // Values are read into a buffer of 4096 bytes: longer ones are cut.
      {"id", "name", longValue.c_str(), "", "untouched", cut.c_str()},
      // A word is looked for in every column, through ODBC but the last.
      {"id", "name", "a\tb", "", "Screws\t3\t\r", ""},
      // Failures say nothing.
      {"id", "nope", "", "", "untouched", ""},
  };
  for (const auto& c : cases) {
    WideString result("untouched");
    test::Diagnostics([&] { EXPECT_EQ(List("goods", c.sort, c.shown, c.search, c.group, result), 0); });
    EXPECT_EQ(result.ToUTF8(), Pick(c.mysql, c.odbc ? c.odbc : c.mysql)) << c.shown << " " << c.search;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

// Values of a record are protected: MySQL keeps line feeds, ODBC writes "<sr>".
TEST_P(SqlRecords, SpecificRecordHasOneValuePerLineThenItsGroup) {
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>label</OutputField><ProcessType>Concatenate</ProcessType>"
      "<ProcessInfo>[name] ([cat])</ProcessInfo></Process>";
  const struct { const char *key, *value, *mysql, *odbc, *group = "", *layout = "", *styling = ""; } cases[] = {
      {"id", "2", "2\rDrill\rtools\rtwo<br>\nlines\r", "2\rDrill\rtools\rtwo<br><sr>lines\r"},
      {"name", "Box \xF0\x9F\x93\xA6", "4\rBox \xF0\x9F\x93\xA6\rfasteners\r\r", nullptr},
      {"name", "o'brien", "untouched", ""},
      {"id", "1", "1\rHammer\rtools\r\rHammer (tools)\r", "1\rHammer\rtools\rtools\rHammer (tools)\r", "", "",
       styling},
      // The other records of the group, light and dark in turn, then their count.
      {"id", "3", "3\rScrews\rfasteners\ra<tb>b\r<pstyle:LineLight>Screws/3<br><pstyle:LineDark>Box \xF0\x9F\x93\xA6"
                  "/4\r2\r", nullptr, "cat", "[name]/[id]"},
  };
  for (const auto& c : cases) {
    WideString result("untouched");
    test::Diagnostics([&] { EXPECT_EQ(Record("goods", c.key, c.value, c.group, c.layout, c.styling, result), 0); });
    EXPECT_EQ(result.ToUTF8(), Pick(c.mysql, c.odbc ? c.odbc : c.mysql)) << c.key << "=" << c.value << " " << c.group;
  }
}

// The record loop is MySQL's: ODBC offers none.
TEST_P(SqlRecords, Loop) {
  const test::RefusingPort refused;
  const struct { const char *condition, *expected; int status = 0, port = 0; } cases[] = {
      // A TAB inside a value stays a TAB: the loop protects only line ends.
      {"", "1\tHammer\ttools\t\t\r2\tDrill\ttools\ttwo\nlines\t\r3\tScrews\tfasteners\ta\tb\t\r"
           "4\tBox \xF0\x9F\x93\xA6\tfasteners\t\t\r"},
      {"WHERE nope=1", "untouched", 1},
      {"", "", 0, refused.Port()},  // a refused connection empties the output
  };
  for (const auto& c : cases) {
    WideString result("untouched");
    if (Odbc()) {
      EXPECT_EQ(fetchRecordLoopODBC(user, password, dsn, "goods", result, c.condition), 1);
      EXPECT_EQ(result.ToUTF8(), "untouched");
      continue;
    }
    EXPECT_EQ(fetchRecordLoopSQL(host, c.port ? c.port : port, user, password, database, "goods", result, c.condition),
              c.status);
    EXPECT_EQ(result.ToUTF8(), c.expected) << c.condition;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

// Through ODBC line feeds become "<sr>", a NULL repeats the value before it,
// and a group field that names no column still groups (every record's group
// value is empty). The rules of the runs themselves (only consecutive records
// fold, an empty loop gives the count of an empty run, earlier output closes
// as a run, a styling's computed fields reach the output) are shared by every
// source: file_source_test.cpp.
TEST_P(SqlRecords, GroupLoopFoldsRunsOfEqualValues) {
  Exec({"CREATE TABLE gg (id INT PRIMARY KEY, k TEXT, v TEXT)",
        "INSERT INTO gg VALUES (1, 'A', 'one'), (2, 'A', 'two\tt'), (3, 'B', 'three\r\n'), (4, 'A', NULL)"});
  const struct { const char *condition, *group, *layout, *mysql, *odbc, *before = ""; } cases[] = {
      // A, A, B: two lines, the first with two records and the count 2. The
      // line layout is filled with decoded values.
      {"WHERE id<4", "k", "[v]",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2\r"
       "3\tB\tthree<br>\n\t<pstyle:LineDark>three\r\n\t1",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2\r"
       "3\tB\tthree<br><sr>\t<pstyle:LineDark>three\r\n\t1"},
      {"WHERE id<3", "nope", "[v]", "1\tA\tone\t\r2\tA\ttwo<tb>t\t\r",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2"},
      {"WHERE id<3", "None", "[v]", "1\tA\tone\t\r2\tA\ttwo<tb>t\t\r", nullptr},
      // A whole statement is used as it stands.
      {"SELECT * FROM gg WHERE k='A' ORDER BY id DESC", "k", "[id]",
       "4\tA\t\t<pstyle:LineDark>4<br><pstyle:LineLight>2<br><pstyle:LineDark>1\t3",
       "4\tA\tA\t<pstyle:LineDark>4<br><pstyle:LineLight>2<br><pstyle:LineDark>1\t3"},
      // A statement the database rejects: MySQL says 1, ODBC reads nothing.
      {"WHERE nope=1", "k", "", "untouched", "untouched\t1", "untouched"},
  };
  for (const auto& c : cases) {
    WideString result(c.before);
    int status = 0;
    test::Diagnostics([&] { status = Group("gg", result, c.condition, c.group, c.layout, ""); });
    EXPECT_EQ(result.ToUTF8(), Pick(c.mysql, c.odbc ? c.odbc : c.mysql)) << c.condition;
    EXPECT_EQ(status, result.ToUTF8() == "untouched" ? 1 : 0) << c.condition;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

// The rows after each update, in turn. A rejected statement shows the
// server's message through MySQL and nothing through ODBC.
TEST_P(SqlRecords, UpdateWritesTheQuotedValueAtTheUnquotedKey) {
  const struct { const char *value, *keyField, *keyValue, *rows, *alert = nullptr; } cases[] = {
      {"new", "id", "1", "1\tnew|2\tDrill"},
      // Characters beyond the Basic Multilingual Plane go out whole (and come
      // back whole: the record list above).
      {"\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E", "id", "2", "1\tnew|2\t\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E"},
      {"x", "cat", "'tools'", "1\tx|2\tx"},  // a text key brings its own quotes
      // The value is not escaped.
      {"it's", "id", "1", "1\tx|2\tx", "syntax"},
  };
  for (const auto& c : cases) {
    alerts.alerts.clear();
    EXPECT_EQ(Update(c.value, "name", c.keyValue, "goods", c.keyField), 0);
    const auto rows = Rows("SELECT id, name FROM goods WHERE id<3 ORDER BY id");
    EXPECT_EQ(rows.at(0) + "|" + rows.at(1), c.rows) << c.value;
    ASSERT_EQ(alerts.alerts.size(), c.alert && !Odbc() ? 1U : 0U) << c.value;
    if (c.alert && !Odbc()) {
      EXPECT_NE(alerts.alerts[0].find(c.alert), std::string::npos) << alerts.alerts[0];
    }
  }
}

// The operations of a source share their handles: concurrent callers wait
// for each other instead of corrupting one another's results.
TEST_P(SqlRecords, ConcurrentOperationsDoNotCorruptEachOther) {
  const std::string expected = "Hammer\t1\t\rDrill\t2\t\rScrews\t3\t\rBox \xF0\x9F\x93\xA6\t4\t\r";
  std::atomic<int> failures = 0;
  auto reader = [&] {
    for (int round = 0; round < 15; ++round) {
      WideString result;
      failures += List("goods", "id", "name", "", "", result) != 0 || result.ToUTF8() != expected;
    }
  };
  auto writer = [&] {
    for (int round = 0; round < 15; ++round) failures += Update("old", "note", "1", "goods", "id") != 0;
  };
  std::thread threads[] = {std::thread(reader), std::thread(reader), std::thread(writer)};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
