#include "sources/file/file_data.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "sources/file/file_base.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using test::Slurp;
using test::Spit;
using test::TempFolder;

struct DelimiterCase {
  const char* name;
  std::string line, expected;
  friend void PrintTo(const DelimiterCase& c, std::ostream* os) { *os << c.name; }
};

class MergeDelimiter : public testing::TestWithParam<DelimiterCase> {};

TEST_P(MergeDelimiter, PicksTheStrictlyMostFrequent) {
  PMString delimiter("\t");
  GetMergeDelimiter(WideString(GetParam().line), delimiter);
  EXPECT_EQ(delimiter.GrabCString(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MergeDelimiter,
    testing::Values(DelimiterCase{"Tabs", "a\tb\tc", "\t"}, DelimiterCase{"Commas", "a,b,c;d", ","},
                    DelimiterCase{"Semicolons", "a;b;c,d", ";"},
                    // A tie keeps the default, so such a file is read as one column per line.
                    DelimiterCase{"CommaSemicolonTie", "a,b;c", "\t"}, DelimiterCase{"Nothing", "abc", "\t"},
                    DelimiterCase{"QuotesAreNotLookedAt", "\"a,b\";c", "\t"}),
    [](const testing::TestParamInfo<DelimiterCase>& p) { return std::string(p.param.name); });

struct IndexCase {
  const char* name;
  bool byLines;  // FindIndexInLineHeader (CR) rather than FindIndexInHeader (TAB)
  std::string list, field;
  int index;
  friend void PrintTo(const IndexCase& c, std::ostream* os) { *os << c.name; }
};

class HeaderIndex : public testing::TestWithParam<IndexCase> {};

TEST_P(HeaderIndex, FallsBackToTheLastColumn) {
  const IndexCase& c = GetParam();
  const WideString list(c.list);
  const long index = c.byLines ? static_cast<long>(FindIndexInLineHeader(list, PMString(c.field)))
                               : FindIndexInHeader(list, PMString(c.field));
  EXPECT_EQ(index, c.index);
}

INSTANTIATE_TEST_SUITE_P(
    Names, HeaderIndex,
    testing::Values(IndexCase{"First", false, "name\tprice\tstock", "name", 1},
                    IndexCase{"Middle", false, "name\tprice\tstock", "price", 2},
                    IndexCase{"LastIsNeverCompared", false, "name\tprice\tstock", "stock", 3},
                    IndexCase{"UnknownGivesLast", false, "name\tprice\tstock", "colour", 3},
                    IndexCase{"CaseMatters", false, "name\tprice\tstock", "Name", 3},
                    IndexCase{"NoSeparator", false, "name", "zzz", 1}, IndexCase{"Empty", false, "", "x", 1},
                    IndexCase{"LineHeader", true, "a\rb\rc", "b", 2},
                    IndexCase{"LineHeaderUnknown", true, "a\rb\rc", "zzz", 3},
                    IndexCase{"LineHeaderIgnoresTabs", true, "a\tb", "b", 1}),
    [](const testing::TestParamInfo<IndexCase>& p) { return std::string(p.param.name); });

struct ReadCase {
  const char* name;
  std::string bytes, data;
  friend void PrintTo(const ReadCase& c, std::ostream* os) { *os << c.name; }
};

class FileData : public testing::TestWithParam<ReadCase> {};

TEST_P(FileData, ReadsEveryFormIntoTabsAndCRs) {
  TempFolder folder;
  Spit(folder / "data", GetParam().bytes);
  WideString data;
  GetFileData(folder.Path("data"), data);
  EXPECT_EQ(data.ToUTF8(), GetParam().data);
  EXPECT_EQ(Slurp(folder / "data"), GetParam().bytes);  // reading never changes a file
}

INSTANTIATE_TEST_SUITE_P(
    Files, FileData,
    testing::Values(
        ReadCase{"TabUsedAsRead", "id\tname\n1\ta,b;c\n", "id\tname\r1\ta,b;c\r"},
        ReadCase{"CommaQuoted", "id,name\r\n1,\"Nut, M4\"\r\n2,\"say \"\"hi\"\"\"\r\n",
                 "id\tname\r1\tNut, M4\r2\tsay \"hi\"\r"},
        ReadCase{"Semicolon", "\xEF\xBB\xBFid;name\n1;Bolt\n", "id\tname\r1\tBolt\r"},
        ReadCase{"QuotedLineBreakStaysInTheRecord", "id,note\n1,\"two\nlines\"\n", "id\tnote\r1\ttwo<br>lines\r"},
        ReadCase{"TieReadsAsOneColumn", "a,b;c\n1,2;3\n", "a,b;c\r1,2;3\r"},
        ReadCase{"XmlTable",
                 "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<ROW>\n<id>1</id>\n<name>A &amp;quot; B~br~C</name>\n"
                 "</ROW>\n",
                 "id\tname\r1\tA &quot; B<br>C"}),
    [](const testing::TestParamInfo<ReadCase>& p) { return std::string(p.param.name); });

TEST(FileData, MissingFileLeavesDataAndGivesEmptyColumns) {
  TempFolder folder;
  WideString data("kept");
  GetFileData(folder.Path("missing"), data);
  EXPECT_EQ(data.ToUTF8(), "kept");
  WideString columns("old");
  EXPECT_EQ(fetchColumnListFile(folder.Path("missing"), columns), 0);
  EXPECT_EQ(columns.ToUTF8(), "");
}

TEST(FileData, ColumnListIsTheHeaderByCR) {
  TempFolder folder;
  Spit(folder / "c.csv", "sku,name,\"price, EUR\"\n1,a,2\n");
  WideString columns;
  EXPECT_EQ(fetchColumnListFile(folder.Path("c.csv"), columns), 0);
  EXPECT_EQ(columns.ToUTF8(), "sku\rname\rprice, EUR");
}

struct SaveCase {
  const char* name;
  std::string before, content, after;
  friend void PrintTo(const SaveCase& c, std::ostream* os) { *os << c.name; }
};

class SaveData : public testing::TestWithParam<SaveCase> {};

TEST_P(SaveData, KeepsDelimiterFormAndEncoding) {
  TempFolder folder;
  if (!GetParam().before.empty()) Spit(folder / "f", GetParam().before);
  SaveFileData(folder.Path("f"), WideString(GetParam().content));
  EXPECT_EQ(Slurp(folder / "f"), GetParam().after);
  EXPECT_EQ(folder.EntryCount(), 1u);
}

INSTANTIATE_TEST_SUITE_P(
    Files, SaveData,
    testing::Values(
        SaveCase{"NewFileIsUtf8", "", "a\tb\r1\t2\r", "\xEF\xBB\xBF" "a\tb\r1\t2\r"},
        SaveCase{"TabAnsi", "a\tb\n", "a\tb\r\xC3\xA9\t2\r", "a\tb\r\xE9\t2\r"},
        SaveCase{"CommaStaysComma", "a,b\n", "a\tb\r1\tx, y\r", "a,b\r1,\"x, y\"\r"},
        SaveCase{"SemicolonUtf8", "\xEF\xBB\xBF" "a;b\n", "a\tb\r1\t2\r", "\xEF\xBB\xBF" "a;b\r1;2\r"},
        SaveCase{"XmlTable", "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<ROW>\n<a>1</a>\n</ROW>\n",
                 "a\tb\r1\tx & <y><br>\r",
                 "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\r<ROW>\r<a>1</a>\r<b>x &amp; &lt;y&gt;~br~</b>\r"
                 "</ROW>\r"}),
    [](const testing::TestParamInfo<SaveCase>& p) { return std::string(p.param.name); });

TEST(SaveData, XmlTableRoundTripKeepsEveryValue) {
  TempFolder folder;
  Spit(folder / "t.xml", "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>\n<ROW>\n<id>1</id>\n</ROW>\n");
  const WideString table("id\tnote\tq\r1\tA & B <c> \"d\" 'e'\t<br><tb><sr><end>\r2\t\tlast\r");
  SaveFileData(folder.Path("t.xml"), table);
  WideString data;
  GetFileData(folder.Path("t.xml"), data);
  EXPECT_EQ(data.ToUTF8() + "\r", table.ToUTF8());
}

}  // namespace
}  // namespace talp
