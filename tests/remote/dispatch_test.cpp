// The dispatch, watched through a source table whose every entry records the
// call it received; and the provider's interface as hosts compiled against it
// see it (reference counting, with and without an owner, is covered through
// the module in the plug-in tests).
#include "remote/dispatch.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "talp/talp_remote.h"

namespace talp::dispatch {
namespace {

std::string Show(const PMString& s) { return s.GrabCString(); }
std::string Show(const WideString& s) { return s.ToUTF8(); }
std::string Show(int n) { return std::to_string(n); }

constexpr int S = 7;  // what every recorded entry answers

// Every entry records "name(arg|arg|...)".
struct RecordingSources {
  RecordingSources() {
#define RECORD(slot) Record(table.slot, #slot)
    RECORD(fetchTableListODBC); RECORD(fetchColumnListODBC); RECORD(fetchRecordListODBC);
    RECORD(fetchRecordLoopODBC); RECORD(fetchSpecificRecordODBC); RECORD(fetchRecordGroupLoopODBC);
    RECORD(updateBaseFieldWithInfoODBC); RECORD(fetchColumnListFile); RECORD(fetchRecordLoopFile);
    RECORD(fetchSpecificRecordFile); RECORD(fetchRecordGroupLoopFile); RECORD(updateBaseFieldWithInfoFile);
    RECORD(fetchDatabaseListSQL); RECORD(fetchTableListSQL); RECORD(fetchColumnListSQL); RECORD(fetchRecordListSQL);
    RECORD(fetchRecordLoopSQL); RECORD(fetchSpecificRecordSQL); RECORD(fetchRecordGroupLoopSQL);
    RECORD(updateBaseFieldWithInfoSQL); RECORD(fetchColumnListCustom); RECORD(fetchRecordLoopCustom);
    RECORD(fetchSpecificRecordCustom); RECORD(fetchRecordGroupLoopCustom); RECORD(AppendHeaderFromWordStyling);
    RECORD(GetData);
#undef RECORD
  }
  template <typename Signature>
  void Record(std::function<Signature>& slot, std::string name) {
    slot = [this, name](const auto&... args) {
      std::string call, separator;
      ((call += separator + Show(args), separator = "|"), ...);
      calls.push_back(name + "(" + call + ")");
      return S;
    };
  }

  SourceTable table;
  std::vector<std::string> calls;
};

// A descriptor whose field n holds "fn", but for the port (2) and the type (10).
// Without a type word it has nine fields: a missing field is empty.
std::string Descriptor(const std::string& type) {
  std::string d;
  for (int n = 1; n <= (type.empty() ? 9 : 21); ++n) {
    d += (n > 1 ? ";" : "") + (n == 2 ? "8080" : n == 10 ? type : "f" + std::to_string(n));
  }
  return d;
}

TEST(Dispatch, EachTypeWordCallsItsSourceWithItsFields) {
  // Type words are compared exactly: "MYSQL" and "" are no source's.
  const std::string types[] = {"ODBC", "File", "mySQL", "Custom", "MYSQL", ""};
  using Operation = std::function<int(const SourceTable&, const PMString& d, const std::string& type, WideString&)>;
  const std::string databases = "fetchDatabaseListSQL(f1|8080|f3|f4|seed)", dataEngine = "GetData(||srch|<d>|)";
  const std::string updateSQL = "updateBaseFieldWithInfoSQL(val|upd|kv|h|33|u|pw|db|tb|kf)";
  const struct {
    const char* name;
    Operation run;
    int status;                      // the operation's answer when a source took the call, else 0
    std::vector<std::string> calls;  // the call each type word gives, "" for none; "<d>" is the descriptor
  } cases[] = {
      // The database list always asks MySQL.
      {"Databases", [](auto& s, auto& d, auto&, auto& r) { return GetDatabaseList(s, d, r); }, S,
       std::vector<std::string>(6, databases)},
      {"Tables", [](auto& s, auto& d, auto&, auto& r) { return GetTableList(s, d, r); }, S,
       {"fetchTableListODBC(f3|f4|f11|seed)", "", "fetchTableListSQL(f1|8080|f3|f4|f5|seed)", "", "", ""}},
      // The column list then appends the styled fields whichever source answered, or none.
      {"Columns", [](auto& s, auto& d, auto&, auto& r) { return GetColumnList(s, d, WideString("sty"), r); }, S,
       {"fetchColumnListODBC(f3|f4|f11|f6|seed)", "fetchColumnListFile(f12|seed)",
        "fetchColumnListSQL(f1|8080|f3|f4|f5|f6|f16|seed)", "fetchColumnListCustom(<d>|f19|seed)", "", ""}},
      // The record list clears the result first, answers 0, and sends every
      // type word but ODBC and mySQL to the data engine.
      {"RecordList", [](auto& s, auto& d, auto&, auto& r) { return GetRecordList(s, d, r, PMString("srch"), 5); }, 0,
       {"fetchRecordListODBC(f3|f4|f11|f6|f21|f7|srch|f14|)", dataEngine,
        "fetchRecordListSQL(f1|8080|f3|f4|f5|f6|f21|f7|srch|f14|)", dataEngine, dataEngine, dataEngine}},
      {"Loop", [](auto& s, auto& d, auto&, auto& r) { return GetRecordLoop(s, d, r, PMString("whr")); }, S,
       {"fetchRecordLoopODBC(f3|f4|f11|f6|seed|whr)", "fetchRecordLoopFile(f12|whr|seed)",
        "fetchRecordLoopSQL(f1|8080|f3|f4|f5|f6|seed|whr)", "fetchRecordLoopCustom(f19|seed|whr)", "", ""}},
      {"Record",
       [](auto& s, auto& d, auto&, auto& r) { return GetSpecificRecord(s, d, PMString("kv"), WideString("sty"), r); },
       S,
       {"fetchSpecificRecordODBC(f3|f4|f11|f6|f7|kv|f14|f15|sty|seed)", "fetchSpecificRecordFile(f12|f7|kv|sty|seed)",
        "fetchSpecificRecordSQL(f1|8080|f3|f4|f5|f6|f7|kv|f14|f15|sty|seed)",
        "fetchSpecificRecordCustom(f19|f7|kv|sty|seed)", "", ""}},
      {"Group",
       [](auto& s, auto& d, auto&, auto& r) {
         GetGroupDataLoop(s, d, WideString("sty"), r, PMString("qry"));
         return 0;
       },
       0,
       {"fetchRecordGroupLoopODBC(f3|f4|f11|f6|seed|qry|f14|f15|sty)",
        "fetchRecordGroupLoopFile(f12|qry|seed|f14|f15|sty)",
        "fetchRecordGroupLoopSQL(f1|8080|f3|f4|f5|f6|seed|qry|f14|f15|sty)",
        "fetchRecordGroupLoopCustom(f19|seed|qry|f14|f15|sty)", "", ""}},
      // The update takes its own type word; every one but ODBC and File updates through MySQL.
      {"Update",
       [](auto& s, auto&, auto& type, auto&) {
         return SendUpdateBaseFieldWithInfo(s, WideString("val"), PMString("upd"), PMString("kv"), PMString("h"), 33,
                                            PMString("u"), PMString("pw"), PMString("db"), PMString("tb"),
                                            PMString("kf"), PMString(type), PMString("dsn"), PMString("path"));
       },
       S,
       {"updateBaseFieldWithInfoODBC(val|upd|kv|u|pw|dsn|tb|kf)", "updateBaseFieldWithInfoFile(val|upd|kf|kv|path)",
        updateSQL, updateSQL, updateSQL, updateSQL}},
  };
  for (const auto& c : cases) {
    for (std::size_t i = 0; i < std::size(types); ++i) {
      SCOPED_TRACE(c.name + (" with type word '" + types[i] + "'"));
      std::vector<std::string> want;
      if (std::string call = c.calls[i]; !call.empty()) {
        if (const auto at = call.find("<d>"); at != std::string::npos) call.replace(at, 3, Descriptor(types[i]));
        want.push_back(call);
      }
      if (c.name == std::string("Columns")) want.push_back("AppendHeaderFromWordStyling(sty|seed)");
      RecordingSources sources;
      WideString result("seed");
      const int status = c.run(sources.table, PMString(Descriptor(types[i])), types[i], result);
      EXPECT_EQ(status, c.calls[i].empty() ? 0 : c.status);
      EXPECT_EQ(sources.calls, want);
      // No source, no change: an unknown type word leaves the result as it was.
      if (c.calls[i].empty()) {
        EXPECT_EQ(result.ToUTF8(), "seed");
      }
    }
  }
}

// The cap counts separators: two hundred of them give two hundred and one
// entries, as callers rely on.
TEST(Dispatch, RecordListStopsAfterTwoHundredAndOneEntries) {
  std::string data, want;
  for (int i = 0; i < 500; ++i) {
    data += std::to_string(i) + "\tx\r";
    if (i < 201) want += std::to_string(i) + "\tx\r";
  }
  EXPECT_EQ(BuildRecordList(WideString(data), WideString("id\rname\r"), WideString("id"), WideString("name")).ToUTF8(),
            want);
}

// The slot of a virtual function as the Itanium C++ ABI stores it in a
// member-function pointer: 1 + its byte offset in the vtable.
template <typename MemberFunction>
std::ptrdiff_t Slot(MemberFunction function) {
  std::ptrdiff_t raw = 0;
  std::memcpy(&raw, &function, sizeof raw);
  return (raw - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(ITALPRemote, SlotOrderIsTheCallersContract) {
  using R = ITALPRemote;
  const std::vector<std::ptrdiff_t> slots{
      Slot(&R::QueryInterface), Slot(&R::AddRef), Slot(&R::Release), Slot(&R::GetDatabaseList),
      Slot(&R::GetTableList), Slot(&R::GetColumnList), Slot(&R::GetRecordList), Slot(&R::GetRecordLoop),
      Slot(&R::GetSpecificRecord), Slot(&R::SendUpdateBaseFieldWithInfo), Slot(&R::SendConnectWithInfoSQL),
      Slot(&R::SendUsingHttpPost), Slot(&R::GetUsingHttpPost), Slot(&R::GetGroupDataLoop)};
  EXPECT_EQ(slots, (std::vector<std::ptrdiff_t>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}));
}

}  // namespace
}  // namespace talp::dispatch
