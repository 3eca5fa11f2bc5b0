#include "sources/file/file_data.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "sources/file/file_base.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using test::Slurp;
using test::Spit;

#define XML_DECL "<?xml version=\"1.0\" encoding=\"UTF-8\" ?>"

class FileDataTest : public testing::Test {
 protected:
  test::TestHost host;
  test::TempFolder folder;
};

TEST_F(FileDataTest, HeaderIndexFallsBackToTheLastColumn) {
  // byLines: FindIndexInLineHeader (CR) rather than FindIndexInHeader (TAB).
  const struct { const char* name; bool byLines; const char *list, *field; long index; } cases[] = {
      {"Middle", false, "name\tprice\tstock", "price", 2},
      {"LastIsNeverCompared", false, "name\tprice\tstock", "stock", 3},
      {"UnknownGivesLast", false, "name\tprice\tstock", "colour", 3},
      {"CaseMatters", false, "name\tprice\tstock", "Name", 3},
      {"NoSeparator", false, "name", "zzz", 1},
      {"Empty", false, "", "x", 1},
      {"LineHeader", true, "a\rb\rc", "b", 2},
      {"LineHeaderUnknown", true, "a\rb\rc", "zzz", 3},
      {"LineHeaderIgnoresTabs", true, "a\tb", "b", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(c.byLines ? long{FindIndexInLineHeader(c.list, c.field)} : FindIndexInHeader(c.list, c.field), c.index);
  }
}

TEST_F(FileDataTest, SaveKeepsDelimiterFormAndEncoding) {
  const struct { const char* name; std::string before, content, after; } cases[] = {
      {"NewFileIsUtf8", "", "a\tb\r1\t2\r", "\xEF\xBB\xBF" "a\tb\r1\t2\r"},
      {"TabAnsi", "a\tb\n", "a\tb\r\xC3\xA9\t2\r", "a\tb\r\xE9\t2\r"},
      {"CommaStaysComma", "a,b\n", "a\tb\r1\tx, y\r", "a,b\r1,\"x, y\"\r"},
      {"SemicolonUtf8", "\xEF\xBB\xBF" "a;b\n", "a\tb\r1\t2\r", "\xEF\xBB\xBF" "a;b\r1;2\r"},
      {"XmlTable", XML_DECL "\n<ROW>\n<a>1</a>\n</ROW>\n", "a\tb\r1\tx & <y><br>\r",
       XML_DECL "\r<ROW>\r<a>1</a>\r<b>x &amp; &lt;y&gt;~br~</b>\r</ROW>\r"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TempFolder own;
    if (!c.before.empty()) Spit(own / "f", c.before);
    SaveFileData(own.Path("f"), WideString(c.content));
    EXPECT_EQ(Slurp(own / "f"), c.after);
    EXPECT_EQ(own.EntryCount(), 1u);
  }
}

// Generated tables of awkward pieces keep every record, column and value
// through a file of each form. Values hold no "~" (see the header of the XML
// table functions) and no line break; a delimited table needs two columns, or
// its header would show no delimiter.
TEST_F(FileDataTest, TablesRoundTripThroughEveryForm) {
  const std::string forms[] = {XML_DECL "\n<ROW>\n<id>1</id>\n</ROW>\n", "a,b\n", "a;b\n", "a\tb\n"};
  const std::string names[] = {"a", "b", "x y", "Price (EUR)", "\xC3\xA9"};
  const std::string pieces[] = {"",     "a",    "&",     "<",     ">",        "\"",     "'",     " ",     ",",
                                ";",    "\"\"", "x\"y",  "<br>",  "<tb>",     "<sr>",   "<end>", "<b",    "r>",
                                "&amp;", "&lt;", "</a>", "<ROW>", "&amp;lt;", "&quot;", "<!--",  "\xF0\x9F\x98\x80"};
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

}  // namespace
}  // namespace talp
