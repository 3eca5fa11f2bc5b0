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

#define RECORD(slot) Record(table.slot, #slot)

class RecordingSources {
 public:
  RecordingSources() {
    RECORD(fetchTableListODBC); RECORD(fetchColumnListODBC); RECORD(fetchRecordListODBC);
    RECORD(fetchRecordLoopODBC); RECORD(fetchSpecificRecordODBC); RECORD(fetchRecordGroupLoopODBC);
    RECORD(updateBaseFieldWithInfoODBC);
    RECORD(fetchColumnListFile); RECORD(fetchRecordLoopFile); RECORD(fetchSpecificRecordFile);
    RECORD(fetchRecordGroupLoopFile); RECORD(updateBaseFieldWithInfoFile);
    RECORD(fetchDatabaseListSQL); RECORD(fetchTableListSQL); RECORD(fetchColumnListSQL); RECORD(ConnectWithInfoSQL);
    RECORD(fetchRecordListSQL); RECORD(fetchRecordLoopSQL); RECORD(fetchSpecificRecordSQL);
    RECORD(fetchRecordGroupLoopSQL); RECORD(updateBaseFieldWithInfoSQL);
    RECORD(fetchColumnListCustom); RECORD(fetchRecordLoopCustom); RECORD(fetchSpecificRecordCustom);
    RECORD(fetchRecordGroupLoopCustom);
    RECORD(runHTTPclient); RECORD(GetClientList); RECORD(AppendHeaderFromWordStyling); RECORD(GetData);
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
std::string Descriptor(const std::string& type) {
  std::string d;
  for (int n = 1; n <= 21; ++n) d += (n > 1 ? ";" : "") + (n == 2 ? "8080" : n == 10 ? type : "f" + std::to_string(n));
  return d;
}

enum class Op { kDatabases, kTables, kColumns, kRecordList, kLoop, kRecord, kGroup, kUpdate };

struct Outcome {
  int status;
  std::vector<std::string> calls;
};

Outcome RunOperation(Op op, const std::string& type) {
  RecordingSources sources;
  const SourceTable& s = sources.table;
  const PMString d(Descriptor(type));
  WideString result("seed");
  int status = 0;
  switch (op) {
    case Op::kDatabases: status = GetDatabaseList(s, d, result); break;
    case Op::kTables: status = GetTableList(s, d, result); break;
    case Op::kColumns: status = GetColumnList(s, d, WideString("sty"), result); break;
    case Op::kRecordList: status = GetRecordList(s, d, result, PMString("srch"), 5); break;
    case Op::kLoop: status = GetRecordLoop(s, d, result, PMString("whr")); break;
    case Op::kRecord: status = GetSpecificRecord(s, d, PMString("kv"), WideString("sty"), result); break;
    case Op::kGroup: GetGroupDataLoop(s, d, WideString("sty"), result, PMString("qry")); break;
    case Op::kUpdate:
      status = SendUpdateBaseFieldWithInfo(s, WideString("val"), PMString("upd"), PMString("kv"), PMString("h"), 33,
                                           PMString("u"), PMString("pw"), PMString("db"), PMString("tb"),
                                           PMString("kf"), PMString(type), PMString("dsn"), PMString("path"));
      break;
  }
  return {status, sources.calls};
}

// Type words are compared exactly: "MYSQL" and "" are no source's.
const std::string kTypes[] = {"ODBC", "File", "mySQL", "Custom", "MYSQL", ""};

struct DispatchCase {
  const char* name;
  friend void PrintTo(const DispatchCase& c, std::ostream* os) { *os << c.name; }
  Op op;
  int status;                      // the operation's answer when a source took the call, else 0
  std::vector<std::string> calls;  // the call each of kTypes gives, "" for none; "<d>" is the descriptor
};

class DispatchTest : public testing::TestWithParam<DispatchCase> {};

TEST_P(DispatchTest, EachTypeWordCallsItsSourceWithItsFields) {
  const DispatchCase& c = GetParam();
  for (std::size_t i = 0; i < std::size(kTypes); ++i) {
    SCOPED_TRACE("type word '" + kTypes[i] + "'");
    std::vector<std::string> want;
    if (std::string call = c.calls[i]; !call.empty()) {
      if (const auto at = call.find("<d>"); at != std::string::npos) call.replace(at, 3, Descriptor(kTypes[i]));
      want.push_back(call);
    }
    // The column list appends the styled fields whichever source answered, or none.
    if (c.op == Op::kColumns) want.push_back("AppendHeaderFromWordStyling(sty|seed)");
    const Outcome outcome = RunOperation(c.op, kTypes[i]);
    EXPECT_EQ(outcome.calls, want);
    EXPECT_EQ(outcome.status, c.calls[i].empty() ? 0 : c.status);
  }
}

constexpr int S = RecordingSources::kStatus;
const std::string kDatabases = "fetchDatabaseListSQL(f1|8080|f3|f4|seed)";
const std::string kUpdateSQL = "updateBaseFieldWithInfoSQL(val|upd|kv|h|33|u|pw|db|tb|kf)";
const std::string kDataEngine = "GetData(||srch|<d>|)";

INSTANTIATE_TEST_SUITE_P(
    Operations, DispatchTest,
    testing::Values(
        // The database list always asks MySQL.
        DispatchCase{"Databases", Op::kDatabases, S, std::vector<std::string>(6, kDatabases)},
        DispatchCase{"Tables", Op::kTables, S,
                     {"fetchTableListODBC(f3|f4|f11|seed)", "", "fetchTableListSQL(f1|8080|f3|f4|f5|seed)", "", "",
                      ""}},
        DispatchCase{"Columns", Op::kColumns, S,
                     {"fetchColumnListODBC(f3|f4|f11|f6|seed)", "fetchColumnListFile(f12|seed)",
                      "fetchColumnListSQL(f1|8080|f3|f4|f5|f6|f16|seed)", "fetchColumnListCustom(<d>|f19|seed)", "",
                      ""}},
        // The record list clears the result first, answers 0, and sends every
        // type word but ODBC and mySQL to the data engine.
        DispatchCase{"RecordList", Op::kRecordList, 0,
                     {"fetchRecordListODBC(f3|f4|f11|f6|f21|f7|srch|f14|)", kDataEngine,
                      "fetchRecordListSQL(f1|8080|f3|f4|f5|f6|f21|f7|srch|f14|)", kDataEngine, kDataEngine,
                      kDataEngine}},
        DispatchCase{"Loop", Op::kLoop, S,
                     {"fetchRecordLoopODBC(f3|f4|f11|f6|seed|whr)", "fetchRecordLoopFile(f12|whr|seed)",
                      "fetchRecordLoopSQL(f1|8080|f3|f4|f5|f6|seed|whr)", "fetchRecordLoopCustom(f19|seed|whr)", "",
                      ""}},
        DispatchCase{"Record", Op::kRecord, S,
                     {"fetchSpecificRecordODBC(f3|f4|f11|f6|f7|kv|f14|f15|sty|seed)",
                      "fetchSpecificRecordFile(f12|f7|kv|sty|seed)",
                      "fetchSpecificRecordSQL(f1|8080|f3|f4|f5|f6|f7|kv|f14|f15|sty|seed)",
                      "fetchSpecificRecordCustom(f19|f7|kv|sty|seed)", "", ""}},
        DispatchCase{"Group", Op::kGroup, 0,
                     {"fetchRecordGroupLoopODBC(f3|f4|f11|f6|seed|qry|f14|f15|sty)",
                      "fetchRecordGroupLoopFile(f12|qry|seed|f14|f15|sty)",
                      "fetchRecordGroupLoopSQL(f1|8080|f3|f4|f5|f6|seed|qry|f14|f15|sty)",
                      "fetchRecordGroupLoopCustom(f19|seed|qry|f14|f15|sty)", "", ""}},
        // The update takes its own type word; every one but ODBC and File updates through MySQL.
        DispatchCase{"Update", Op::kUpdate, S,
                     {"updateBaseFieldWithInfoODBC(val|upd|kv|u|pw|dsn|tb|kf)",
                      "updateBaseFieldWithInfoFile(val|upd|kf|kv|path)", kUpdateSQL, kUpdateSQL, kUpdateSQL,
                      kUpdateSQL}}),
    [](const testing::TestParamInfo<DispatchCase>& p) { return std::string(p.param.name); });

TEST(DispatchDescriptor, FewerThanTenFieldsHaveAnEmptyTypeWordAndAPortThatIsNoNumberIsZero) {
  RecordingSources sources;
  WideString result;
  GetDatabaseList(sources.table, PMString("h;abc;u;p"), result);
  GetDatabaseList(sources.table, PMString("h; 42x;u;p"), result);
  EXPECT_EQ(GetRecordLoop(sources.table, PMString("host;3306;user"), result, PMString()), 0);
  GetRecordList(sources.table, PMString("host;3306;user"), result, PMString("x"), 0);
  EXPECT_EQ(sources.calls, (std::vector<std::string>{"fetchDatabaseListSQL(h|0|u|p|)",
                                                     "fetchDatabaseListSQL(h|42|u|p|)", "GetData(||x|host;3306;user|)"}));
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

TEST(BuildRecordListTest, GivesKeyAndSortEntries) {
  const struct {
    const char* name;
    std::string header, data, key, sort, want;
  } cases[] = {
      {"EmptyDataGivesOneEmptyEntry", "", "", "id", "name", "\t\r"},
      {"FinalCrGivesAnEmptyEntry", "id\rname\r", "1\ta\r", "id", "name", "1\ta\r\t\r"},
      {"SwappedColumns", "id\rname\r", "1\ta", "name", "id", "a\t1\r"},
      // The last name of a header without a final CR is never found.
      {"LastNameWithoutFinalCr", "id\rname", "1\ta", "id", "name", "1\t\r"},
      {"UnknownNames", "id\rname\r", "1\ta", "x", "y", "\t\r"},
      {"ShortLine", "id\rname\rqty\r", "1", "qty", "id", "\t1\r"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(BuildRecordList(WideString(c.data), WideString(c.header), WideString(c.key), WideString(c.sort)).ToUTF8(),
              c.want);
  }
}

// The cap counts separators.
TEST(BuildRecordListTest, TwoHundredSeparatorsGiveTwoHundredAndOneEntries) {
  std::string data, want;
  for (int i = 0; i < 500; ++i) data += std::to_string(i) + "\tx\r";
  for (int i = 0; i < 201; ++i) want += std::to_string(i) + "\tx\r";
  EXPECT_EQ(BuildRecordList(WideString(data), WideString("id\rname\r"), WideString("id"), WideString("name")).ToUTF8(),
            want);
}

}  // namespace
}  // namespace talp::dispatch
