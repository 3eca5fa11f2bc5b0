#include "text/word_styling.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "host/script_runner.h"
#include "temp_folder.h"
#include "test_host.h"
#include "text/restyle_pipeline.h"

namespace talp {
namespace {

using Children = std::vector<std::pair<std::string, std::string>>;

std::string Document(const std::vector<Children>& processes) {
  std::string doc = "<?xml version=\"1.0\"?><Styling>";
  for (const Children& process : processes) {
    doc += "<Process>";
    for (const auto& [name, value] : process) doc += "<" + name + ">" + value + "</" + name + ">";
    doc += "</Process>";
  }
  return doc + "</Styling>";
}

std::string Styled(const std::string& styling, const std::string& header, const std::string& record) {
  WideString text(record);
  HandleWordStyling(WideString(styling), WideString(header), text);
  return text.ToUTF8();
}

// A process computing the field "out".
Children Type(const std::string& type, const std::string& info, Children more = {}) {
  more.insert(more.begin(), {{"OutputField", "out"}, {"ProcessType", type}, {"ProcessInfo", info}});
  return more;
}

// Each process computes its field of the record "Nut", "0.25", "a<br>b<tb>c" (stored with entities). In the
// loop's form the record is the same text with TABs for its CRs, and its fields are split at the CRs alone.
TEST(WordStyling, ProcessTypesComputeTheirField) {
  test::TestHost host;
  const struct { const char* name; Children children; std::string value; } cases[] = {
      // Strictly left to right; a leading "-" is an operator.
      {"CalcLeftToRight", Type("Calc", "2+3*4"), "20"}, {"CalcLeadingMinus", Type("Calc", "-5+2"), "-3"},
      {"CalcFraction", Type("Calc", "7/2"), "3.5"}, {"CalcDivisionByZero", Type("Calc", "1/0"), "inf"},
      // At most 15 significant digits: the binary noise of sums and products never shows.
      {"CalcPriceTimesStock", Type("Calc", "345.16*2507"), "865316.12"}, {"CalcSum", Type("Calc", "0.1+0.2"), "0.3"},
      {"Exif", Type("Exif", "<EXIF>'[name]'=='Nut','yes','no'</EXIF>"), "yes"},
      {"ExifTooShort", Type("Exif", "<EXIF></EXIF"), ""},
      {"Left", Type("Left", "abcdef", {{"StringLength", "3"}}), "abc"},
      // No range is clipped: a part that would leave the text is empty.
      {"LeftHuge", Type("Left", "abc", {{"StringLength", "99999999999999"}}), ""},
      {"Right", Type("Right", "abcdef", {{"StringLength", "2"}}), "ef"},
      // The end position is a count.
      {"Mid", Type("Mid", "abcdefg", {{"StringStartPosition", "2"}, {"StringEndPosition", "3"}}), "cde"},
      {"CharCount", Type("CharCount", "h\xC3\xA9llo"), "5"},
      // GetAbsoluteField writes a CR of the document as "<br>" and a TAB as "<tb>", which count; the entities
      // of a marker do not.
      {"LineCount", Type("LineCount", "a\rb\rc"), "2"}, {"LineCountOfEntities", Type("LineCount", "a&lt;br&gt;b"), "0"},
      {"TabCount", Type("TabCount", "a\tb"), "1"},
      {"Replace", Type("Replace", "a-b-c", {{"StringSearch", "-"}, {"StringReplace", "+"}}), "a+b+c"},
      // The item before the first separator is never taken, and the last
      // item is joined without its separator.
      {"SplitFirstPart", Type("Split", "a,b,c,d", {{"StringSplitter", ","}, {"StringItemNumber", "2"}}), "b,c"},
      {"SplitSecondPart",
       Type("Split", "a,b,c,d,e", {{"StringSplitter", ","}, {"StringItemNumber", "1"}, {"StringPart", "x"}}), "c,de"},
      {"Item", Type("Item", "a,b,c", {{"StringSplitter", ","}, {"StringItemNumber", "1"}}), "b"},
      {"CountItems", Type("CountItems", "a,b,c", {{"StringSplitter", ","}}), "2"},
      {"ScriptThatCannotBeRead", Type("Script", "keep", {{"ScriptFile", "/no/such.js"}}), "keep"},
      {"Concatenate", Type("Concatenate", "[name] at [price] [nope][note]"), "Nut at 0.25 a\rb\tc"},
      {"UnknownType", Type("Sum", "1+1"), ""},
  };
  const std::string header = "name\rprice\rnote", record = "Nut\t0.25\ta&lt;br&gt;b&lt;tb&gt;c\t";
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::string document = "Nut\r0.25\ra&lt;br&gt;b&lt;tb&gt;c\r" + c.value + "\r";
    EXPECT_EQ(Styled(Document({c.children}), header, record), document);
    WordStyling styling(WideString(Document({c.children})));
    std::u16string loop(WideString(record).Units()), joined;
    const std::vector<std::u16string_view> fields = styling.RestyleInLoop(WideString(header), loop);
    for (std::size_t i = 0; i < fields.size(); ++i) joined.append(i ? u"\r" : u"").append(fields[i]);
    EXPECT_EQ(WideString(joined).ToUTF8(), document);
    std::replace(document.begin(), document.end(), '\r', '\t');
    EXPECT_EQ(WideString(loop).ToUTF8(), document);
  }
}

// Each styling text restyles its record and appends the names of its computed fields to a header.
TEST(WordStyling, WholeDocuments) {
  const struct { const char* name; std::string styling, header, record, want, names; } cases[] = {
      // Records of the loops end with a TAB, which becomes the CR before the
      // first computed value; a record without it gets its last field extended.
      {"ValuesFollowTheRecordWithoutASeparatorOfTheirOwn",
       Document({{{"OutputField", "total"}, {"ProcessType", "Calc"}, {"ProcessInfo", "1+1"}},
                 {{"OutputField", "label"}, {"ProcessType", "Concatenate"}, {"ProcessInfo", "x"}}}),
       "n", "a\tb", "a\rb2\rx\r", "total\rlabel\r"},
      // Pairs apply in order, each to the output of the ones before; a line without TAB deletes its text.
      {"TableIsAFindReplaceCleaningAndKeepsTabs", "nut\tbolt\rbolt\tscrew\r-\r", "name\rsize", "nut\tM-4", "screw\tM4",
       ""},
      {"WithoutProcessesOnlyTabsTurnIntoCRs", "<?xml version=\"1.0\"?><Styling/>", "a\rb", "1\t2", "1\r2", ""},
      // An unclosed element runs to the end of the document.
      {"UnclosedElement", "<?xml?><Process><OutputField>a</OutputField><ProcessType>Calc", "n", "x\t", "x\r0\r",
       "a\r"},
      {"NoOutputFieldAndNegativeLength",
       "<?xml?><Process><ProcessType>Left</ProcessType><StringLength>-99</StringLength></Process>", "n", "x\t",
       "x\r\r", "\r"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Styled(c.styling, c.header, c.record), c.want);
    WideString columns(c.header + "\r");
    AppendHeaderFromWordStyling(WideString(c.styling), columns);
    EXPECT_EQ(columns.ToUTF8(), c.header + "\r" + c.names);
  }
}

// The information goes to the script in "scriptArguments", the only argument
// of its run, and comes back from there; a relative "ScriptFile" is found
// from the current directory. The runs of an operation share the script's
// engine and see the records in order, on one thread; a failing script
// leaves the information as it is, with one alert.
TEST(WordStyling, ScriptProcessRunsTheScriptOnTheInformation) {
  test::TestHost host;
  test::TempFolder folder;
  test::Spit(folder / "up.js",
             "var n = typeof n === 'number' ? n + 1 : 1; var a = scriptArgs;"
             "a.set('scriptArguments', a.get('scriptArguments').toUpperCase() + n + a.isDefined('seen'));"
             "a.set('seen', 1)");
  test::Spit(folder / "bad.js", "throw 1;");
  const std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(folder / "");
  std::vector<std::string> records;
  {
    const host::ScriptScope operation;
    RestylePipeline pipeline(WideString(Document({Type("Script", "[name]", {{"ScriptFile", "up.js"}}),
                                                  Type("Script", "[name]", {{"ScriptFile", "bad.js"}})})),
                             4, 2);
    int left = 3;
    pipeline.Run(
        WideString("name"), [&](std::u16string& record) { return left-- > 0 && (record = u"nut\t", true); },
        [&](const RestylePipeline::Record& record) { records.push_back(WideString(record.text).ToUTF8()); });
  }
  std::filesystem::current_path(cwd);
  EXPECT_EQ(records,
            (std::vector<std::string>{"nut\tNUT1false\tnut\t", "nut\tNUT2false\tnut\t", "nut\tNUT3false\tnut\t"}));
  EXPECT_EQ(host.alerts, std::vector<std::string>{"The script bad.js failed: 1"});
}

}  // namespace
}  // namespace talp
