// FileLines streams a data file in pieces; its lines must be exactly the
// lines of the whole normalised text, wherever the pieces are cut.
#include "sources/file/file_lines.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "sources/file/file_data.h"
#include "temp_folder.h"
#include "test_host.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

using test::Spit;
using test::TempFolder;

std::vector<std::string> StreamedLines(const PMString& path) {
  FileLines lines(path);
  std::vector<std::string> all;
  std::u16string_view line;
  while (lines.Next(line)) all.push_back(WideString::FromUTF16(line).ToUTF8());
  return all;
}

// The lines of GetFileData's text, as CountUnicodeLines counts them.
std::vector<std::string> WholeLines(const PMString& path) {
  WideString data;
  GetFileData(path, data);
  std::vector<WideString> lines;
  CreateLineArray(data, lines);
  std::vector<std::string> all;
  for (WideString& line : lines) {
    std::string text = line.ToUTF8();
    if (!text.empty() && text.back() == '\t') text.pop_back();  // the TAB that ends lines there
    all.push_back(text);
  }
  return all;
}

struct LinesCase {
  const char* name;
  std::string bytes;
  std::vector<std::string> lines;
  friend void PrintTo(const LinesCase& c, std::ostream* os) { *os << c.name; }
};

class FileLinesTest : public testing::TestWithParam<LinesCase> {};

TEST_P(FileLinesTest, GivesTheLinesOfTheWholeText) {
  test::TestHost host;
  TempFolder folder;
  Spit(folder / "f", GetParam().bytes);
  EXPECT_EQ(StreamedLines(folder.Path("f")), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(
    Files, FileLinesTest,
    testing::Values(LinesCase{"FinalCR", "h\tk\r1\t2\r", {"h\tk", "1\t2"}},
                    LinesCase{"NoFinalCR", "h\tk\r1\t2", {"h\tk", "1\t2"}},
                    LinesCase{"EmptyLinesBetween", "h\r\r\rx\r", {"h", "", "", "x"}},
                    LinesCase{"OneCharacterWithoutCR", "\xEF\xBB\xBF" "a", {}},
                    LinesCase{"TwoCharactersWithoutCR", "\xEF\xBB\xBF" "ab", {"ab"}},
                    LinesCase{"CommaQuotedLineBreak", "a,b\n1,\"x\ny\"\n", {"a\tb", "1\tx<br>y"}},
                    LinesCase{"Utf16DropsLineFeeds", std::string("\xFF\xFE" "a\0\r\0\n\0b\0", 10), {"a", "b"}},
                    LinesCase{"Xml", "<?xml version=\"1.0\"?>\n<ROW>\n<a>1</a>\n</ROW>\n<ROW>\n<a>2</a>\n</ROW>\n",
                              {"a", "1", "2"}},
                    LinesCase{"TooShort", "ab", {}}),
    [](const testing::TestParamInfo<LinesCase>& p) { return std::string(p.param.name); });

TEST(FileLinesTest, MissingFileHasNoLines) {
  TempFolder folder;
  EXPECT_TRUE(StreamedLines(folder.Path("missing")).empty());
}

// Texts of several mebibytes, so that pieces are cut inside characters,
// between CR and LF, and inside quoted fields.
TEST(FileLinesTest, PiecesCutAnywhereGiveTheSameLines) {
  const std::string unit = "Caf\xC3\xA9 \xF0\x9F\x98\x80 \"q\"\r\n";
  std::string tab = "\xEF\xBB\xBF" "name\tnote\n", comma = "\xEF\xBB\xBF" "name,note\n", utf16 = "\xFF\xFE";
  for (int i = 0; tab.size() < (std::size_t{3} << 20); ++i) {
    tab += std::to_string(i) + "\t" + unit;
    comma += std::to_string(i) + ",\"a, " + unit + "b\"\r\n";
  }
  const WideString wide(tab.substr(3));
  utf16 += wide.ToUTF16LE();
  TempFolder folder;
  for (const auto& [name, bytes] : {std::pair{"tab", tab}, std::pair{"comma", comma}, std::pair{"utf16", utf16}}) {
    Spit(folder / name, bytes);
    const std::vector<std::string> whole = WholeLines(folder.Path(name));
    EXPECT_GT(whole.size(), 60000u) << name;
    EXPECT_EQ(StreamedLines(folder.Path(name)), whole) << name;
  }
}

TEST(FileLinesTest, HasNextLooksAheadWithoutConsuming) {
  TempFolder folder;
  Spit(folder / "f", "h\r1\r2");
  FileLines lines(folder.Path("f"));
  std::u16string_view line;
  ASSERT_TRUE(lines.Next(line));
  EXPECT_TRUE(lines.HasNext());
  ASSERT_TRUE(lines.Next(line));
  EXPECT_TRUE(lines.HasNext());
  ASSERT_TRUE(lines.Next(line));
  EXPECT_EQ(WideString::FromUTF16(line).ToUTF8(), "2");
  EXPECT_FALSE(lines.HasNext());
  EXPECT_FALSE(lines.Next(line));
}

}  // namespace
}  // namespace talp
