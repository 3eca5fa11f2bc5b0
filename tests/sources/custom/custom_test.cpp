// The "Custom" source through the provider's operations, with real data
// scripts run by the real engine.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "talp/talp_remote.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

// Calls each operation on the script "s.js" and returns its result as UTF-8.
class CustomSource {
 public:
  explicit CustomSource(const std::string& script, const std::string& groupField = "", const std::string& contents = "",
                        const std::string& columnQuery = "") {
    test::Spit(folder_ / "s.js", script);
    descriptor_ = PMString(";;;;;;sku;;;Custom;;;;" + groupField + ";" + contents + ";" + columnQuery + ";;;" +
                           folder_.Path("s.js").GrabCString() + ";;cat");
  }
  std::string Columns() { return Call("old", [&](WideString& r) { remote_.GetColumnList(descriptor_, {}, r); }); }
  std::string Loop(const std::string& where, const std::string& before = "") {
    return Call(before, [&](WideString& r) { remote_.GetRecordLoop(descriptor_, r, PMString(where)); });
  }
  std::string Record(const std::string& key, const std::string& before = "") {
    return Call(before, [&](WideString& r) { remote_.GetSpecificRecord(descriptor_, PMString(key), {}, r); });
  }
  std::string Group(const std::string& query, const std::string& before = "") {
    return Call(before, [&](WideString& r) { remote_.GetGroupDataLoop(descriptor_, {}, r, PMString(query)); });
  }
  std::string List(const std::string& search) {
    return Call("", [&](WideString& r) { remote_.GetRecordList(descriptor_, r, PMString(search), 0); });
  }
  std::string Path() const { return folder_.Path("s.js").GrabCString(); }

 private:
  template <typename Operation>
  static std::string Call(const std::string& before, const Operation& operation) {
    WideString result(before);
    operation(result);
    return result.ToUTF8();
  }

  test::TempFolder folder_;
  PMString descriptor_;
  TALPRemote remote_;
};

std::string Serves(const std::string& header, const std::string& data) {
  return "scriptArgs.set('HeaderData', '" + header + "'); scriptArgs.set('ProductionData', '" + data + "');";
}

// Five lines, the last without CR; group values A A B A.
const std::string kCatalogue =
    Serves("sku\\tname\\tcat", "1\\tnut\\tA\\r2\\tbolt\\tA\\r3\\twasher\\tB\\r4\\tpin\\tA\\r5\\tend\\tB");

// Each operation's layout; the script sees the three arguments under their
// names, and no other (the echo rows).
TEST(CustomSource, EachOperationsLayoutAndArguments) {
  test::TestHost host;
  CustomSource all(kCatalogue), byCat(kCatalogue, "cat", "[name]"), byNone(kCatalogue, "None", "[name]");
  CustomSource echo(
      "var a = scriptArgs, s = [a.get('DataQuery'), a.get('GroupUsingListField'), a.get('GroupContens'),"
      " a.isDefined('DataQuery'), a.isDefined('scriptArguments')].join('|'); a.set('HeaderData', 'sku\\tcat\\t' + s);"
      " a.set('ProductionData', s + '\\t' + s + '\\r' + s + '\\t' + s + '\\r');",
      "grp", "[sku]", "colq");
  const std::string list = "k|grp|[sku]|true|false", loop = "k|||true|false", record = "|||true|false";
  const struct { const char* name; std::string got, want; } cases[] = {
      {"ColumnsOnePerLine", all.Columns(), "sku\rname\rcat"},
      // Line 1 is never delivered, nor a last line without CR; the result is appended to.
      {"LoopFromLineTwo", all.Loop("", "x\r"), "x\r2\tbolt\tA\r3\twasher\tB\r4\tpin\tA\r"},
      // The clause is tested against the first column, the header being TAB-separated.
      {"LoopWhereFirstColumn", all.Loop("where cat = '4'"), "4\tpin\tA\r"},
      {"RecordFromLineOne", all.Record("1"), "1\rnut\rA"},
      {"RecordLastLineNeverExamined", all.Record("5", "x\ty"), "x\ry"},
      {"GroupNoneGivesLinesFromTheLineArray", byNone.Group(""),
       "1\tnut\tA\t\r2\tbolt\tA\t\r3\twasher\tB\t\r4\tpin\tA\t\r"},
      {"GroupFoldsRunsWithoutCounts", byCat.Group("", "x"),
       "x\r1\tnut\tA\t\t<pstyle:LineDark>nut<br><pstyle:LineLight>bolt\r3\twasher\tB\t\t<pstyle:LineDark>washer\r"
       "4\tpin\tA\t\t<pstyle:LineLight>pin"},
      {"ListIsTheLoopsRecords", all.List(""), "2\tA\r3\tB\r4\tA\r"},
      {"SetsNothing", CustomSource("var a = 1;").Columns() + CustomSource("").Loop("") + CustomSource("").Group(""),
       ""},
      {"EchoColumns", echo.Columns(), "sku\rcat\rcolq|grp|[sku]|true|false"},
      {"EchoLoop", echo.Loop("k"), loop + "\t" + loop + "\r"},
      {"EchoRecord", echo.Record(record), record + "\r" + record},
      // Both lines, line 1 too, in one run: "grp" names no column, so the last one groups.
      {"EchoGroup", echo.Group("k"),
       list + "\t" + list + "\t\t<pstyle:LineDark>" + list + "<br><pstyle:LineLight>" + list},
      {"EchoList", echo.List("k"), list + "\t" + list + "\r"},
  };
  for (const auto& c : cases) EXPECT_EQ(c.got, c.want) << c.name;
  EXPECT_TRUE(host.alerts.empty());
}

// A failing script gives what a script that cannot run gives, with one alert
// per operation; a global it set is gone in the next operation.
TEST(CustomSource, FailuresAndIsolation) {
  test::TestHost host;
  CustomSource failing(kCatalogue + "throw new Error('late');", "cat", "[name]");
  // The record list has its one empty entry.
  EXPECT_EQ(failing.Columns() + failing.Loop("") + failing.Record("1") + failing.Group("") + failing.List(""), "\t\r");
  EXPECT_EQ(host.alerts, std::vector<std::string>(5, "The script " + failing.Path() + " failed: Error: late (line 1)"));
  CustomSource counter("var n = typeof n === 'number' ? n + 1 : 1; scriptArgs.set('HeaderData', 'n' + n);");
  EXPECT_EQ(counter.Columns() + counter.Columns(), "n1n1");
}

}  // namespace
}  // namespace talp
