// The talp tool's option handling and output modes, run in-process against a
// provider that records what it is asked.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "output.h"
#include "run.h"
#include "talp/talp_remote.h"
#include "temp_folder.h"

namespace talp::cli {
namespace {

std::string S(const PMString& s) { return s.GrabCString(); }
std::string S(const WideString& s) { return s.ToUTF8(); }
std::string S(long n) { return std::to_string(n); }

// Records each call as "operation arg|arg|..." and answers two records.
class RecordingRemote final : public ITALPRemote {
 public:
  IPMUnknown* QueryInterface(PMIID) const override { return nullptr; }
  void AddRef() const override {}
  void Release() const override {}

  int GetDatabaseList(PMString d, WideString& r) override { return Answer(r, "databases", d); }
  int GetTableList(PMString d, WideString& r) override { return Answer(r, "tables", d); }
  int GetColumnList(PMString d, WideString s, WideString& r) override { return Answer(r, "columns", d, s); }
  int GetRecordList(PMString d, WideString& r, PMString q, long p4) override { return Answer(r, "list", d, q, p4); }
  int GetRecordLoop(PMString d, WideString& r, PMString where) override { return Answer(r, "loop", d, where); }
  int GetSpecificRecord(PMString d, PMString k, WideString s, WideString& r) override {
    return Answer(r, "record", d, k, s);
  }
  int SendUpdateBaseFieldWithInfo(WideString v, PMString f, PMString k, PMString h, int port, PMString u, PMString pw,
                                  PMString db, PMString t, PMString kf, PMString type, PMString dsn,
                                  PMString file) override {
    return Answer(none_, "update", v, f, k, h, port, u, pw, db, t, kf, type, dsn, file);
  }
  int SendConnectWithInfoSQL(WideString statement, PMString h, int port, PMString u, PMString pw, PMString db,
                             PMString extra) override {
    return Answer(none_, "sql", statement, h, port, u, pw, db, extra);
  }
  void SendUsingHttpPost(PMString url, int port, PMString file, PMString v, PMString name) override {
    Answer(none_, "upload", url, port, file, v, name);
  }
  void GetUsingHttpPost(PMString url, int port, WideString& r) override { Answer(r, "get", url, port); }
  void GetGroupDataLoop(PMString d, WideString s, WideString& r, PMString q) override { Answer(r, "group", d, s, q); }

  std::vector<std::string> calls;
  host::ScriptLimits limits;  // in force during the last call

 private:
  template <typename... Args>
  int Answer(WideString& result, std::string call, const Args&... args) {
    std::string separator = " ";
    ((call += separator + S(args), separator = "|"), ...);
    calls.push_back(call);
    limits = host::Host().GetScriptLimits();
    result = WideString("1\tnut\r22\tbolt M4\r");
    return 0;
  }
  WideString none_;
};

struct TalpRun {
  int status;
  std::string out, err;
  std::vector<std::string> calls;
  host::ScriptLimits limits;
};

TalpRun Talp(std::vector<std::string> args, bool terminal = false, const char* envPassword = nullptr) {
  RecordingRemote remote;
  std::ostringstream out, err;
  const int exitStatus = RunTalp(remote, args, out, err, terminal, {.password = envPassword});
  return {exitStatus, out.str(), err.str(), remote.calls, remote.limits};
}

TEST(TalpOperations, CallTheProviderOperation) {
  // A text option's value read from a file, taken exactly.
  const test::TempFolder folder;
  test::Spit(folder / "option", "<?xml?>\r\n<Process/>\n");
  const std::string at = "@" + (folder / "option").string();
  const struct {
    const char* name;
    std::vector<std::string> args;
    std::string call;
    const char* envPassword = nullptr;
  } cases[] = {
      {"Databases", {"databases", "--host", "db", "--port", "3307"}, "databases db;3307"},
      {"Columns", {"columns", "--type", "ODBC", "--file", "/d/a.txt", "--styling", "a\tb"},
       "columns ;;;;;;;;;ODBC;;/d/a.txt|a\tb"},
      {"List", {"list", "--search", "nut", "--key", "id", "--sort", "name"}, "list ;;;;;;id;;;;;;;;;;;;;;name|nut|0"},
      {"Loop", {"loop", "--where=where name LIKE 'n%'", "-d", "x"}, "loop x|where name LIKE 'n%'"},
      {"Record", {"record", "42", "--styling", "s"}, "record |42|s"},
      {"Group", {"group", "--query", "q", "--group", "cat", "--contents", "[name]"},
       "group ;;;;;;;;;;;;;cat;[name]||q"},
      {"Update",
       {"update", "bolt", "--field", "name", "--key-value", "7", "-d", "h;3306;u;pw;db;parts;id;;;ODBC;dsn;/d/p.txt"},
       "update bolt|name|7|h|3306|u|pw|db|parts|id|ODBC|dsn|/d/p.txt"},
      {"Sql", {"sql", "DELETE FROM t", "--host", "h", "--user", "u", "--extra", "x"}, "sql DELETE FROM t|h|0|u|||x"},
      {"Upload",
       {"upload", "http://h/in", "--port", "8080", "--file", "/d/a.jpg", "--filepath-value", "v", "--name", "a.jpg"},
       "upload http://h/in|8080|/d/a.jpg|v|a.jpg"},
      {"Get", {"get", "http://h/list", "--port", "81"}, "get http://h/list|81"},
      // Named fields override the raw descriptor's; the rest stays as given.
      {"FieldOverridesRaw", {"tables", "-d", "a;b;c;d;e", "--user", "bob"}, "tables a;b;bob;d;e"},
      {"DoubleDashEndsOptions", {"record", "--", "-5"}, "record |-5|"},
      {"PasswordFromEnvironment", {"databases"}, "databases ;;;s3cret", "s3cret"},
      {"PasswordOptionBeatsEnvironment", {"databases", "--password", "other"}, "databases ;;;other", "s3cret"},
      {"OptionFromAFile", {"columns", "--styling", at, "--password", at},
       "columns ;;;<?xml?>\r\n<Process/>\n|<?xml?>\r\n<Process/>\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const TalpRun run = Talp(c.args, false, c.envPassword);
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.calls, std::vector<std::string>{c.call});
  }
}

TEST(TalpUsageErrors, ExitWithTwoAndAReason) {
  const struct {
    std::vector<std::string> args;
    std::string reason;
  } cases[] = {
      {{}, "no operation given"},
      {{"fetch"}, "unknown operation 'fetch'"},
      {{"tables", "--colour", "x"}, "unknown option '--colour'"},
      {{"columns", "--where", "x"}, "option --where does not apply to 'columns'"},
      {{"tables", "--table", "a;b"}, "the value of --table cannot hold ';', which separates descriptor fields"},
      {{"loop", "--where", "@/no/such/file"}, "cannot read the file '/no/such/file' given to --where"},
      {{"loop", "--ansi", "latin1"}, "--ansi takes utf-8 or windows-1252, not 'latin1'"},
      {{"loop", "--script-time-limit", "0"}, "--script-time-limit needs a number above 0 and at most 1000000"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.reason);
    const TalpRun run = Talp(c.args);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.err, "talp: " + c.reason + "\nTry 'talp --help' for more information.\n");
    EXPECT_TRUE(run.calls.empty());
    EXPECT_EQ(run.out, "");
  }
}

TEST(TalpScriptLimits, SetTheHostSettings) {
  const TalpRun run = Talp({"loop", "--script-time-limit", "0.5", "--script-memory-limit=64"});
  EXPECT_EQ(run.calls.size(), 1u);
  EXPECT_EQ(run.limits.seconds, 0.5);
  EXPECT_EQ(run.limits.megabytes, 64u);
}

TEST(TalpOutput, RawOffATerminalPrettyOnOneUtf16OnRequest) {
  const std::string raw = "1\tnut\r22\tbolt M4\r";
  EXPECT_EQ(Talp({"tables"}).out, raw);
  EXPECT_EQ(Talp({"tables", "--raw"}, true).out, raw);
  EXPECT_EQ(Talp({"tables"}, true).out, "1   nut\n22  bolt M4\n");
  EXPECT_EQ(Talp({"tables", "--pretty"}).out, "1   nut\n22  bolt M4\n");
  const std::string utf16 = Talp({"tables", "--utf16"}).out;  // little endian without mark
  EXPECT_EQ(utf16.substr(0, 6), std::string("1\0\t\0n\0", 6));
  EXPECT_EQ(utf16.size(), 2 * raw.size());
}

// Large results are encoded piece by piece, while earlier pieces are
// written; a pair across a piece boundary is never split.
TEST(TalpOutput, LargeResultsAreWrittenWhole) {
  std::u16string units(std::size_t{3} << 20, u'\u00e9');
  units.replace((std::size_t{1} << 20) - 1, 2, u"\U0001F600");  // across the end of the first piece
  const WideString result(std::move(units));
  std::ostringstream out;
  WriteResult(result, OutputMode::kRaw, out);
  EXPECT_TRUE(out.str() == result.ToUTF8());
}

// Files without a mark as the setting says (--ansi over TALP_ANSI), and a
// note where that looks wrong or the data file cannot be opened; the
// operation's result and status stay as they are.
TEST(TalpDataFiles, ReadAsTheAnsiSettingSaysWithNotes) {
  const test::TempFolder folder;
  test::Spit(folder / "utf8.txt", "name\rcaf\xC3\xA9\r");
  test::Spit(folder / "ansi.txt", "name\rcaf\xE9\r");
  const std::string utf8 = (folder / "utf8.txt").string(), dir = folder.Path("").GrabCString();
  const std::string misread = "talp: note: " + utf8 +
                              " has no byte-order mark and was read as Windows-1252, but it is valid UTF-8;"
                              " to read it as UTF-8, use --ansi utf-8 (or TALP_ANSI=utf-8)\n";
  const struct {
    const char* name;
    std::string file;
    std::vector<std::string> options;
    const char* environment;
    std::string out, err;
    int status = 0;
  } cases[] = {
      {"DefaultIsWindows1252", "utf8.txt", {}, nullptr, "caf\xC3\x83\xC2\xA9\r", misread},
      {"OptionReadsUTF8", "utf8.txt", {"--ansi", "utf-8"}, nullptr, "caf\xC3\xA9\r", ""},
      {"EnvironmentReadsUTF8", "utf8.txt", {}, "UTF-8", "caf\xC3\xA9\r", ""},
      {"OptionWinsOverEnvironment", "utf8.txt", {"--ansi", "windows-1252"}, "utf-8", "caf\xC3\x83\xC2\xA9\r",
       misread},
      {"Windows1252BytesNeedNoNote", "ansi.txt", {}, nullptr, "caf\xC3\xA9\r", ""},
      {"Missing", "missing.txt", {}, nullptr, "", "talp: note: " + dir + "missing.txt: No such file or directory\n"},
      {"BadEnvironment", "utf8.txt", {}, "latin1", "",
       "talp: TALP_ANSI must be utf-8 or windows-1252, not 'latin1'\nTry 'talp --help' for more information.\n", 2},
  };
  TALPRemote remote;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<std::string> args = {"loop", "--type", "File", "--file", (folder / c.file).string()};
    args.insert(args.end(), c.options.begin(), c.options.end());
    std::ostringstream out, err;
    EXPECT_EQ(RunTalp(remote, args, out, err, false, {.ansi = c.environment}), c.status);
    EXPECT_EQ(out.str(), c.out);
    EXPECT_EQ(err.str(), c.err);
  }
}

}  // namespace
}  // namespace talp::cli
