#include <gtest/gtest.h>

#include "database_fixture.h"

namespace talp {
namespace {

class SqlGroupLoop : public test::SourceTest {};
ON_EVERY_SOURCE(SqlGroupLoop);

// Through ODBC line feeds become "<sr>", a NULL repeats the value before it,
// the last column is not searched, and a group field that names no column
// still groups (every record's group value is empty). The rules of the runs
// themselves (only consecutive records fold, an empty loop gives the count
// of an empty run) are shared by every source: file_group_loop_test.cpp.
TEST_P(SqlGroupLoop, FoldsRunsOfEqualValues) {
  Exec({"CREATE TABLE gg (id INT PRIMARY KEY, k TEXT, v TEXT)",
        "INSERT INTO gg VALUES (1, 'A', 'one'), (2, 'A', 'two\tt'), (3, 'B', 'three\r\n'), (4, 'A', NULL)"});
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>twice</OutputField><ProcessType>Calc</ProcessType>"
      "<ProcessInfo>[id]*2</ProcessInfo></Process>";
  const struct { const char *condition, *group, *layout, *mysql, *odbc, *styling = "", *before = ""; } cases[] = {
      // A, A, B: two lines, the first with two records and the count 2. The
      // line layout is filled with decoded values.
      {"WHERE id<4", "k", "[v]",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2\r3\tB\tthree<br>\n\t<pstyle:LineDark>three\r\n\t1",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2\r3\tB\tthree<br><sr>\t<pstyle:LineDark>three\r\n\t1"},
      {"WHERE id<3", "nope", "[v]", "1\tA\tone\t\r2\tA\ttwo<tb>t\t\r",
       "1\tA\tone\t<pstyle:LineDark>one<br><pstyle:LineLight>two\tt\t2"},
      {"WHERE id<3", "None", "[v]", "1\tA\tone\t\r2\tA\ttwo<tb>t\t\r", nullptr},
      // Plain words are looked for in the columns.
      {"thr", "k", "[id]", "3\tB\tthree<br>\n\t<pstyle:LineDark>3\t1", "\t1"},
      {"B", "k", "[id]", "3\tB\tthree<br>\n\t<pstyle:LineDark>3\t1", "3\tB\tthree<br><sr>\t<pstyle:LineDark>3\t1"},
      // A whole statement is used as it stands.
      {"SELECT * FROM gg WHERE k='A' ORDER BY id DESC", "k", "[id]",
       "4\tA\t\t<pstyle:LineDark>4<br><pstyle:LineLight>2<br><pstyle:LineDark>1\t3",
       "4\tA\tA\t<pstyle:LineDark>4<br><pstyle:LineLight>2<br><pstyle:LineDark>1\t3"},
      // What the output held is closed as a run first.
      {"WHERE id=1", "k", "[id]", "before\t1\r1\tA\tone\t<pstyle:LineDark>1\t1", nullptr, "", "before"},
      // The styling computes fields the group can use.
      {"WHERE id<3", "k", "[twice]", "1\tA\tone\t2\t<pstyle:LineDark>2<br><pstyle:LineLight>4\t2", nullptr, styling},
      // A statement the database rejects: MySQL says 1, ODBC reads nothing.
      {"WHERE nope=1", "k", "", "untouched", "untouched\t1", "", "untouched"},
  };
  for (const auto& c : cases) {
    WideString result(c.before);
    int status = 0;
    test::Diagnostics([&] { status = Group("gg", result, c.condition, c.group, c.layout, c.styling); });
    EXPECT_EQ(result.ToUTF8(), Pick(c.mysql, c.odbc ? c.odbc : c.mysql)) << c.condition;
    EXPECT_EQ(status, result.ToUTF8() == "untouched" ? 1 : 0) << c.condition;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
