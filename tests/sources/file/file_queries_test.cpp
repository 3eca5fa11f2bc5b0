// Record queries and field updates of the "File" source on real files.
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "sources/file/file_base.h"
#include "talp/talp_remote.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using test::Slurp;
using test::Spit;
using test::TempFolder;

const std::string kCatalogue = "id\tname\tqty\n7\tnut\t5\n8\tBolt\t2\n9\tsmith nut\t1\n";

struct LoopCase {
  const char* name;
  std::string condition, expected;
  friend void PrintTo(const LoopCase& c, std::ostream* os) { *os << c.name; }
};

class RecordLoopFile : public testing::TestWithParam<LoopCase> {};

TEST_P(RecordLoopFile, SelectsRecordsAfterTheHeader) {
  TempFolder folder;
  Spit(folder / "c.txt", kCatalogue);
  WideString result("before\r");
  EXPECT_EQ(fetchRecordLoopFile(folder.Path("c.txt"), PMString(GetParam().condition), result), 0);
  EXPECT_EQ(result.ToUTF8(), "before\r" + GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Conditions, RecordLoopFile,
    testing::Values(LoopCase{"Everything", "", "7\tnut\t5\r8\tBolt\t2\r9\tsmith nut\t1\r"},
                    LoopCase{"WordAnyCase", "BOLT", "8\tBolt\t2\r"},
                    LoopCase{"WordInAnyColumn", "nut", "7\tnut\t5\r9\tsmith nut\t1\r"},
                    // The clause is tested against the first column, whatever field it names.
                    LoopCase{"WhereTestsTheFirstColumn", "where name = '8'", "8\tBolt\t2\r"},
                    LoopCase{"WhereLike", "where id LIKE '%9%'", "9\tsmith nut\t1\r"},
                    LoopCase{"NothingSelected", "zzz", ""}),
    [](const testing::TestParamInfo<LoopCase>& p) { return std::string(p.param.name); });

struct RecordCase {
  const char* name;
  std::string key, keyValue, styling, start, expected;
  friend void PrintTo(const RecordCase& c, std::ostream* os) { *os << c.name; }
};

class SpecificRecordFile : public testing::TestWithParam<RecordCase> {};

TEST_P(SpecificRecordFile, ScansFromTheHeaderAndNeverReachesTheLastRecord) {
  TempFolder folder;
  Spit(folder / "c.txt", kCatalogue);
  const RecordCase& c = GetParam();
  WideString result(c.start);
  EXPECT_EQ(fetchSpecificRecordFile(folder.Path("c.txt"), PMString(c.key), PMString(c.keyValue),
                                    WideString(c.styling), result),
            0);
  EXPECT_EQ(result.ToUTF8(), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, SpecificRecordFile,
    testing::Values(RecordCase{"Found", "id", "8", "", "", "8\rBolt\r2"},
                    RecordCase{"KeyEqualToColumnNameGivesHeader", "id", "id", "", "", "id\rname\rqty"},
                    RecordCase{"LastRecordIsNeverFound", "id", "9", "", "old\tvalue", "old\rvalue"},
                    RecordCase{"KeyIsCaseSensitive", "name", "bolt", "", "", ""},
                    // An unknown key field selects the last column.
                    RecordCase{"UnknownKeyFieldUsesLastColumn", "colour", "2", "", "", "8\rBolt\r2"},
                    RecordCase{"StylingTableCleansTheRecord", "id", "7", "nut\tNUT\r5\tfive", "", "7\rNUT\rfive"}),
    [](const testing::TestParamInfo<RecordCase>& p) { return std::string(p.param.name); });

struct UpdateCase {
  const char* name;
  std::string before, field, keyField, keyValue, value, after;
  friend void PrintTo(const UpdateCase& c, std::ostream* os) { *os << c.name; }
};

class UpdateFile : public testing::TestWithParam<UpdateCase> {};

TEST_P(UpdateFile, RewritesEveryMatchingRecord) {
  TempFolder folder;
  const UpdateCase& c = GetParam();
  if (!c.before.empty()) Spit(folder / "f", c.before);
  EXPECT_EQ(updateBaseFieldWithInfoFile(WideString(c.value), PMString(c.field), PMString(c.keyField),
                                        PMString(c.keyValue), folder.Path("f")),
            0);
  EXPECT_EQ(Slurp(folder / "f"), c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Updates, UpdateFile,
    testing::Values(
        UpdateCase{"EscapesTheValue", "id\tname\tqty\r7\tnut\t5", "name", "id", "7", "bolt\tM4",
                   "id\tname\tqty\r7\tbolt<tb>M4\t\r"},
        // The rebuilt record loses its last field; aimed at it, nothing is written.
        UpdateCase{"LastFieldIsDropped", "id\tname\tqty\r7\tnut\t5", "qty", "id", "7", "9",
                   "id\tname\tqty\r7\tnut\t\r"},
        UpdateCase{"LineBreaksBecomeMarkers", "id\tname\tqty\r7\tnut\t5\r", "name", "id", "7", "a\r\nb",
                   "id\tname\tqty\r7\ta<br><sr>b\t\r"},
        UpdateCase{"EveryMatchAndNoMatchStillRewrites", "id\tv\tx\n1\ta\t.\n2\tb\t.\n1\tc\t.\n", "v", "id", "1", "z",
                   "id\tv\tx\r1\tz\t\r2\tb\t.\r1\tz\t\r"},
        UpdateCase{"CommaFileStaysComma", "id,name,qty\n7,nut,5\n", "name", "id", "7", "nut, M4",
                   "id,name,qty\r7,\"nut, M4\",\r"},
        UpdateCase{"MissingFileBecomesEmptyUtf8", "", "name", "id", "7", "x", "\xEF\xBB\xBF"}),
    [](const testing::TestParamInfo<UpdateCase>& p) { return std::string(p.param.name); });

TEST(FileRecordList, ListsKeyAndSortColumnsOfTheSelectedRecords) {
  TempFolder folder;
  Spit(folder / "c.txt", kCatalogue);
  TALPRemote remote;
  const PMString descriptor(";;;;;;name;;;File;;" + (folder / "c.txt").string() + ";;;;;;;;;qty");
  WideString list;
  EXPECT_EQ(remote.GetRecordList(descriptor, list, PMString("nut"), 0), 0);
  EXPECT_EQ(list.ToUTF8(), "nut\t5\rsmith nut\t1\r");
  EXPECT_EQ(remote.GetRecordList(descriptor, list, PMString(), 0), 0);
  EXPECT_EQ(list.ToUTF8(), "nut\t5\rBolt\t2\rsmith nut\t1\r");
}

}  // namespace
}  // namespace talp
