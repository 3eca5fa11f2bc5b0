// FileLines streams a data file in pieces; its lines must be the records of
// the whole normalised text, wherever the pieces are cut.
#include "sources/file/file_lines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "temp_folder.h"
#include "test_host.h"

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

// Each file is read from disk and from memory in pieces of a few bytes.
TEST(FileLinesTest, GivesTheRecordsWhereverPiecesAreCut) {
  const struct {
    const char* name;
    std::string bytes;
    std::vector<std::string> lines;
    host::AnsiText ansi = host::AnsiText::kWindows1252;
  } cases[] = {
      {"FinalCR", "h\tk\r1\t2\r", {"h\tk", "1\t2"}},
      {"NoFinalCR", "h\tk\r1\t2", {"h\tk", "1\t2"}},
      {"EmptyLinesBetween", "h\r\r\rx\r", {"h", "", "", "x"}},
      {"OneCharacterWithoutCR", "\xEF\xBB\xBF" "a", {}},
      {"TwoCharactersWithoutCR", "\xEF\xBB\xBF" "ab", {"ab"}},
      {"Utf8", "\xEF\xBB\xBF" "Caf\xC3\xA9\r\n\xF0\x9F\x98\x80\r\n", {"Caf\xC3\xA9", "\xF0\x9F\x98\x80"}},
      {"CommaQuoted", "a,b\r\n1,\"x\r\ny, \"\"q\"\"\"\r\n2,\"\"\n", {"a\tb", "1\tx<br>y, \"q\"", "2\t"}},
      {"Utf16DropsLineFeeds", std::string("\xFF\xFE" "a\0\r\0\n\0\x3D\xD8\x00\xDE", 12), {"a", "\xF0\x9F\x98\x80"}},
      {"Xml", "<?xml version=\"1.0\"?>\n<ROW>\n<a>1</a>\n</ROW>\n<ROW>\n<a>2</a>\n</ROW>\n", {"a", "1", "2"}},
      {"TooShort", "ab", {}},
      // Read once to see that it is all UTF-8, then again (or opened anew where it cannot go back).
      {"Utf8WithoutMark", "Caf\xC3\xA9\n\v\xF0\x9F\x98\x80\r\n", {"Caf\xC3\xA9", "<br>\xF0\x9F\x98\x80"},
       host::AnsiText::kUTF8WhereValid},
      {"Windows1252WhereUTF8IsValid", "Caf\xE9\r\xC3\xA9", {"Caf\xC3\xA9", "\xC3\x83\xC2\xA9"},
       host::AnsiText::kUTF8WhereValid},
  };
  const test::TempFolder folder;
  test::TestHost host;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host.ansi = c.ansi;
    test::Spit(folder / c.name, c.bytes);
    EXPECT_EQ(StreamedLines(folder.Path(c.name)), c.lines);
    for (const std::size_t chunk : {3, 4, 5}) {
      test::MemoryFileHost memory(c.bytes, chunk);  // in place of host while it lives
      memory.ansi = c.ansi;
      EXPECT_EQ(StreamedLines("any"), c.lines) << "in pieces of " << chunk;
    }
  }
  EXPECT_TRUE(StreamedLines(folder.Path("missing")).empty());
}

}  // namespace
}  // namespace talp
