// Record queries of the "File" source on real files, and the record filter
// that selects their records.
#include <gtest/gtest.h>

#include <string>

#include "sources/file/file_base.h"
#include "sources/file/record_filter.h"
#include "talp/talp_remote.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

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

TEST_F(FileQueriesTest, GroupLoopFoldsRunsIntoTaggedLines) {
  const char* xxy = "id\tg\r1\tX\r2\tX\r3\tY\r";
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>big</OutputField><ProcessType>Calc</ProcessType>"
      "<ProcessInfo>[id]*10</ProcessInfo></Process>";
  const struct { const char *name, *file, *query, *group, *contents, *styling, *before, *expected; } cases[] = {
      // Lines that ended with a CR keep a TAB after their last field.
      {"XXY", xxy, "", "g", "#[id]", "", "",
       "1\tX\t<pstyle:LineDark>#1<br><pstyle:LineLight>#2\t2\r3\tY\t<pstyle:LineDark>#3\t1"},
      {"NoGrouping", xxy, "", "None", "#[id]", "", "", "1\tX\t\r2\tX\t\r3\tY\t\r"},
      {"NothingSelected", xxy, "zzz", "g", "#", "", "", "\t1"},
      {"EarlierTextClosesARunFirst", xxy, "Y", "g", "#", "", "old", "old\t1\r3\tY\t<pstyle:LineDark>#\t1"},
      {"OnlyConsecutiveRecordsFold", "id\tg\rA1\tA\rA2\tA\rB1\tB\rA3\tA", "", "g", "", "", "",
       "A1\tA\t<pstyle:LineDark><br><pstyle:LineLight>\t2\rB1\tB\t<pstyle:LineDark>\t1\rA3\tA<pstyle:LineLight>\t1"},
      // With a CR-separated header the clause finds its field by name.
      {"WhereFindsTheFieldByName", "id\tg\tz\r1\tX\tq\r3\tY\tq\r", "where g = 'y'", "None", "", "", "", "3\tY\tq\t\r"},
      // Computed fields are read by TAB like the others and reach the output.
      {"ComputedFieldsReachTheOutput", xxy, "", "g", "[g]", styling, "",
       "1\tX\t10\t<pstyle:LineDark>X<br><pstyle:LineLight>X\t2\r3\tY\t30\t<pstyle:LineDark>Y\t1"},
      // A pair from a record counts as one character.
      {"PairInARecord", "\xEF\xBB\xBFid\tg\r1\t\U0001F600\r", "", "g", "", "", "",
       "1\t\U0001F600\t<pstyle:LineDark>\t1"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Spit(folder / c.name, c.file);
    WideString result(c.before);
    EXPECT_EQ(fetchRecordGroupLoopFile(folder.Path(c.name), c.query, result, c.group, c.contents, c.styling), 0);
    EXPECT_EQ(result.ToUTF8(), c.expected);
    EXPECT_EQ(result.CharCount(), WideString(c.expected).CharCount());
  }
}

// The parts are shown as operator|field|value.
TEST(WhereParser, ReadsTheParts) {
  const struct { const char* name; std::string condition, parts; } cases[] = {
      {"Like", "where name LIKE 'Smi%'", "LIKE|name|Smi%"},
      // Spaces before the value's quote belong to the value, and end it at that quote.
      {"SpacesBeforeTheQuote", "where   name   =   'x'", "=|name|  "},
      // A second condition is glued onto the parts of the first.
      {"SecondConditionGlued", "where a LIKE 'x' and b = 'y'", "LIKE=|ab|x"},
      {"UnquotedValueRunsToTheEnd", "where a = x", "=|a|x"},
      // Without a closing quote the value is read again from its second character.
      {"UnclosedValueIsReadAgain", "where a = 'x y", "=|ay|x y"},
      {"TooShort", "wher", "||"},
  };
  for (const auto& c : cases) {
    WideString op, field, value;
    FindFieldAndValueFromWhere(op, field, value, WideString(c.condition));
    EXPECT_EQ(op.ToUTF8() + "|" + field.ToUTF8() + "|" + value.ToUTF8(), c.parts) << c.name;
  }
}

// The header is TAB-separated unless a case gives one by CR.
TEST(SearchIncluded, Decides) {
  const struct { const char *name, *record, *condition; int included; const char* header = "name\tcity"; } cases[] = {
      {"EmptyConditionIncludesAll", "x\ty", "", 1},
      {"WordInAnyColumnAnyCase", "Bo\tSMITHfield", "smith", 1},
      {"WordMissing", "Bo\tJones", "smith", 0},
      {"WordNonAscii", "\xC3\x84PFEL\tx", "\xC3\xA4pf", 1},
      {"LikePrefixAnyCase", "SMITHY\tx", "where name LIKE 'Smi%'", 1},
      {"LikePrefixMisses", "Jones\tx", "where name LIKE 'Smi%'", 0},
      // The record is lower-cased and the value is not: "=" only matches lower-case values.
      {"EqualsWithCapitalNeverMatches", "Smith\tx", "where name = 'Smith'", 0},
      {"EqualsLowerCaseMatches", "Smith\tx", "where name = 'smith'", 1},
      // A TAB-separated header has no CR: the first column is tested whatever the field.
      {"TabHeaderAlwaysFirstColumn", "paris\tlondon", "where city = 'paris'", 1},
      {"CRHeaderFindsTheColumn", "paris\tlondon", "where city = 'london'", 1, "name\rcity\r"},
      // The field name is not lower-cased, the header is: no match falls back to the last column.
      {"CapitalFieldFallsBackToLastColumn", "paris\tlondon", "where Name = 'london'", 1, "name\rcity"},
      {"DoublePercentIncludesAll", "anything\tx", "where name = '%%zz'", 1},
      {"Contains", "blacksmith\tx", "where name LIKE '%SMIT%'", 1},
      // The ends-with test is narrow: a short field never passes it, but the
      // later equality test still takes a field that is exactly the value.
      {"EndsWithShortFieldMisses", "xabc\tx", "where name LIKE '%abc'", 0},
      {"EndsWithExactField", "abc\tx", "where name LIKE '%abc'", 1},
      {"EndsWithLongField", "0123456789abc\tx", "where name LIKE '%abc'", 1},
      {"LoneWhereWordIsAClause", "somewhere\tx", "where", 0},
  };
  for (const auto& c : cases) EXPECT_EQ(SearchIncludedInLine(c.record, c.condition, c.header), c.included) << c.name;
}

}  // namespace
}  // namespace talp
