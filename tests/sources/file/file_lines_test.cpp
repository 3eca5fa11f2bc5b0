// GetFileData reads a data file of any form into TABs and CRs; FileLines
// streams it in pieces, and its lines must be the records of that whole
// text that CountUnicodeLines counts, wherever the pieces are cut.
#include "sources/file/file_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "sources/file/file_base.h"
#include "temp_folder.h"
#include "test_host.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

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
// first line as read, quotes counted too; on a tie the file is TAB text. The
// column list is the header, by CR.
TEST(FileLinesTest, GiveTheRecordsOfTheFileDataWherePiecesAreCut) {
  const struct {
    const char* name;
    std::string bytes, data;
    host::AnsiText ansi = host::AnsiText::kWindows1252;
  } cases[] = {
      {"FinalCR", "h\tk\r1\t2\r", "h\tk\r1\t2\r"},
      {"NoFinalCR", "h\tk\r1\t2", "h\tk\r1\t2"},
      {"EmptyLinesBetween", "h\r\r\rx\r", "h\r\r\rx\r"},
      // A text of one character has no counted line but is its own header.
      {"OneCharacterWithoutCR", "\xEF\xBB\xBF" "a", "a"},
      {"Utf8", "\xEF\xBB\xBF" "Caf\xC3\xA9\r\n\xF0\x9F\x98\x80\r\n", "Caf\xC3\xA9\r\xF0\x9F\x98\x80\r"},
      {"CommaQuoted", "id,\"name, EUR\"\r\n1,\"x\r\ny, \"\"q\"\"\"\r\n2,\"\"\n",
       "id\tname, EUR\r1\tx<br>y, \"q\"\r2\t\r"},
      {"SemicolonMostFrequent", "\xEF\xBB\xBFid;name;a,b\n1;Bolt;x\n", "id\tname\ta,b\r1\tBolt\tx\r"},
      {"TieReadsAsOneColumn", "a,b;c\n1,2;3\n", "a,b;c\r1,2;3\r"},
      {"QuotesAreNotLookedAt", "\"a,b\";c\n1;2\n", "\"a,b\";c\r1;2\r"},
      {"Utf16DropsLineFeeds", std::string("\xFF\xFE" "a\0\r\0\n\0\x3D\xD8\x00\xDE", 12), "a\r\xF0\x9F\x98\x80"},
      {"Xml", "<?xml version=\"1.0\"?>\n<ROW>\n<id>1</id>\n<name>A &amp;quot; B~br~C</name>\n</ROW>\n<ROW>\n"
              "<id>2</id>\n<name>x</name>\n</ROW>\n",
       "id\tname\r1\tA &quot; B<br>C\r2\tx"},
      {"TooShort", "ab", ""},
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
  const test::TempFolder folder;
  test::TestHost host;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host.ansi = c.ansi;
    test::Spit(folder / c.name, c.bytes);
    WideString data, columns("old");
    GetFileData(folder.Path(c.name), data);
    EXPECT_EQ(data.ToUTF8(), c.data);
    EXPECT_EQ(StreamedLines(folder.Path(c.name)), Records(data));
    std::string header = c.data.substr(0, c.data.find('\r'));
    std::replace(header.begin(), header.end(), '\t', '\r');
    EXPECT_EQ(fetchColumnListFile(folder.Path(c.name), columns), 0);
    EXPECT_EQ(columns.ToUTF8(), header);
    EXPECT_EQ(test::Slurp(folder / c.name), c.bytes);  // reading never changes a file
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

}  // namespace
}  // namespace talp
