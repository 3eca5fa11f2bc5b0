#include <gtest/gtest.h>

#include "sources/file/file_base.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

TEST(GroupLoopFile, FoldsRunsIntoTaggedLines) {
  const char* xxy = "id\tg\r1\tX\r2\tX\r3\tY\r";
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>big</OutputField><ProcessType>Calc</ProcessType>"
      "<ProcessInfo>[id]*10</ProcessInfo></Process>";
  const struct { const char *name, *file, *query, *group, *contents, *styling, *before, *expected; } cases[] = {
      // Lines that ended with a CR keep a TAB after their last field.
      {"XXY", xxy, "", "g", "#[id]", "", "",
       "1\tX\t<pstyle:LineDark>#1<br><pstyle:LineLight>#2\t2\r3\tY\t<pstyle:LineDark>#3\t1"},
      {"NoGrouping", xxy, "", "None", "#[id]", "", "", "1\tX\t\r2\tX\t\r3\tY\t\r"},
      {"EmptyGroupField", xxy, "", "", "#", "", "", "1\tX\t\r2\tX\t\r3\tY\t\r"},
      {"NothingSelected", xxy, "zzz", "g", "#", "", "", "\t1"},
      {"EarlierTextClosesARunFirst", xxy, "Y", "g", "#", "", "old", "old\t1\r3\tY\t<pstyle:LineDark>#\t1"},
      {"OnlyConsecutiveRecordsFold", "id\tg\rA1\tA\rA2\tA\rB1\tB\rA3\tA", "", "g", "", "", "",
       "A1\tA\t<pstyle:LineDark><br><pstyle:LineLight>\t2\rB1\tB\t<pstyle:LineDark>\t1\rA3\tA<pstyle:LineLight>\t1"},
      // With a CR-separated header the clause finds its field by name.
      {"WhereFindsTheFieldByName", "id\tg\tz\r1\tX\tq\r3\tY\tq\r", "where g = 'y'", "None", "", "", "", "3\tY\tq\t\r"},
      // Computed fields are read by TAB like the others and reach the output.
      {"ComputedFieldsReachTheOutput", xxy, "", "g", "[g]", styling, "",
       "1\tX\t10\t<pstyle:LineDark>X<br><pstyle:LineLight>X\t2\r3\tY\t30\t<pstyle:LineDark>Y\t1"},
      // A pair from a record, an entry or the earlier text counts as one character.
      {"PairInARecord", "\xEF\xBB\xBFid\tg\r1\t\U0001F600\r", "", "g", "", "", "", "1\t\U0001F600\t<pstyle:LineDark>\t1"},
      {"PairInTheEntries", xxy, "", "g", "\U0001F600", "", "",
       "1\tX\t<pstyle:LineDark>\U0001F600<br><pstyle:LineLight>\U0001F600\t2\r3\tY\t<pstyle:LineDark>\U0001F600\t1"},
      {"PairInTheEarlierText", xxy, "zzz", "g", "", "", "\U0001F600", "\U0001F600\t1"},
  };
  const test::TempFolder folder;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::Spit(folder / c.name, c.file);
    WideString result(c.before);
    EXPECT_EQ(fetchRecordGroupLoopFile(folder.Path(c.name), c.query, result, c.group, c.contents, c.styling), 0);
    EXPECT_EQ(result.ToUTF8(), c.expected);
    EXPECT_EQ(result.CharCount(), WideString(c.expected).CharCount());
  }
}

}  // namespace
}  // namespace talp
