#include "text/word_styling.h"

#include <gtest/gtest.h>

#include <cctype>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "test_host.h"

namespace talp {
namespace {

using Children = std::vector<std::pair<std::string, std::string>>;

std::string Process(const Children& children) {
  std::string process = "<Process>";
  for (const auto& [name, value] : children) process += "<" + name + ">" + value + "</" + name + ">";
  return process + "</Process>";
}

std::string Document(const std::vector<Children>& processes) {
  std::string doc = "<?xml version=\"1.0\"?><Styling>";
  for (const Children& p : processes) doc += Process(p);
  return doc + "</Styling>";
}

std::string Styled(const std::string& styling, const std::string& header, const std::string& record) {
  WideString text(record);
  HandleWordStyling(WideString(styling), WideString(header), text);
  return text.ToUTF8();
}

struct ProcessCase {
  const char* name;
  Children children;
  std::string value;  // the computed field
  friend void PrintTo(const ProcessCase& c, std::ostream* os) { *os << c.name; }
};

class ProcessTypes : public testing::TestWithParam<ProcessCase> {};

TEST_P(ProcessTypes, ComputeTheirField) {
  test::TestHost host;
  Children children = {{"OutputField", "out"}};
  children.insert(children.end(), GetParam().children.begin(), GetParam().children.end());
  EXPECT_EQ(Styled(Document({children}), "name\rprice", "Nut\t0.25\t"), "Nut\r0.25\r" + GetParam().value + "\r");
}

Children Type(const std::string& type, const std::string& info, Children more = {}) {
  more.insert(more.begin(), {{"ProcessType", type}, {"ProcessInfo", info}});
  return more;
}

INSTANTIATE_TEST_SUITE_P(
    Types, ProcessTypes,
    testing::Values(
        // Strictly left to right; a leading "-" is an operator.
        ProcessCase{"CalcLeftToRight", Type("Calc", "2+3*4"), "20"},
        ProcessCase{"CalcLeadingMinus", Type("Calc", "-5+2"), "-3"},
        ProcessCase{"CalcFromField", Type("Calc", "[price]*4"), "1"},
        ProcessCase{"CalcFraction", Type("Calc", "7/2"), "3.5"},
        ProcessCase{"CalcDivisionByZero", Type("Calc", "1/0"), "inf"},
        ProcessCase{"Exif", Type("Exif", "<EXIF>'[name]'=='Nut','yes','no'</EXIF>"), "yes"},
        ProcessCase{"ExifTooShort", Type("Exif", "<EXIF></EXIF"), ""},
        ProcessCase{"Left", Type("Left", "abcdef", {{"StringLength", "3"}}), "abc"},
        ProcessCase{"LeftLongerThanText", Type("Left", "abc", {{"StringLength", "4"}}), ""},
        ProcessCase{"LeftNegative", Type("Left", "abc", {{"StringLength", "-1"}}), ""},
        ProcessCase{"LeftHuge", Type("Left", "abc", {{"StringLength", "99999999999999"}}), ""},
        ProcessCase{"Right", Type("Right", "abcdef", {{"StringLength", "2"}}), "ef"},
        ProcessCase{"RightLongerThanText", Type("Right", "ab", {{"StringLength", "3"}}), ""},
        // The end position is a count.
        ProcessCase{"Mid", Type("Mid", "abcdefg", {{"StringStartPosition", "2"}, {"StringEndPosition", "3"}}), "cde"},
        ProcessCase{"MidPastTheEnd", Type("Mid", "abcdefg", {{"StringStartPosition", "5"}, {"StringEndPosition", "3"}}),
                    ""},
        ProcessCase{"MidNegativeStart", Type("Mid", "abc", {{"StringStartPosition", "-1"}, {"StringEndPosition", "1"}}),
                    ""},
        ProcessCase{"CharCount", Type("CharCount", "h\xC3\xA9llo"), "5"},
        ProcessCase{"LineCount", Type("LineCount", "a&lt;br&gt;b"), "0"},
        ProcessCase{"TabCount", Type("TabCount", "[name]"), "0"},
        ProcessCase{"Replace", Type("Replace", "a-b-c", {{"StringSearch", "-"}, {"StringReplace", "+"}}), "a+b+c"},
        // The item before the first separator is never taken, and the last
        // item is joined without its separator.
        ProcessCase{"SplitFirstPart", Type("Split", "a,b,c,d", {{"StringSplitter", ","}, {"StringItemNumber", "2"}}),
                    "b,c"},
        ProcessCase{"SplitSecondPart",
                    Type("Split", "a,b,c,d,e",
                         {{"StringSplitter", ","}, {"StringItemNumber", "1"}, {"StringPart", "x"}}),
                    "c,de"},
        ProcessCase{"Item", Type("Item", "a,b,c", {{"StringSplitter", ","}, {"StringItemNumber", "1"}}), "b"},
        ProcessCase{"ItemPastTheEndIsLast", Type("Item", "a,b,c", {{"StringSplitter", ","}, {"StringItemNumber", "9"}}),
                    "c"},
        ProcessCase{"CountItems", Type("CountItems", "a,b,c", {{"StringSplitter", ","}}), "2"},
        ProcessCase{"ScriptWithoutRunner", Type("Script", "keep", {{"ScriptFile", "/no/runner.js"}}), "keep"},
        ProcessCase{"Concatenate", Type("Concatenate", "[name] at [price] [nope]"), "Nut at 0.25 "},
        ProcessCase{"UnknownType", Type("Sum", "1+1"), ""},
        ProcessCase{"MissingChildren", {}, ""}),
    [](const testing::TestParamInfo<ProcessCase>& p) { return std::string(p.param.name); });

TEST(WordStyling, ValuesFollowTheRecordWithoutASeparatorOfTheirOwn) {
  // Records of the loops end with a TAB, which becomes the CR before the
  // first computed value; a record without it gets its last field extended.
  EXPECT_EQ(Styled(Document({Type("Concatenate", "x")}), "n", "a\tb"), "a\rbx\r");
}

TEST(WordStyling, MarkersInTheDocumentCountAsLinesAndTabs) {
  // GetAbsoluteField writes a CR of the document as "<br>" and a TAB as "<tb>".
  EXPECT_EQ(Styled(Document({Type("LineCount", "a\rb\rc")}), "n", "x\t"), "x\r2\r");
  EXPECT_EQ(Styled(Document({Type("TabCount", "a\tb")}), "n", "x\t"), "x\r1\r");
}

TEST(WordStyling, TableIsAFindReplaceCleaningAndKeepsTabs) {
  EXPECT_EQ(Styled("nut\tbolt\rM4\tM5", "name\rsize", "nut\tM4"), "bolt\tM5");
}

TEST(WordStyling, DocumentWithoutProcessesOnlyTurnsTabsIntoCRs) {
  EXPECT_EQ(Styled("<?xml version=\"1.0\"?><Styling/>", "a\rb", "1\t2"), "1\r2");
}

TEST(WordStyling, FieldsLineUpWithTheirNames) {
  const std::string doc = Document({{{"OutputField", "total"}, {"ProcessType", "Calc"}, {"ProcessInfo", "1+1"}},
                                    {{"OutputField", "label"}, {"ProcessType", "Concatenate"}, {"ProcessInfo", "x"}}});
  WideString columns("name\r");
  AppendHeaderFromWordStyling(WideString(doc), columns);
  EXPECT_EQ(columns.ToUTF8(), "name\rtotal\rlabel\r");
  EXPECT_EQ(Styled(doc, "name", "a\t"), "a\r2\rx\r");
  WideString unchanged("name\r");
  AppendHeaderFromWordStyling(WideString("a\tb"), unchanged);
  EXPECT_EQ(unchanged.ToUTF8(), "name\r");
}

TEST(WordStyling, BrokenDocumentsGiveEmptyFieldsAndNoCrash) {
  // An unclosed element runs to the end of the document.
  EXPECT_EQ(Styled("<?xml?><Process><OutputField>a</OutputField><ProcessType>Calc", "n", "x\t"), "x\r0\r");
  EXPECT_EQ(Styled("<?xml?><Process><ProcessType>Left</ProcessType><StringLength>-99</StringLength></Process>", "n",
                   "x\t"),
            "x\r\r");
}

class UpperCaseRunner : public host::IScriptRunner {
 public:
  bool CanRunFile(const PMString&) override { return true; }
  void RunFile(const PMString&) override {
    host::ScriptArgumentStore& store = host::Host().ScriptArguments();
    std::string text = store.Get(PMString("scriptArguments")).GrabCString();
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    store.Set(PMString("scriptArguments"), PMString(text));
  }
};

TEST(WordStyling, ScriptRewritesTheInformation) {
  test::TestHost host;
  host.scriptRunnerFactory = [](const PMString&) { return std::make_unique<UpperCaseRunner>(); };
  host.ScriptArguments().Set(PMString("other"), PMString("kept"));
  EXPECT_EQ(Styled(Document({Type("Script", "[name]", {{"ScriptFile", "up.js"}})}), "name", "nut\t"), "nut\rNUT\r");
  EXPECT_EQ(host.ScriptArguments().Get(PMString("other")).GrabCString(), "kept");
  EXPECT_TRUE(host.ScriptArguments().Get(PMString("scriptArguments")).IsEmpty());
}

}  // namespace
}  // namespace talp
