// The dispatch, watched through a source table whose every entry records the
// call it received.
#include "remote/dispatch.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace talp::dispatch {
namespace {

std::string Show(const PMString& s) { return s.GrabCString(); }
std::string Show(const WideString& s) { return s.ToUTF8(); }
std::string Show(int n) { return std::to_string(n); }

class RecordingSources {
 public:
  RecordingSources() {
    Record(table.fetchTableListODBC, "fetchTableListODBC");
    Record(table.fetchColumnListODBC, "fetchColumnListODBC");
    Record(table.fetchRecordListODBC, "fetchRecordListODBC");
    Record(table.fetchRecordLoopODBC, "fetchRecordLoopODBC");
    Record(table.fetchSpecificRecordODBC, "fetchSpecificRecordODBC");
    Record(table.fetchRecordGroupLoopODBC, "fetchRecordGroupLoopODBC");
    Record(table.updateBaseFieldWithInfoODBC, "updateBaseFieldWithInfoODBC");
    Record(table.fetchColumnListFile, "fetchColumnListFile");
    Record(table.fetchRecordLoopFile, "fetchRecordLoopFile");
    Record(table.fetchSpecificRecordFile, "fetchSpecificRecordFile");
    Record(table.fetchRecordGroupLoopFile, "fetchRecordGroupLoopFile");
    Record(table.updateBaseFieldWithInfoFile, "updateBaseFieldWithInfoFile");
    Record(table.fetchDatabaseListSQL, "fetchDatabaseListSQL");
    Record(table.fetchTableListSQL, "fetchTableListSQL");
    Record(table.fetchColumnListSQL, "fetchColumnListSQL");
    Record(table.ConnectWithInfoSQL, "ConnectWithInfoSQL");
    Record(table.fetchRecordListSQL, "fetchRecordListSQL");
    Record(table.fetchRecordLoopSQL, "fetchRecordLoopSQL");
    Record(table.fetchSpecificRecordSQL, "fetchSpecificRecordSQL");
    Record(table.fetchRecordGroupLoopSQL, "fetchRecordGroupLoopSQL");
    Record(table.updateBaseFieldWithInfoSQL, "updateBaseFieldWithInfoSQL");
    Record(table.fetchColumnListCustom, "fetchColumnListCustom");
    Record(table.fetchRecordLoopCustom, "fetchRecordLoopCustom");
    Record(table.fetchSpecificRecordCustom, "fetchSpecificRecordCustom");
    Record(table.fetchRecordGroupLoopCustom, "fetchRecordGroupLoopCustom");
    Record(table.runHTTPclient, "runHTTPclient");
    Record(table.GetClientList, "GetClientList");
    Record(table.AppendHeaderFromWordStyling, "AppendHeaderFromWordStyling");
    Record(table.GetData, "GetData");
  }

  SourceTable table;
  std::vector<std::string> calls;
  static constexpr int kStatus = 7;

 private:
  // Every entry records "name(arg|arg|...)" and answers kStatus.
  template <typename Signature>
  void Record(std::function<Signature>& slot, std::string name) {
    slot = [this, name](const auto&... args) {
      std::string call = name + "(";
      std::string separator;
      ((call += separator + Show(args), separator = "|"), ...);
      calls.push_back(call + ")");
      return kStatus;
    };
  }
};

// A descriptor whose field n holds "fn", but for the port (2) and the type (10).
PMString Descriptor(const std::string& type) {
  std::string d;
  for (int n = 1; n <= 21; ++n) {
    if (n > 1) d += ';';
    d += n == 2 ? "8080" : n == 10 ? type : "f" + std::to_string(n);
  }
  return PMString(d);
}

enum class Op { kDatabases, kTables, kColumns, kRecordList, kLoop, kRecord, kGroup, kUpdate };

struct Outcome {
  int status;
  std::vector<std::string> calls;
};

Outcome RunOperation(Op op, const std::string& type) {
  RecordingSources sources;
  const SourceTable& s = sources.table;
  const PMString d = Descriptor(type);
  WideString result("seed");
  int status = -99;
  switch (op) {
    case Op::kDatabases: status = GetDatabaseList(s, d, result); break;
    case Op::kTables: status = GetTableList(s, d, result); break;
    case Op::kColumns: status = GetColumnList(s, d, WideString("sty"), result); break;
    case Op::kRecordList: status = GetRecordList(s, d, result, PMString("srch"), 5); break;
    case Op::kLoop: status = GetRecordLoop(s, d, result, PMString("whr")); break;
    case Op::kRecord: status = GetSpecificRecord(s, d, PMString("kv"), WideString("sty"), result); break;
    case Op::kGroup: GetGroupDataLoop(s, d, WideString("sty"), result, PMString("qry")); status = 0; break;
    case Op::kUpdate:
      status = SendUpdateBaseFieldWithInfo(s, WideString("val"), PMString("upd"), PMString("kv"), PMString("h"), 33,
                                           PMString("u"), PMString("pw"), PMString("db"), PMString("tb"),
                                           PMString("kf"), PMString(type), PMString("dsn"), PMString("path"));
      break;
  }
  return {status, sources.calls};
}

struct DispatchCase {
  const char* name;
  friend void PrintTo(const DispatchCase& c, std::ostream* os) { *os << c.name; }
  Op op;
  std::string type;
  int status;
  std::vector<std::string> calls;
};

class DispatchTest : public testing::TestWithParam<DispatchCase> {};

TEST_P(DispatchTest, CallsTheRightSourceWithTheRightFields) {
  const DispatchCase& c = GetParam();
  const Outcome outcome = RunOperation(c.op, c.type);
  EXPECT_EQ(outcome.calls, c.calls);
  EXPECT_EQ(outcome.status, c.status);
}

constexpr int S = RecordingSources::kStatus;
const std::vector<std::string> kNone;

INSTANTIATE_TEST_SUITE_P(
    Operations, DispatchTest,
    testing::Values(
        // The database list always asks MySQL, whatever the type word.
        DispatchCase{"DatabasesFile", Op::kDatabases, "File", S, {"fetchDatabaseListSQL(f1|8080|f3|f4|seed)"}},
        DispatchCase{"DatabasesEmptyType", Op::kDatabases, "", S, {"fetchDatabaseListSQL(f1|8080|f3|f4|seed)"}},
        DispatchCase{"TablesODBC", Op::kTables, "ODBC", S, {"fetchTableListODBC(f3|f4|f11|seed)"}},
        DispatchCase{"TablesMySQL", Op::kTables, "mySQL", S, {"fetchTableListSQL(f1|8080|f3|f4|f5|seed)"}},
        DispatchCase{"TablesFileHasNone", Op::kTables, "File", 0, kNone},
        DispatchCase{"TablesCustomHasNone", Op::kTables, "Custom", 0, kNone},
        DispatchCase{"TablesUpperCaseMySQL", Op::kTables, "MYSQL", 0, kNone},
        DispatchCase{"ColumnsODBC", Op::kColumns, "ODBC", S,
                     {"fetchColumnListODBC(f3|f4|f11|f6|seed)", "AppendHeaderFromWordStyling(sty|seed)"}},
        DispatchCase{"ColumnsFile", Op::kColumns, "File", S,
                     {"fetchColumnListFile(f12|seed)", "AppendHeaderFromWordStyling(sty|seed)"}},
        DispatchCase{"ColumnsMySQL", Op::kColumns, "mySQL", S,
                     {"fetchColumnListSQL(f1|8080|f3|f4|f5|f6|f16|seed)", "AppendHeaderFromWordStyling(sty|seed)"}},
        DispatchCase{"ColumnsCustomGetsWholeDescriptor", Op::kColumns, "Custom", S,
                     {"fetchColumnListCustom(" + Descriptor("Custom").GrabCString() + "|f19|seed)",
                      "AppendHeaderFromWordStyling(sty|seed)"}},
        DispatchCase{"ColumnsUnknownStillStyled", Op::kColumns, "MYSQL", 0, {"AppendHeaderFromWordStyling(sty|seed)"}},
        DispatchCase{"ColumnsEmptyTypeStillStyled", Op::kColumns, "", 0, {"AppendHeaderFromWordStyling(sty|seed)"}},
        // The record list clears the result before any source sees it.
        DispatchCase{"ListMySQL", Op::kRecordList, "mySQL", 0,
                     {"fetchRecordListSQL(f1|8080|f3|f4|f5|f6|f21|f7|srch|f14|)"}},
        DispatchCase{"ListODBC", Op::kRecordList, "ODBC", 0, {"fetchRecordListODBC(f3|f4|f11|f6|f21|f7|srch|f14|)"}},
        DispatchCase{"ListFileGoesToDataEngine", Op::kRecordList, "File", 0,
                     {"GetData(||srch|" + Descriptor("File").GrabCString() + "|)"}},
        DispatchCase{"ListUpperCaseGoesToDataEngine", Op::kRecordList, "MYSQL", 0,
                     {"GetData(||srch|" + Descriptor("MYSQL").GrabCString() + "|)"}},
        DispatchCase{"LoopODBC", Op::kLoop, "ODBC", S, {"fetchRecordLoopODBC(f3|f4|f11|f6|seed|whr)"}},
        DispatchCase{"LoopFile", Op::kLoop, "File", S, {"fetchRecordLoopFile(f12|whr|seed)"}},
        DispatchCase{"LoopMySQL", Op::kLoop, "mySQL", S, {"fetchRecordLoopSQL(f1|8080|f3|f4|f5|f6|seed|whr)"}},
        DispatchCase{"LoopCustom", Op::kLoop, "Custom", S, {"fetchRecordLoopCustom(f19|seed|whr)"}},
        DispatchCase{"LoopUpperCase", Op::kLoop, "MYSQL", 0, kNone},
        DispatchCase{"LoopEmptyType", Op::kLoop, "", 0, kNone},
        DispatchCase{"RecordODBC", Op::kRecord, "ODBC", S,
                     {"fetchSpecificRecordODBC(f3|f4|f11|f6|f7|kv|f14|f15|sty|seed)"}},
        DispatchCase{"RecordFile", Op::kRecord, "File", S, {"fetchSpecificRecordFile(f12|f7|kv|sty|seed)"}},
        DispatchCase{"RecordMySQL", Op::kRecord, "mySQL", S,
                     {"fetchSpecificRecordSQL(f1|8080|f3|f4|f5|f6|f7|kv|f14|f15|sty|seed)"}},
        DispatchCase{"RecordCustom", Op::kRecord, "Custom", S, {"fetchSpecificRecordCustom(f19|f7|kv|sty|seed)"}},
        DispatchCase{"RecordUpperCase", Op::kRecord, "MYSQL", 0, kNone},
        DispatchCase{"GroupODBC", Op::kGroup, "ODBC", 0,
                     {"fetchRecordGroupLoopODBC(f3|f4|f11|f6|seed|qry|f14|f15|sty)"}},
        DispatchCase{"GroupFile", Op::kGroup, "File", 0, {"fetchRecordGroupLoopFile(f12|qry|seed|f14|f15|sty)"}},
        DispatchCase{"GroupMySQL", Op::kGroup, "mySQL", 0,
                     {"fetchRecordGroupLoopSQL(f1|8080|f3|f4|f5|f6|seed|qry|f14|f15|sty)"}},
        DispatchCase{"GroupCustom", Op::kGroup, "Custom", 0,
                     {"fetchRecordGroupLoopCustom(f19|seed|qry|f14|f15|sty)"}},
        DispatchCase{"GroupUpperCase", Op::kGroup, "MYSQL", 0, kNone},
        DispatchCase{"UpdateODBC", Op::kUpdate, "ODBC", S,
                     {"updateBaseFieldWithInfoODBC(val|upd|kv|u|pw|dsn|tb|kf)"}},
        DispatchCase{"UpdateFile", Op::kUpdate, "File", S, {"updateBaseFieldWithInfoFile(val|upd|kf|kv|path)"}},
        DispatchCase{"UpdateMySQL", Op::kUpdate, "mySQL", S,
                     {"updateBaseFieldWithInfoSQL(val|upd|kv|h|33|u|pw|db|tb|kf)"}},
        // Every other type word updates through MySQL, an empty one included.
        DispatchCase{"UpdateUpperCaseIsMySQL", Op::kUpdate, "MYSQL", S,
                     {"updateBaseFieldWithInfoSQL(val|upd|kv|h|33|u|pw|db|tb|kf)"}},
        DispatchCase{"UpdateEmptyTypeIsMySQL", Op::kUpdate, "", S,
                     {"updateBaseFieldWithInfoSQL(val|upd|kv|h|33|u|pw|db|tb|kf)"}},
        DispatchCase{"UpdateCustomIsMySQL", Op::kUpdate, "Custom", S,
                     {"updateBaseFieldWithInfoSQL(val|upd|kv|h|33|u|pw|db|tb|kf)"}}),
    [](const testing::TestParamInfo<DispatchCase>& p) { return std::string(p.param.name); });

TEST(DispatchShortDescriptor, FewerThanTenFieldsHasAnEmptyTypeWord) {
  RecordingSources sources;
  const PMString d("host;3306;user");
  WideString result("seed");
  EXPECT_EQ(GetRecordLoop(sources.table, d, result, PMString()), 0);
  EXPECT_EQ(GetColumnList(sources.table, d, WideString("sty"), result), 0);
  GetRecordList(sources.table, d, result, PMString("x"), 0);
  EXPECT_EQ(sources.calls, (std::vector<std::string>{"AppendHeaderFromWordStyling(sty|seed)",
                                                     "GetData(||x|host;3306;user|)"}));
}

TEST(DispatchPort, NonNumericPortReadsAsZero) {
  RecordingSources sources;
  WideString result;
  GetDatabaseList(sources.table, PMString("h;abc;u;p"), result);
  GetDatabaseList(sources.table, PMString("h; 42x;u;p"), result);
  EXPECT_EQ(sources.calls, (std::vector<std::string>{"fetchDatabaseListSQL(h|0|u|p|)",
                                                     "fetchDatabaseListSQL(h|42|u|p|)"}));
}

TEST(DispatchDirect, StatementAndHttpCallsPassTheirArgumentsThrough) {
  RecordingSources sources;
  WideString result("seed");
  EXPECT_EQ(SendConnectWithInfoSQL(sources.table, WideString("SELECT 1"), PMString("h"), 3306, PMString("u"),
                                   PMString("p"), PMString("db"), PMString("x")),
            RecordingSources::kStatus);
  SendUsingHttpPost(sources.table, PMString("http://h/in"), 8080, PMString("/tmp/f"), PMString("v"), PMString("n"));
  GetUsingHttpPost(sources.table, PMString("http://h/list"), 81, result);
  EXPECT_EQ(sources.calls,
            (std::vector<std::string>{"ConnectWithInfoSQL(SELECT 1|h|3306|u|p|db|x)",
                                      "runHTTPclient(http://h/in|8080|/tmp/f|v|n)",
                                      "GetClientList(http://h/list|81|seed)"}));
}

TEST(DispatchRecordList, DataEngineLinesBecomeKeyAndSortEntries) {
  RecordingSources sources;
  sources.table.GetData = [](WideString& data, WideString& header, const PMString&, const PMString&,
                             const PMString&) {
    header = WideString("id\rname\rprice\r");
    data = WideString("1\tnut\t0.10\r2\tbolt\t0.25");
    return 0;
  };
  std::string d = Descriptor("File").GrabCString();
  d.replace(d.find("f7"), 2, "name");
  d.replace(d.find("f21"), 3, "price");
  WideString result("old");
  EXPECT_EQ(GetRecordList(sources.table, PMString(d), result, PMString(), 0), 0);
  EXPECT_EQ(result.ToUTF8(), "nut\t0.10\rbolt\t0.25\r");
}

struct RecordListCase {
  const char* name;
  friend void PrintTo(const RecordListCase& c, std::ostream* os) { *os << c.name; }
  std::string header, data, key, sort, expected;
};

class BuildRecordListTest : public testing::TestWithParam<RecordListCase> {};

TEST_P(BuildRecordListTest, Builds) {
  const RecordListCase& c = GetParam();
  EXPECT_EQ(BuildRecordList(WideString(c.data), WideString(c.header), WideString(c.key), WideString(c.sort)).ToUTF8(),
            c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BuildRecordListTest,
    testing::Values(
        RecordListCase{"EmptyDataGivesOneEmptyEntry", "", "", "id", "name", "\t\r"},
        RecordListCase{"FinalCrGivesAnEmptyEntry", "id\rname\r", "1\ta\r", "id", "name", "1\ta\r\t\r"},
        RecordListCase{"SwappedColumns", "id\rname\r", "1\ta", "name", "id", "a\t1\r"},
        // The last name of a header without a final CR is never found.
        RecordListCase{"LastNameWithoutFinalCr", "id\rname", "1\ta", "id", "name", "1\t\r"},
        RecordListCase{"UnknownNames", "id\rname\r", "1\ta", "x", "y", "\t\r"},
        RecordListCase{"EmptyKeyNameFindsEmptyFieldZero", "id\rname\r", "1\ta", "", "id", "\t1\r"},
        RecordListCase{"ShortLine", "id\rname\rqty\r", "1", "qty", "id", "\t1\r"}),
    [](const testing::TestParamInfo<RecordListCase>& p) { return std::string(p.param.name); });

TEST(BuildRecordListCap, TwoHundredSeparatorsGiveTwoHundredAndOneEntries) {
  std::string data;
  for (int i = 0; i < 500; ++i) data += std::to_string(i) + "\tx\r";
  const WideString list = BuildRecordList(WideString(data), WideString("id\rname\r"), WideString("id"),
                                          WideString("name"));
  std::string expected;
  for (int i = 0; i < 201; ++i) expected += std::to_string(i) + "\tx\r";
  EXPECT_EQ(list.ToUTF8(), expected);
}

}  // namespace
}  // namespace talp::dispatch
