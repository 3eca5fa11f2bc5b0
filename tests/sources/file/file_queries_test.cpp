// Record queries of the "File" source on real files.
#include <gtest/gtest.h>

#include <string>

#include "sources/file/file_base.h"
#include "talp/talp_remote.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using test::Slurp;
using test::Spit;

class FileQueriesTest : public testing::Test {
 protected:
  void SetUp() override { Spit(folder / "c.txt", "id\tname\tqty\n7\tnut\t5\n8\tBolt\t2\n9\tsmith nut\t1\n"); }
  test::TestHost host;
  test::TempFolder folder;
};

// The record list of the remote shows the key and sort columns of the same records.
TEST_F(FileQueriesTest, RecordLoopAppendsTheSelectedRecordsAfterTheHeader) {
  const struct { const char* name; std::string condition, want, list; } cases[] = {
      {"Everything", "", "7\tnut\t5\r8\tBolt\t2\r9\tsmith nut\t1\r", "nut\t5\rBolt\t2\rsmith nut\t1\r"},
      // The clause is tested against the first column, whatever field it names.
      {"WhereTestsTheFirstColumn", "where name = '8'", "8\tBolt\t2\r", "Bolt\t2\r"},
      // No record is one empty line, which still gives an entry in the list.
      {"NothingSelected", "zzz", "", "\t\r"},
  };
  TALPRemote remote;
  const PMString descriptor(";;;;;;name;;;File;;" + (folder / "c.txt").string() + ";;;;;;;;;qty");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString result("before\r"), list("old");
    EXPECT_EQ(fetchRecordLoopFile(folder.Path("c.txt"), PMString(c.condition), result), 0);
    EXPECT_EQ(result.ToUTF8(), "before\r" + c.want);
    EXPECT_EQ(remote.GetRecordList(descriptor, list, PMString(c.condition), 0), 0);
    EXPECT_EQ(list.ToUTF8(), c.list);
  }
}

// The scan starts at the header and never reaches the last record.
TEST_F(FileQueriesTest, SpecificRecordScansFromTheHeaderAndNeverReachesTheLastRecord) {
  const struct { const char *name, *key, *keyValue, *styling, *start, *want; } cases[] = {
      {"Found", "id", "8", "", "", "8\rBolt\r2"},
      {"KeyEqualToColumnNameGivesHeader", "id", "id", "", "", "id\rname\rqty"},
      {"LastRecordIsNeverFound", "id", "9", "", "old\tvalue", "old\rvalue"},
      {"KeyIsCaseSensitive", "name", "bolt", "", "", ""},
      // An unknown key field selects the last column.
      {"UnknownKeyFieldUsesLastColumn", "colour", "2", "", "", "8\rBolt\r2"},
      {"StylingTableCleansTheRecord", "id", "7", "nut\tNUT\r5\tfive", "", "7\rNUT\rfive"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    WideString result(c.start);
    EXPECT_EQ(fetchSpecificRecordFile(folder.Path("c.txt"), c.key, c.keyValue, c.styling, result), 0);
    EXPECT_EQ(result.ToUTF8(), c.want);
  }
}

}  // namespace
}  // namespace talp
