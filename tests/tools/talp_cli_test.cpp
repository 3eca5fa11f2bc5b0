// The talp tool's option handling and output modes, run in-process against a
// provider that records what it is asked.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <ostream>
#include <string>
#include <vector>

#include "progress.h"
#include "run.h"

namespace talp::cli {
namespace {

std::string S(const PMString& s) { return s.GrabCString(); }
std::string S(const WideString& s) { return s.ToUTF8(); }

class RecordingRemote final : public ITALPRemote {
 public:
  IPMUnknown* QueryInterface(PMIID) const override { return nullptr; }
  void AddRef() const override {}
  void Release() const override {}

  int GetDatabaseList(PMString d, WideString& r) override { return Answer("databases " + S(d), r); }
  int GetTableList(PMString d, WideString& r) override { return Answer("tables " + S(d), r); }
  int GetColumnList(PMString d, WideString styling, WideString& r) override {
    return Answer("columns " + S(d) + " styling=" + S(styling), r);
  }
  int GetRecordList(PMString d, WideString& r, PMString search, long p4) override {
    return Answer("list " + S(d) + " search=" + S(search) + " p4=" + std::to_string(p4), r);
  }
  int GetRecordLoop(PMString d, WideString& r, PMString where) override {
    return Answer("loop " + S(d) + " where=" + S(where), r);
  }
  int GetSpecificRecord(PMString d, PMString key, WideString styling, WideString& r) override {
    return Answer("record " + S(d) + " key=" + S(key) + " styling=" + S(styling), r);
  }
  int SendUpdateBaseFieldWithInfo(WideString value, PMString field, PMString keyValue, PMString host, int port,
                                  PMString user, PMString password, PMString database, PMString table,
                                  PMString keyField, PMString type, PMString dsn, PMString file) override {
    WideString none;
    return Answer("update " + S(value) + " field=" + S(field) + " keyValue=" + S(keyValue) + " " + S(host) + "|" +
                      std::to_string(port) + "|" + S(user) + "|" + S(password) + "|" + S(database) + "|" +
                      S(table) + "|" + S(keyField) + "|" + S(type) + "|" + S(dsn) + "|" + S(file),
                  none);
  }
  int SendConnectWithInfoSQL(WideString statement, PMString host, int port, PMString user, PMString password,
                             PMString database, PMString extra) override {
    WideString none;
    return Answer("sql " + S(statement) + " " + S(host) + "|" + std::to_string(port) + "|" + S(user) + "|" +
                      S(password) + "|" + S(database) + " extra=" + S(extra),
                  none);
  }
  void SendUsingHttpPost(PMString url, int port, PMString file, PMString value, PMString name) override {
    WideString none;
    Answer("upload " + S(url) + " " + std::to_string(port) + " " + S(file) + " " + S(value) + " " + S(name), none);
  }
  void GetUsingHttpPost(PMString url, int port, WideString& r) override {
    Answer("get " + S(url) + " " + std::to_string(port), r);
  }
  void GetGroupDataLoop(PMString d, WideString styling, WideString& r, PMString query) override {
    Answer("group " + S(d) + " styling=" + S(styling) + " query=" + S(query), r);
  }

  std::vector<std::string> calls;
  WideString answer{"1\tnut\r22\tbolt M4\r"};
  int status = 0;

 private:
  int Answer(std::string call, WideString& result) {
    calls.push_back(std::move(call));
    result = answer;
    return status;
  }
};

struct TalpRun {
  int status;
  std::string out, err;
  std::vector<std::string> calls;
};

TalpRun Talp(std::vector<std::string> args, bool terminal = false, const char* envPassword = nullptr,
         int status = 0) {
  RecordingRemote remote;
  remote.status = status;
  std::ostringstream out, err;
  const int exitStatus = RunTalp(remote, args, out, err, terminal, envPassword);
  return {exitStatus, out.str(), err.str(), remote.calls};
}

struct CallCase {
  const char* name;
  friend void PrintTo(const CallCase& c, std::ostream* os) { *os << c.name; }
  std::vector<std::string> args;
  std::string call;
};

class TalpOperations : public testing::TestWithParam<CallCase> {};

TEST_P(TalpOperations, CallTheProviderOperation) {
  const TalpRun run = Talp(GetParam().args);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.calls, std::vector<std::string>{GetParam().call});
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TalpOperations,
    testing::Values(
        CallCase{"Databases", {"databases", "--host", "db", "--port", "3307"}, "databases db;3307"},
        CallCase{"Tables", {"tables", "-d", "h;1;u;p;shop;;;;;mySQL"}, "tables h;1;u;p;shop;;;;;mySQL"},
        CallCase{"Columns", {"columns", "--type", "File", "--file", "/d/a.txt", "--styling", "a\tb"},
                 "columns ;;;;;;;;;File;;/d/a.txt styling=a\tb"},
        CallCase{"List", {"list", "--search", "nut", "--key", "id", "--sort", "name"},
                 "list ;;;;;;id;;;;;;;;;;;;;;name search=nut p4=0"},
        CallCase{"Loop", {"loop", "--where=where name LIKE 'n%'", "-d", "x"}, "loop x where=where name LIKE 'n%'"},
        CallCase{"Record", {"record", "42", "--styling", "s"}, "record  key=42 styling=s"},
        CallCase{"Group", {"group", "--query", "q", "--group", "cat", "--contents", "[name]"},
                 "group ;;;;;;;;;;;;;cat;[name] styling= query=q"},
        CallCase{"Update",
                 {"update", "bolt", "--field", "name", "--key-value", "7", "-d",
                  "h;3306;u;pw;db;parts;id;;;File;dsn;/d/p.txt"},
                 "update bolt field=name keyValue=7 h|3306|u|pw|db|parts|id|File|dsn|/d/p.txt"},
        CallCase{"Sql", {"sql", "DELETE FROM t", "--host", "h", "--user", "u", "--extra", "x"},
                 "sql DELETE FROM t h|0|u|| extra=x"},
        CallCase{"Upload",
                 {"upload", "http://h/in", "--port", "8080", "--file", "/d/a.jpg", "--filepath-value", "v",
                  "--name", "a.jpg"},
                 "upload http://h/in 8080 /d/a.jpg v a.jpg"},
        CallCase{"Get", {"get", "http://h/list", "--port", "81"}, "get http://h/list 81"},
        // Named fields override the raw descriptor's; the rest stays as given.
        CallCase{"FieldOverridesRaw", {"tables", "-d", "a;b;c;d;e", "--user", "bob"}, "tables a;b;bob;d;e"},
        CallCase{"RawKeptExactly", {"tables", "-d", " spaced ;;"}, "tables  spaced ;;"},
        CallCase{"DoubleDashEndsOptions", {"record", "--", "-5"}, "record  key=-5 styling="}),
    [](const testing::TestParamInfo<CallCase>& p) { return std::string(p.param.name); });

struct UsageCase {
  const char* name;
  friend void PrintTo(const UsageCase& c, std::ostream* os) { *os << c.name; }
  std::vector<std::string> args;
  std::string reason;
};

class TalpUsageErrors : public testing::TestWithParam<UsageCase> {};

TEST_P(TalpUsageErrors, ExitWithTwoAndAReason) {
  const TalpRun run = Talp(GetParam().args);
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.err, "talp: " + GetParam().reason + "\nTry 'talp --help' for more information.\n");
  EXPECT_TRUE(run.calls.empty());
  EXPECT_EQ(run.out, "");
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TalpUsageErrors,
    testing::Values(UsageCase{"NoOperation", {}, "no operation given"},
                    UsageCase{"UnknownOperation", {"fetch"}, "unknown operation 'fetch'"},
                    UsageCase{"UnknownOption", {"tables", "--colour", "x"}, "unknown option '--colour'"},
                    UsageCase{"MissingValue", {"tables", "--host"}, "option '--host' needs a value"},
                    UsageCase{"MissingArgument", {"record"}, "'record' needs one argument: KEYVALUE"},
                    UsageCase{"ExtraArgument", {"tables", "x"}, "'tables' takes no argument"},
                    UsageCase{"ForeignOption", {"columns", "--where", "x"}, "option --where does not apply to 'columns'"},
                    UsageCase{"SemicolonInField", {"tables", "--table", "a;b"},
                              "the value of --table cannot hold ';', which separates descriptor fields"},
                    UsageCase{"MissingOptionFile", {"loop", "--where", "@/no/such/file"},
                              "cannot read the file '/no/such/file' given to --where"}),
    [](const testing::TestParamInfo<UsageCase>& p) { return std::string(p.param.name); });

TEST(TalpPassword, ComesFromTheEnvironmentUnlessGiven) {
  EXPECT_EQ(Talp({"databases"}, false, "s3cret").calls, std::vector<std::string>{"databases ;;;s3cret"});
  EXPECT_EQ(Talp({"databases", "--password", "other"}, false, "s3cret").calls,
            std::vector<std::string>{"databases ;;;other"});
}

TEST(TalpOptionFiles, AtReadsTheFileExactly) {
  const auto path = std::filesystem::temp_directory_path() / ("talp-cli-" + std::to_string(::getpid()));
  std::ofstream(path, std::ios::binary) << "<?xml?>\r\n<Process/>\n";
  const TalpRun run = Talp({"columns", "--styling", "@" + path.string(), "--password", "@" + path.string()});
  std::filesystem::remove(path);
  ASSERT_EQ(run.err, "");
  EXPECT_EQ(run.calls, std::vector<std::string>{"columns ;;;<?xml?>\r\n<Process/>\n styling=<?xml?>\r\n<Process/>\n"});
}

TEST(TalpOutput, RawIsTheDefaultOffATerminal) {
  EXPECT_EQ(Talp({"tables"}).out, "1\tnut\r22\tbolt M4\r");
  EXPECT_EQ(Talp({"tables", "--raw"}, true).out, "1\tnut\r22\tbolt M4\r");
}

TEST(TalpOutput, Utf16IsLittleEndianWithoutMark) {
  const std::string out = Talp({"tables", "--utf16"}).out;
  EXPECT_EQ(out.substr(0, 6), std::string("1\0\t\0n\0", 6));
  EXPECT_EQ(out.size(), 2 * std::string("1\tnut\r22\tbolt M4\r").size());
}

TEST(TalpOutput, PrettyAlignsFieldsAndIsTheDefaultOnATerminal) {
  EXPECT_EQ(Talp({"tables"}, true).out, "1   nut\n22  bolt M4\n");
  EXPECT_EQ(Talp({"tables", "--pretty"}).out, "1   nut\n22  bolt M4\n");
}

TEST(TalpStatus, IsTheOperationsStatus) {
  EXPECT_EQ(Talp({"tables"}, false, nullptr, 1).status, 1);
  const TalpRun update = Talp({"update", "v", "--field", "f", "--key-value", "1"}, false, nullptr, 1);
  EXPECT_EQ(update.status, 1);
  EXPECT_EQ(update.out, "");  // operations without a result print nothing
}

TEST(TalpHelp, PrintsUsage) {
  const TalpRun run = Talp({"tables", "--help"});
  EXPECT_EQ(run.status, 0);
  EXPECT_NE(run.out.find("Usage: talp OPERATION"), std::string::npos);
  EXPECT_TRUE(run.calls.empty());
}

}  // namespace
}  // namespace talp::cli

namespace talp::cli {
namespace {

TEST(TalpProgress, FormatsPercentOrCount) {
  EXPECT_EQ(FormatProgress("records", 50, 200), "records 25%");
  EXPECT_EQ(FormatProgress("records", 300, 200), "records 100%");
  EXPECT_EQ(FormatProgress("records", 7, 0), "records 7");
}

}  // namespace
}  // namespace talp::cli
