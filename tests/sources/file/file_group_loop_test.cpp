#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "sources/file/file_base.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using test::Spit;
using test::TempFolder;

struct GroupCase {
  const char* name;
  std::string file, query, groupField, contents, styling, before, expected;
  friend void PrintTo(const GroupCase& c, std::ostream* os) { *os << c.name; }
};

class GroupLoopFile : public testing::TestWithParam<GroupCase> {};

TEST_P(GroupLoopFile, FoldsRunsIntoTaggedLines) {
  TempFolder folder;
  const GroupCase& c = GetParam();
  Spit(folder / "f", c.file);
  WideString result(c.before);
  EXPECT_EQ(fetchRecordGroupLoopFile(folder.Path("f"), PMString(c.query), result, PMString(c.groupField),
                                     PMString(c.contents), WideString(c.styling)),
            0);
  EXPECT_EQ(result.ToUTF8(), c.expected);
}

const std::string kXXY = "id\tg\r1\tX\r2\tX\r3\tY\r";
const std::string kStyling =
    "<?xml version=\"1.0\"?><Process><OutputField>big</OutputField><ProcessType>Calc</ProcessType>"
    "<ProcessInfo>[id]*10</ProcessInfo></Process>";

INSTANTIATE_TEST_SUITE_P(
    Runs, GroupLoopFile,
    testing::Values(
        // Lines that ended with a CR keep a TAB after their last field.
        GroupCase{"XXY", kXXY, "", "g", "#[id]", "", "",
                  "1\tX\t<pstyle:LineDark>#1<br><pstyle:LineLight>#2\t2\r3\tY\t<pstyle:LineDark>#3\t1"},
        GroupCase{"NoGrouping", kXXY, "", "None", "#[id]", "", "", "1\tX\t\r2\tX\t\r3\tY\t\r"},
        GroupCase{"EmptyGroupField", kXXY, "", "", "#", "", "", "1\tX\t\r2\tX\t\r3\tY\t\r"},
        GroupCase{"NothingSelected", kXXY, "zzz", "g", "#", "", "", "\t1"},
        GroupCase{"EarlierTextClosesARunFirst", kXXY, "Y", "g", "#", "", "old", "old\t1\r3\tY\t<pstyle:LineDark>#\t1"},
        GroupCase{"OnlyConsecutiveRecordsFold", "id\tg\rA1\tA\rA2\tA\rB1\tB\rA3\tA", "", "g", "", "", "",
                  "A1\tA\t<pstyle:LineDark><br><pstyle:LineLight>\t2\rB1\tB\t<pstyle:LineDark>\t1\r"
                  "A3\tA<pstyle:LineLight>\t1"},
        // With a CR-separated header the clause finds its field by name.
        GroupCase{"WhereFindsTheFieldByName", "id\tg\tz\r1\tX\tq\r3\tY\tq\r", "where g = 'y'", "None", "", "", "",
                  "3\tY\tq\t\r"},
        // Computed fields are read by TAB like the others and reach the output.
        GroupCase{"ComputedFieldsReachTheOutput", kXXY, "", "g", "[g]", kStyling, "",
                  "1\tX\t10\t<pstyle:LineDark>X<br><pstyle:LineLight>X\t2\r3\tY\t30\t<pstyle:LineDark>Y\t1"}),
    [](const testing::TestParamInfo<GroupCase>& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace talp
