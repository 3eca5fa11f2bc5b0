#include <gtest/gtest.h>

#include "loopback_server.h"
#include "mysql_fixture.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlRecords : public test::MySqlTest {
 protected:
  void SetUp() override {
    MySqlTest::SetUp();
    if (HasFatalFailure()) return;  // no server: the failure says why
    Exec(
        "CREATE TABLE goods (id INT PRIMARY KEY, name TEXT, cat TEXT, note TEXT);"
        "INSERT INTO goods VALUES (1, 'Hammer', 'tools', NULL), (2, 'Drill', 'tools', 'two\\r\\nlines'),"
        "(3, 'Screws', 'fasteners', 'a\\tb'), (4, 'Box \xF0\x9F\x93\xA6', 'fasteners', '')");
  }
  std::string List(const std::string& sort, const std::string& shown, const std::string& search,
                   const std::string& group = "") {
    WideString result("untouched");
    EXPECT_EQ(fetchRecordListSQL(host, port, user, password, database, "goods", PMString(sort), PMString(shown),
                                 PMString(search), PMString(group), result),
              0);
    return result.ToUTF8();
  }
  std::string Loop(const std::string& condition, int expectedStatus = 0) {
    WideString result("untouched");
    EXPECT_EQ(fetchRecordLoopSQL(host, port, user, password, database, "goods", result, PMString(condition)),
              expectedStatus);
    return result.ToUTF8();
  }
  std::string Record(const std::string& keyField, const std::string& keyValue, const std::string& groupField = "",
                     const std::string& layout = "", const std::string& styling = "") {
    WideString result("untouched");
    EXPECT_EQ(fetchSpecificRecordSQL(host, port, user, password, database, "goods", PMString(keyField),
                                     PMString(keyValue), PMString(groupField), PMString(layout),
                                     WideString(styling), result),
              0);
    return result.ToUTF8();
  }
};

TEST_F(SqlRecords, RecordListLayout) {
  const struct {
    const char *sort, *shown, *search, *group, *expected;
  } cases[] = {
      {"id", "name", "", "", "Hammer\t1\t\rDrill\t2\t\rScrews\t3\t\rBox \xF0\x9F\x93\xA6\t4\t\r"},
      {"id", "note", "", "", "NULL\t1\t\rtwo\r\nlines\t2\t\ra\tb\t3\t\r\t4\t\r"},
      {"id", "name", "ill", "", "Drill\t2\t\r"},
      {"id", "name", "WHERE cat='tools'", "", "Hammer\t1\t\rDrill\t2\t\r"},
      {"name", "id", "", "", "4\tBox \xF0\x9F\x93\xA6\t\r2\tDrill\t\r1\tHammer\t\r3\tScrews\t\r"},
      {"cat", "cat", "", "cat", "fasteners\tfasteners\t\rtools\ttools\t\r"},
      {"id", "name", "", "None", "Hammer\t1\t\rDrill\t2\t\rScrews\t3\t\rBox \xF0\x9F\x93\xA6\t4\t\r"},
  };
  for (const auto& c : cases) EXPECT_EQ(List(c.sort, c.shown, c.search, c.group), c.expected) << c.search;
}

TEST_F(SqlRecords, RecordListStopsAt200Rows) {
  Exec("CREATE TABLE many (id INT PRIMARY KEY, v TEXT); INSERT INTO many SELECT seq, 'x' FROM seq_1_to_500");
  WideString result;
  fetchRecordListSQL(host, port, user, password, database, "many", "id", "v", "", "", result);
  const std::string text = result.ToUTF8();
  EXPECT_EQ(std::count(text.begin(), text.end(), '\r'), 200);
  EXPECT_TRUE(text.ends_with("x\t200\t\r"));
}

TEST_F(SqlRecords, RecordListFailuresLeaveTheOutputAlone) {
  EXPECT_EQ(List("id", "nope", ""), "untouched");
  EXPECT_EQ(List("id", "name", "o'brien"), "untouched");  // the unescaped quote breaks the statement
  EXPECT_TRUE(alerts.alerts.empty());
}

TEST_F(SqlRecords, LoopLayout) {
  const struct {
    const char *condition, *expected;
  } cases[] = {
      {"WHERE id<3", "1\tHammer\ttools\t\t\r2\tDrill\ttools\ttwo\nlines\t\r"},
      // A TAB inside a value stays a TAB: the loop protects only line ends.
      {"WHERE id=3", "3\tScrews\tfasteners\ta\tb\t\r"},
      {"WHERE id=4", "4\tBox \xF0\x9F\x93\xA6\tfasteners\t\t\r"},
      {"WHERE id=99", ""},
      {"", "1\tHammer\ttools\t\t\r2\tDrill\ttools\ttwo\nlines\t\r3\tScrews\tfasteners\ta\tb\t\r"
           "4\tBox \xF0\x9F\x93\xA6\tfasteners\t\t\r"},
  };
  for (const auto& c : cases) EXPECT_EQ(Loop(c.condition), c.expected) << c.condition;
}

TEST_F(SqlRecords, LoopFailures) {
  EXPECT_EQ(Loop("WHERE nope=1", 1), "untouched");
  WideString result("untouched");
  EXPECT_EQ(fetchRecordLoopSQL(host, test::RefusingPort().Port(), user, password, database, "goods", result, ""), 0);
  EXPECT_EQ(result.ToUTF8(), "");  // a refused connection empties the output
  EXPECT_TRUE(alerts.alerts.empty());
}

TEST_F(SqlRecords, SpecificRecordHasOneValuePerLine) {
  EXPECT_EQ(Record("id", "2"), "2\rDrill\rtools\rtwo<br>\nlines\r");
  EXPECT_EQ(Record("id", "3"), "3\rScrews\rfasteners\ra<tb>b\r");
  EXPECT_EQ(Record("id", "1"), "1\rHammer\rtools\r\r");  // NULL: nothing, but its CR
  EXPECT_EQ(Record("name", "Box \xF0\x9F\x93\xA6"), "4\rBox \xF0\x9F\x93\xA6\rfasteners\r\r");
  EXPECT_EQ(Record("id", "99"), "");
  EXPECT_EQ(Record("name", "o'brien"), "untouched");
  EXPECT_EQ(Record("id", "1", "None"), "1\rHammer\rtools\r\r");
}

TEST_F(SqlRecords, SpecificRecordComputesStyledFields) {
  const std::string styling =
      "<?xml version=\"1.0\"?><Process><OutputField>label</OutputField><ProcessType>Concatenate</ProcessType>"
      "<ProcessInfo>[name] ([cat])</ProcessInfo></Process>";
  EXPECT_EQ(Record("id", "1", "", "", styling), "1\rHammer\rtools\r\rHammer (tools)\r");
}

TEST_F(SqlRecords, SpecificRecordAppendsItsGroup) {
  // The other records of the group, light and dark in turn, then their count.
  EXPECT_EQ(Record("id", "3", "cat", "[name]/[id]"),
            "3\rScrews\rfasteners\ra<tb>b\r"
            "<pstyle:LineLight>Screws/3<br><pstyle:LineDark>Box \xF0\x9F\x93\xA6/4\r2\r");
  // Without a line layout each row shows its fields.
  EXPECT_EQ(Record("id", "1", "cat"),
            "1\rHammer\rtools\r\r<pstyle:LineLight>1\tHammer\ttools\t\t<br><pstyle:LineDark>"
            "2\tDrill\ttools\ttwo<br>\nlines\t\r2\r");
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
