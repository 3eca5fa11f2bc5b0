#include <gtest/gtest.h>

#include "loopback_server.h"
#include "mysql_fixture.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlGroupLoop : public test::MySqlTest {};

TEST_F(SqlGroupLoop, FoldsRunsOfEqualValues) {
  Exec("CREATE TABLE gg (id INT PRIMARY KEY, k TEXT, v TEXT);"
       "INSERT INTO gg VALUES (1, 'A', 'one'), (2, 'A', 'two\\tt'), (3, 'B', 'three\\r\\n'), (4, 'A', NULL)");
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>twice</OutputField><ProcessType>Calc</ProcessType>"
      "<ProcessInfo>[id]*2</ProcessInfo></Process>";
  const struct { const char *condition, *group, *layout, *expected, *styling = "", *before = ""; } cases[] = {
      // A, A, B: two lines, the first with two records and the count 2. The
      // line layout is filled with decoded values.
      {"WHERE id<4", "k", "[v]",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2\r"
       "3\tB\tthree<br>\n\t<pstyle:LineDark>three\r\n\t1"},
      // A, B, A: only consecutive records are merged.
      {"WHERE id>1", "k", "[id]",
       "2\tA\ttwo<tb>t\t<pstyle:LineDark>2\t1\r3\tB\tthree<br>\n\t<pstyle:LineLight>3\t1\r"
       "4\tA\t\t<pstyle:LineDark>4\t1"},
      // A group field that is no column: one line per record, no counts.
      {"WHERE id<3", "nope", "[v]", "1\tA\tone\t\r2\tA\ttwo<tb>t\t\r"},
      {"WHERE id<3", "None", "[v]", "1\tA\tone\t\r2\tA\ttwo<tb>t\t\r"},
      // Plain words are looked for in every column.
      {"thr", "k", "[id]", "3\tB\tthree<br>\n\t<pstyle:LineDark>3\t1"},
      // A whole statement is used as it stands.
      {"SELECT * FROM gg WHERE k='A' ORDER BY id DESC", "k", "[id]",
       "4\tA\t\t<pstyle:LineDark>4<br><pstyle:LineLight>2<br><pstyle:LineDark>1\t3"},
      // Nothing selected: the closing count of an empty run.
      {"WHERE id>9", "k", "[v]", "\t1"},
      // What the output held is closed as a run first.
      {"WHERE id=1", "k", "[id]", "before\t1\r1\tA\tone\t<pstyle:LineDark>1\t1", "", "before"},
      // The styling computes fields the group can use.
      {"WHERE id<3", "k", "[twice]", "1\tA\tone\t2\t<pstyle:LineDark>2<br><pstyle:LineLight>4\t2", styling},
  };
  for (const auto& c : cases) {
    WideString result(c.before);
    EXPECT_EQ(fetchRecordGroupLoopSQL(host, port, user, password, database, "gg", result, c.condition, c.group,
                                      c.layout, c.styling),
              0);
    EXPECT_EQ(result.ToUTF8(), c.expected) << c.condition;
  }
}

TEST_F(SqlGroupLoop, Failures) {
  WideString result("untouched");
  EXPECT_EQ(fetchRecordGroupLoopSQL(host, port, user, password, database, "missing", result, "WHERE id=1", "k", "", ""),
            1);
  const test::RefusingPort refused;
  EXPECT_EQ(fetchRecordGroupLoopSQL(host, refused.Port(), user, password, database, "gg", result, "", "k", "", ""), 0);
  EXPECT_EQ(result.ToUTF8(), "untouched");
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
