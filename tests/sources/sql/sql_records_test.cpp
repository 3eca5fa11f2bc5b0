#include <gtest/gtest.h>

#include "loopback_server.h"
#include "mysql_fixture.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

// Every output starts as "untouched", to show what a failure leaves.
class SqlRecords : public test::MySqlTest {
 protected:
  void SetUp() override {
    MySqlTest::SetUp();
    if (HasFatalFailure()) return;  // no server: the failure says why
    Exec("CREATE TABLE goods (id INT PRIMARY KEY, name TEXT, cat TEXT, note TEXT);"
         "INSERT INTO goods VALUES (1, 'Hammer', 'tools', NULL), (2, 'Drill', 'tools', 'two\\r\\nlines'),"
         "(3, 'Screws', 'fasteners', 'a\\tb'), (4, 'Box \xF0\x9F\x93\xA6', 'fasteners', '')");
  }
};

TEST_F(SqlRecords, RecordListLayout) {
  const struct { const char *sort, *shown, *search, *group, *expected; } cases[] = {
      {"id", "name", "", "", "Hammer\t1\t\rDrill\t2\t\rScrews\t3\t\rBox \xF0\x9F\x93\xA6\t4\t\r"},
      {"id", "note", "", "", "NULL\t1\t\rtwo\r\nlines\t2\t\ra\tb\t3\t\r\t4\t\r"},
      {"id", "name", "ill", "", "Drill\t2\t\r"},
      {"id", "name", "WHERE cat='tools'", "", "Hammer\t1\t\rDrill\t2\t\r"},
      {"name", "id", "", "", "4\tBox \xF0\x9F\x93\xA6\t\r2\tDrill\t\r1\tHammer\t\r3\tScrews\t\r"},
      {"cat", "cat", "", "cat", "fasteners\tfasteners\t\rtools\ttools\t\r"},
      {"id", "name", "", "None", "Hammer\t1\t\rDrill\t2\t\rScrews\t3\t\rBox \xF0\x9F\x93\xA6\t4\t\r"},
      // Failures leave the output alone and say nothing; the unescaped quote breaks the statement.
      {"id", "nope", "", "", "untouched"},
      {"id", "name", "o'brien", "", "untouched"},
  };
  for (const auto& c : cases) {
    WideString result("untouched");
    EXPECT_EQ(fetchRecordListSQL(host, port, user, password, database, "goods", c.sort, c.shown, c.search, c.group,
                                 result),
              0);
    EXPECT_EQ(result.ToUTF8(), c.expected) << c.shown << " " << c.search;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

TEST_F(SqlRecords, RecordListStopsAt200Rows) {
  Exec("CREATE TABLE many (id INT PRIMARY KEY, v TEXT); INSERT INTO many SELECT seq, 'x' FROM seq_1_to_500");
  WideString result;
  fetchRecordListSQL(host, port, user, password, database, "many", "id", "v", "", "", result);
  const std::string text = result.ToUTF8();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\r'), 200);
  EXPECT_TRUE(text.ends_with("x\t200\t\r"));
}

TEST_F(SqlRecords, LoopLayout) {
  const test::RefusingPort refused;
  const struct { const char *condition, *expected; int status = 0, port = 0; } cases[] = {
      {"WHERE id<3", "1\tHammer\ttools\t\t\r2\tDrill\ttools\ttwo\nlines\t\r"},
      // A TAB inside a value stays a TAB: the loop protects only line ends.
      {"", "1\tHammer\ttools\t\t\r2\tDrill\ttools\ttwo\nlines\t\r3\tScrews\tfasteners\ta\tb\t\r"
           "4\tBox \xF0\x9F\x93\xA6\tfasteners\t\t\r"},
      {"WHERE id=99", ""},
      {"WHERE nope=1", "untouched", 1},
      {"", "", 0, refused.Port()},  // a refused connection empties the output
  };
  for (const auto& c : cases) {
    WideString result("untouched");
    EXPECT_EQ(fetchRecordLoopSQL(host, c.port ? c.port : port, user, password, database, "goods", result, c.condition),
              c.status);
    EXPECT_EQ(result.ToUTF8(), c.expected) << c.condition;
  }
  EXPECT_TRUE(alerts.alerts.empty());
}

TEST_F(SqlRecords, SpecificRecordHasOneValuePerLineThenItsGroup) {
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>label</OutputField><ProcessType>Concatenate</ProcessType>"
      "<ProcessInfo>[name] ([cat])</ProcessInfo></Process>";
  const struct { const char *key, *value, *expected, *group = "", *layout = "", *styling = ""; } cases[] = {
      {"id", "2", "2\rDrill\rtools\rtwo<br>\nlines\r"},
      {"name", "Box \xF0\x9F\x93\xA6", "4\rBox \xF0\x9F\x93\xA6\rfasteners\r\r"},
      {"id", "99", ""},
      {"name", "o'brien", "untouched"},
      {"id", "1", "1\rHammer\rtools\r\r", "None"},  // NULL: nothing, but its CR
      {"id", "1", "1\rHammer\rtools\r\rHammer (tools)\r", "", "", styling},
      // The other records of the group, light and dark in turn, then their count.
      {"id", "3", "3\rScrews\rfasteners\ra<tb>b\r<pstyle:LineLight>Screws/3<br><pstyle:LineDark>Box \xF0\x9F\x93\xA6"
                  "/4\r2\r", "cat", "[name]/[id]"},
      // Without a line layout each row shows its fields.
      {"id", "1", "1\rHammer\rtools\r\r<pstyle:LineLight>1\tHammer\ttools\t\t<br><pstyle:LineDark>"
                  "2\tDrill\ttools\ttwo<br>\nlines\t\r2\r", "cat"},
  };
  for (const auto& c : cases) {
    WideString result("untouched");
    EXPECT_EQ(fetchSpecificRecordSQL(host, port, user, password, database, "goods", c.key, c.value, c.group, c.layout,
                                     c.styling, result),
              0);
    EXPECT_EQ(result.ToUTF8(), c.expected) << c.key << "=" << c.value << " " << c.group;
  }
}

TEST_F(SqlRecords, CharactersBeyondTheBasicPlaneSurviveBothWays) {
  Exec("CREATE TABLE emoji (id INT PRIMARY KEY, v TEXT) CHARACTER SET utf8mb4; INSERT INTO emoji VALUES (1, '')");
  const WideString value("\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E");
  EXPECT_EQ(updateBaseFieldWithInfoSQL(value, "v", "1", host, port, user, password, database, "emoji", "id"), 0);
  EXPECT_EQ(Rows("SELECT v FROM emoji"), std::vector<std::string>{"\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E"});
  WideString result;
  fetchRecordLoopSQL(host, port, user, password, database, "emoji", result, "");
  EXPECT_EQ(result.ToUTF8(), "1\t\xF0\x9F\x8E\xB8 \xF0\x9D\x84\x9E\t\r");
}

}  // namespace
}  // namespace talp
