// The "File" source on real files: reading, the record queries and the
// record filter that selects their records, and field updates (the records
// written, the encodings kept, files that cannot be read, updates at once).
//
// GetFileData reads a data file of any form into TABs and CRs; FileLines
// streams it in pieces, and its lines must be the records of that whole
// text that CountUnicodeLines counts, wherever the pieces are cut.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "sources/file/file_lines.h"
#include "sources/file/record_filter.h"
#include "talp/talp_remote.h"
#include "temp_folder.h"
#include "test_host.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

using host::AnsiText;
using test::Slurp;
using test::Spit;
using namespace std::string_literals;

// Characters of two, three and four bytes in UTF-8; Windows-1252 has the first.
#define SMILE "\xF0\x9F\x98\x80"
#define VALUE "\xC3\x84\xE6\xBC\xA2\xF0\x9F\x98\x80"

class FileSourceTest : public testing::Test {
 protected:
  void SetUp() override { Spit(folder / "c.txt", kData); }
  static constexpr char kData[] = "id\tname\tqty\n7\tnut\t5\n8\tBolt\t2\n9\tsmith nut\t1\n";
  test::TestHost host;
  test::TempFolder folder;
};

// Asks HasNext after every line: it must foretell Next without taking a line.
std::vector<std::string> StreamedLines(const PMString& path) {
  FileLines lines(path);
  std::vector<std::string> all;
  std::u16string_view line;
  for (bool more = lines.Next(line); more;) {
    all.push_back(WideString::FromUTF16(line).ToUTF8());
    more = lines.HasNext();
    EXPECT_EQ(lines.Next(line), more) << "after line " << all.size();
  }
  return all;
}

// The reference rule: the first CountUnicodeLines records of the text, by CR.
std::vector<std::string> Records(const WideString& text) {
  std::vector<std::string> records;
  for (long n = 1; n <= CountUnicodeLines(text); ++n) {
    records.push_back(WideString::FromUTF16(FieldOf(text.Units(), U'\r', n)).ToUTF8());
  }
  return records;
}

// Each file is read from disk, and from memory in pieces of a few bytes. The
// delimiter is the strictly most frequent of TAB, comma and semicolon on the
// first line as read; on a tie the file is TAB text. The
// column list is the header, by CR.
TEST_F(FileSourceTest, LinesAreTheRecordsOfTheFileDataWherePiecesAreCut) {
  const struct {
    const char* name;
    std::string bytes, data;
    host::AnsiText ansi = host::AnsiText::kWindows1252;
  } cases[] = {
      {"FinalCRAndEmptyLines", "h\tk\r\r\r1\t2\r", "h\tk\r\r\r1\t2\r"},
      {"NoFinalCR", "h\tk\r1\t2", "h\tk\r1\t2"},
      // A text of one character has no counted line but is its own header.
      {"OneCharacterWithoutCR", "\xEF\xBB\xBF" "a", "a"},
      {"CommaQuoted", "id,\"name, EUR\"\r\n1,\"x\r\ny, \"\"q\"\"\"\r\n2,\"\"\n",
       "id\tname, EUR\r1\tx<br>y, \"q\"\r2\t\r"},
      {"SemicolonMostFrequent", "\xEF\xBB\xBFid;name;a,b\n1;Bolt;x\n", "id\tname\ta,b\r1\tBolt\tx\r"},
      {"TieReadsAsOneColumn", "a,b;c\n1,2;3\n", "a,b;c\r1,2;3\r"},
      {"Utf16DropsLineFeeds", std::string("\xFF\xFE" "a\0\r\0\n\0\x3D\xD8\x00\xDE", 12), "a\r\xF0\x9F\x98\x80"},
      {"Xml", "<?xml version=\"1.0\"?>\n<ROW>\n<id>1</id>\n<name>A &amp;quot; B~br~C</name>\n</ROW>\n<ROW>\n"
              "<id>2</id>\n<name>x</name>\n</ROW>\n",
       "id\tname\r1\tA &quot; B<br>C\r2\tx"},
      // Without a mark, by the "ANSI" setting: Windows-1252, or UTF-8 where the whole file is valid UTF-8.
      {"Windows1252", "Caf\xE9\n", "Caf\xC3\xA9\r"},
      {"Utf8ReadAsWindows1252", "Caf\xC3\xA9\n", "Caf\xC3\x83\xC2\xA9\r"},
      {"AsciiWhereUTF8IsValid", "a\tb\n", "a\tb\r", host::AnsiText::kUTF8WhereValid},
      // Read once to see that it is all UTF-8, then again (or opened anew where it cannot go back).
      {"Utf8WithoutMark", "Caf\xC3\xA9\n\v\xF0\x9F\x98\x80\r\n", "Caf\xC3\xA9\r<br>\xF0\x9F\x98\x80\r",
       host::AnsiText::kUTF8WhereValid},
      {"Windows1252WhereUTF8IsValid", "Caf\xE9\r\xC3\xA9", "Caf\xC3\xA9\r\xC3\x83\xC2\xA9",
       host::AnsiText::kUTF8WhereValid},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host.ansi = c.ansi;
    Spit(folder / c.name, c.bytes);
    WideString data, columns("old");
    GetFileData(folder.Path(c.name), data);
    EXPECT_EQ(data.ToUTF8(), c.data);
    EXPECT_EQ(StreamedLines(folder.Path(c.name)), Records(data));
    std::string header = c.data.substr(0, c.data.find('\r'));
    std::replace(header.begin(), header.end(), '\t', '\r');
    EXPECT_EQ(fetchColumnListFile(folder.Path(c.name), columns), 0);
    EXPECT_EQ(columns.ToUTF8(), header);
    EXPECT_EQ(Slurp(folder / c.name), c.bytes);  // reading never changes a file
    for (const std::size_t chunk : {3, 4, 5}) {
      test::MemoryFileHost memory(c.bytes, chunk);  // in place of host while it lives
      memory.ansi = c.ansi;
      EXPECT_EQ(StreamedLines("any"), Records(data)) << "in pieces of " << chunk;
    }
  }
  // A missing file has no lines and no columns, and leaves the data alone.
  WideString data("kept"), columns("old");
  GetFileData(folder.Path("missing"), data);
  EXPECT_EQ(fetchColumnListFile(folder.Path("missing"), columns), 0);
  EXPECT_EQ(data.ToUTF8() + "|" + columns.ToUTF8(), "kept|");
  EXPECT_TRUE(StreamedLines(folder.Path("missing")).empty());
}

// The record list of the remote shows the key and sort columns of the same records.
TEST_F(FileSourceTest, RecordLoopAppendsTheSelectedRecordsAfterTheHeader) {
  const struct { const char* name; std::string condition, want, list; } cases[] = {
      {"Everything", "", "7\tnut\t5\r8\tBolt\t2\r9\tsmith nut\t1\r", "nut\t5\rBolt\t2\rsmith nut\t1\r"},
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
TEST_F(FileSourceTest, SpecificRecordScansFromTheHeaderAndNeverReachesTheLastRecord) {
  const struct { const char *name, *key, *keyValue, *styling, *start, *want; } cases[] = {
      {"Found", "id", "8", "", "", "8\rBolt\r2"},
      {"KeyEqualToColumnNameGivesHeader", "id", "id", "", "", "id\rname\rqty"},
      {"LastRecordIsNeverFound", "id", "9", "", "old\tvalue", "old\rvalue"},
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

TEST_F(FileSourceTest, GroupLoopFoldsRunsIntoTaggedLines) {
  const char* xxy = "id\tg\r1\tX\r2\tX\r3\tY\r";
  const char* styling =
      "<?xml version=\"1.0\"?><Process><OutputField>big</OutputField><ProcessType>Calc</ProcessType>"
      "<ProcessInfo>[id]*10</ProcessInfo></Process>";
  const struct { const char *name, *file, *query, *group, *contents, *styling, *before, *expected; } cases[] = {
      // Lines that ended with a CR keep a TAB after their last field.
      {"XXY", xxy, "", "g", "#[id]", "", "",
       "1\tX\t<pstyle:LineDark>#1<br><pstyle:LineLight>#2\t2\r3\tY\t<pstyle:LineDark>#3\t1"},
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

// The header is TAB-separated unless a case gives one by CR.
TEST(SearchIncluded, Decides) {
  const struct { const char *name, *record, *condition; int included; const char* header = "name\tcity"; } cases[] = {
      {"WordInAnyColumnAnyCase", "Bo\tSMITHfield", "smith", 1},
      {"WordMissing", "Bo\tJones", "smith", 0},
      {"WordNonAscii", "\xC3\x84PFEL\tx", "\xC3\xA4pf", 1},
      {"LikePrefixAnyCase", "SMITHY\tx", "where name LIKE 'Smi%'", 1},
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
      {"LoneWhereWordIsAClause", "somewhere\tx", "where", 0},
      // A second condition is glued onto the first ("and" is not understood): the
      // field "namecity" names no column, and the last one is tested.
      {"SecondConditionIsGlued", "x\tz", "where name = 'x' and city = 'z'", 0, "name\rcity\r"},
  };
  for (const auto& c : cases) EXPECT_EQ(SearchIncludedInLine(c.record, c.condition, c.header), c.included) << c.name;
}

// Every record whose key field holds the key value is rebuilt with the
// value, escaped, in its field; the other records stay as they were.
TEST_F(FileSourceTest, RewritesEveryMatchingRecord) {
  const struct { const char *name, *before, *field, *value, *after; } cases[] = {
      {"EscapesTheValue", "k\tv\tq\r7\tn\t5", "v", "b\tM\r\nx", "k\tv\tq\r7\tb<tb>M<br><sr>x\t\r"},
      // The rebuilt record loses its last field; aimed at it, nothing is written.
      {"LastFieldIsDropped", "k\tv\tq\r7\tn\t5\r", "q", "9", "k\tv\tq\r7\tn\t\r"},
      {"EveryMatchAndNoMatchStillRewrites", "k\tv\tx\n7\ta\t.\n2\tb\t.\n7\tc\t.\n", "v", "z",
       "k\tv\tx\r7\tz\t\r2\tb\t.\r7\tz\t\r"},
      {"CommaFileStaysComma", "k,v,q\n7,n,5\n", "v", "n, M4", "k,v,q\r7,\"n, M4\",\r"},
      {"MissingFileBecomesEmptyUtf8", "", "v", "x", "\xEF\xBB\xBF"},
      {"TooShortFileBecomesEmpty", "k", "v", "x", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (*c.before) Spit(folder / c.name, c.before);
    EXPECT_EQ(updateBaseFieldWithInfoFile(c.value, c.field, "k", "7", folder.Path(c.name)), 0);
    EXPECT_EQ(Slurp(folder / c.name), c.after);
  }
}

// Generated tables of awkward pieces keep every record, column and value
// through a saved file of each form and back. Values hold no "~" (the XML
// form's marker escape) and no line break; a delimited table needs two
// columns, or its header would show no delimiter.
TEST_F(FileSourceTest, TablesRoundTripThroughEveryForm) {
  const std::string forms[] = {"<?xml version=\"1.0\"?>\n<ROW>\n<id>1</id>\n</ROW>\n", "a,b\n", "a;b\n", "a\tb\n"};
  const std::string names[] = {"a", "x y", "Price (EUR)", "\xC3\xA9"};
  const std::string pieces[] = {"",     "&",     "<",  ">",    "\"",       "'",      " ",    ",",     ";",
                                "x\"y", "<br>", "<tb>", "<sr>", "&amp;lt;", "&quot;", "</a>", "<!--", SMILE};
  std::mt19937 random(7);
  const auto pick = [&random](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random); };
  for (int round = 0; round < 200; ++round) {
    const std::string& form = forms[round % std::size(forms)];
    const bool xml = form == forms[0];
    const std::size_t columns = (xml ? 1 : 2) + pick(3);
    std::string table;
    for (std::size_t c = 0; c < columns; ++c) table.append(c ? "\t" : "").append(names[pick(std::size(names))]);
    for (std::size_t r = 1 + pick(4); r > 0; --r) {
      for (std::size_t c = 0; c < columns; ++c) {
        table += c ? '\t' : '\r';
        for (std::size_t k = pick(4); k > 0; --k) table.append(pieces[pick(std::size(pieces))]);
      }
    }
    SCOPED_TRACE(form + table);
    Spit(folder / "t", "\xEF\xBB\xBF" + form);
    SaveFileData(folder.Path("t"), WideString(table + "\r"));
    WideString data;
    GetFileData(folder.Path("t"), data);
    ASSERT_EQ(data.ToUTF8(), table + (xml ? "" : "\r"));
  }
}

// A file is written back in the encoding it was read in: UTF-16 in its byte
// order with pairs kept, and a file without a mark as the "ANSI" setting
// read it (as the lines test above reads them). The host hears once when
// Windows-1252 was used on valid UTF-8.
TEST_F(FileSourceTest, KeepsTheEncodingTheFileWasReadIn) {
  const struct { const char* name; AnsiText ansi; std::string before, after; bool remark = false; } cases[] = {
      {"UTF16LittleEndian", AnsiText::kWindows1252, "\xFF\xFEk\0\t\0v\0\t\0q\0\r\0" "7\0\t\0n\0\t\0" "5\0\r\0"s,
       "\xFF\xFEk\0\t\0v\0\t\0q\0\r\0" "7\0\t\0\xC4\0\x22\x6F\x3D\xD8\x00\xDE\t\0\r\0"s},
      {"UTF16BigEndian", AnsiText::kUTF8WhereValid, "\xFE\xFF\0k\0\t\0v\0\t\0q\0\r\0" "7\0\t\0n\0\t\0" "5\0\r"s,
       "\xFE\xFF\0k\0\t\0v\0\t\0q\0\r\0" "7\0\t\0\xC4\x6F\x22\xD8\x3D\xDE\x00\0\t\0\r"s},
      {"Windows1252", AnsiText::kWindows1252, "k\tv\tq\n7\tn\xE9\t5\n", "k\tv\tq\r7\t\xC4??\t\r"},
      {"ValidUTF8ReadAsWindows1252", AnsiText::kWindows1252, "k\tv\tq\n7\tn\xC3\xA9\t5\n", "k\tv\tq\r7\t\xC4??\t\r",
       true},
      {"ValidUTF8ReadAsUTF8", AnsiText::kUTF8WhereValid, "k\tv\tq\n7\tn\xC3\xA9\t5\n", "k\tv\tq\r7\t" VALUE "\t\r"},
      {"Windows1252WhereUTF8IsValid", AnsiText::kUTF8WhereValid, "k\tv\tq\n7\tn\xE9\t5\n", "k\tv\tq\r7\t\xC4??\t\r"},
      {"AsciiIsUTF8WhereValid", AnsiText::kUTF8WhereValid, "k\tv\tq\n7\tn\t5\n", "k\tv\tq\r7\t" VALUE "\t\r"},
      {"AsciiIsWindows1252", AnsiText::kWindows1252, "k\tv\tq\n7\tn\t5\n", "k\tv\tq\r7\t\xC4??\t\r"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host.ansi = c.ansi;
    host.remarks.clear();
    Spit(folder / c.name, c.before);
    updateBaseFieldWithInfoFile(WideString(VALUE), "v", "k", "7", folder.Path(c.name));
    EXPECT_EQ(Slurp(folder / c.name), c.after);
    EXPECT_EQ(host.remarks, std::vector<std::string>(c.remark, (folder / c.name).string()));
  }
  EXPECT_EQ(host.alerts, std::vector<std::string>{});
}

// A read that fails part way, after the file's first bytes, leaves the file
// on disk neither replaced nor emptied.
TEST_F(FileSourceTest, LeavesAFileItCouldNotReadAlone) {
  test::MemoryFileHost failing("id\tname\tqty\r7\tnut", 1 << 16, /*good=*/true, /*failsAtEnd=*/true);
  updateBaseFieldWithInfoFile(WideString("x"), "name", "id", "7", folder.Path("c.txt"));
  EXPECT_EQ(failing.alerts, std::vector<std::string>{"Could not update the file " + (folder / "c.txt").string() +
                                                     ": it could not be read."});
  EXPECT_EQ(Slurp(folder / "c.txt"), kData);
  EXPECT_EQ(folder.EntryCount(), 2u);  // with its lock file, no temporary file
}

TEST_F(FileSourceTest, GivesUpWhenAnotherUpdateHoldsTheLockTooLong) {
  host.fileLockWait = std::chrono::milliseconds(50);
  const host::FileLockAttempt elsewhere = host.LockFileForUpdate(folder.Path("c.txt"), host.fileLockWait);
  ASSERT_NE(elsewhere.lock, nullptr);
  updateBaseFieldWithInfoFile(WideString("x"), "name", "id", "7", folder.Path("c.txt"));
  EXPECT_EQ(host.alerts, std::vector<std::string>{"Could not update the file " + (folder / "c.txt").string() +
                                                  ": another update of it did not end in time."});
  EXPECT_EQ(Slurp(folder / "c.txt"), kData);
}

// Processes and threads update different records of one file at once: every
// value arrives.
TEST_F(FileSourceTest, UpdatesAtOnceNeverLoseEachOther) {
  constexpr int kProcesses = 6, kThreads = 6, kRecords = 60;
  std::string table = "id\tname\tqty\r", want = table;
  for (int id = 0; id < kRecords; ++id) {
    table += std::to_string(id) + "\tn\t1\r";
    want += std::to_string(id) + "\tv" + std::to_string(id) + "\t\r";
  }
  Spit(folder / "data.txt", table);
  // Worker w updates records w, w + workers, ...
  const auto work = [path = folder.Path("data.txt")](int worker) {
    for (int id = worker; id < kRecords; id += kProcesses + kThreads) {
      const std::string key = std::to_string(id);
      updateBaseFieldWithInfoFile(WideString("v" + key), "name", "id", PMString(key), path);
    }
  };
  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {  // before any thread exists
    const pid_t child = ::fork();
    if (child == 0) {
      work(p);
      ::_exit(0);
    }
    children.push_back(child);
  }
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) threads.emplace_back(work, kProcesses + t);
  for (std::thread& thread : threads) thread.join();
  for (const pid_t child : children) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(Slurp(folder / "data.txt"), want);
  EXPECT_EQ(host.alerts, std::vector<std::string>{});
}

}  // namespace
}  // namespace talp
