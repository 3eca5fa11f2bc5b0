// The platform's JavaScript runner, with real scripts in the real engine.
#include "host/script_runner.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "temp_folder.h"
#include "sources/custom/custom_data.h"
#include "test_host.h"
#include "text/script_text.h"

namespace talp::host {
namespace {

using Values = std::map<std::string, std::u16string>;

// Runs source as the file "t.js" with the arguments in, as the only ones set;
// returns the arguments afterwards.
Values RunScript(test::TestHost& host, const test::TempFolder& folder, const std::string& source, const Values& in) {
  test::Spit(folder / "t.js", source);
  const auto runner = host.FindScriptRunner(folder.Path("t.js"));
  ScriptArgumentStore& store = host.ScriptArguments();
  store.ClearAll();
  for (const auto& [name, value] : in) store.Set(PMString(name), PMString(WideString(value)));
  if (runner->CanRunFile(folder.Path("t.js"))) runner->RunFile(folder.Path("t.js"));
  Values out;
  for (const auto& [name, value] : store.Values()) out[name.GrabCString()] = value.AsWide().Units();
  return out;
}

TEST(ScriptRunner, ArgumentsAndTextCrossIntact) {
  const std::u16string kEmoji = u"\U0001F600";
  const struct {
    const char* name;
    std::string source;
    Values in, out;
  } cases[] = {
      {"EveryCharacterBackAsItWas", "scriptArgs.set('out', scriptArgs.get('in'))", {{"in", u"a\tb\r\u00e9" + kEmoji}},
       {{"in", u"a\tb\r\u00e9" + kEmoji}, {"out", u"a\tb\r\u00e9" + kEmoji}}},
      {"PassedInEqualsTypedInTheSource", "scriptArgs.set('in', scriptArgs.get('in') === '\xF0\x9F\x98\x80')",
       {{"in", kEmoji}}, {{"in", u"true"}}},
      {"BuiltWithEscapesComesBackAsPairs", "scriptArgs.set('out', '\\uD83D\\uDE00' + String.fromCodePoint(0x1F601))",
       {}, {{"out", kEmoji + u"\U0001F601"}}},
      // An unset name gets "", the store is app.scriptArgs too, and a pair is two units to the script.
      {"ScriptArgsAsDocumented",
       "scriptArgs.set('out', [scriptArgs.get('no'), app.scriptArgs === scriptArgs, '\xF0\x9F\x98\x80'.length].join())",
       {}, {{"out", u",true,2"}}},
      {"ByteOrderMarkIsSkipped", "\xEF\xBB\xBFscriptArgs.set('out', 'bom')", {}, {{"out", u"bom"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TestHost host;
    test::TempFolder folder;
    EXPECT_EQ(RunScript(host, folder, c.source, c.in), c.out);
    EXPECT_TRUE(host.alerts.empty());
  }
}

// A failing run leaves the arguments as they were and shows one alert per
// session and script file, however often it runs.
TEST(ScriptRunner, FailuresLeaveTheArgumentsAndAlertOnce) {
  const struct {
    const char* name;
    std::string source;
    std::string reason;
  } cases[] = {
      {"SyntaxError", "var a = ;\nvar b = 2;", "SyntaxError: empty expression not allowed (line 1)"},
      {"ThrownError", "scriptArgs.set('in', 'changed');\nthrow new Error('boom');", "Error: boom (line 2)"},
      {"RunsForever", "for (;;) {}", "it ran longer than 0.2 s"},
      {"AllocatesWithoutEnd", "var s = 'x'; for (;;) s += s;", "it needed more than 16 MB of memory"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::TestHost host;
    host.SetScriptLimits({.seconds = 0.2, .megabytes = 16});
    test::TempFolder folder;
    const std::string path = folder.Path("t.js").GrabCString();
    for (int session = 0; session < 2; ++session) {
      const ScriptScope operation;
      for (int run = 0; run < 2; ++run) EXPECT_EQ(RunScript(host, folder, c.source, {{"in", u"x"}}), (Values{{"in", u"x"}}));
    }
    EXPECT_EQ(host.alerts, std::vector<std::string>(2, "The script " + path + " failed: " + c.reason));
  }
}

TEST(ScriptRunner, AFileThatCannotBeReadAlertsOnce) {
  test::TestHost host;
  const ScriptScope operation;
  for (int run = 0; run < 2; ++run) EXPECT_FALSE(host.FindScriptRunner("/nowhere/x.js")->CanRunFile("/nowhere/x.js"));
  EXPECT_EQ(host.alerts, std::vector<std::string>{"The script file /nowhere/x.js cannot be read."});
}

// Within an operation a script keeps its globals from run to run; a run after
// the time limit starts from a fresh engine. (The next operation does too,
// custom_test.cpp shows.)
TEST(ScriptRunner, EngineStateLastsOneOperation) {
  test::TestHost host;
  host.SetScriptLimits({.seconds = 0.5});
  test::TempFolder folder;
  const std::string counter =
      "var n = typeof n === 'number' ? n + 1 : 1; scriptArgs.set('n', n); if (scriptArgs.get('stall')) for (;;) {}";
  const ScriptScope operation;
  EXPECT_EQ(RunScript(host, folder, counter, {})["n"], u"1");
  EXPECT_EQ(RunScript(host, folder, counter, {})["n"], u"2");
  EXPECT_EQ(RunScript(host, folder, counter, {{"stall", u"y"}})["n"], u"");
  EXPECT_EQ(RunScript(host, folder, counter, {})["n"], u"1");
  EXPECT_EQ(host.alerts.size(), 1u);
}

TEST(ScriptRunner, ManyRunsOnSeveralThreads) {
  test::TestHost host;
  test::TempFolder folder;
  test::Spit(folder / "up.js", "scriptArgs.set('scriptArguments', scriptArgs.get('scriptArguments').toUpperCase())");
  std::vector<std::thread> threads;
  std::atomic<int> wrong{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&, t] {
      const ScriptScope operation;
      for (int run = 0; run < 50; ++run) {
        WideString value("thread " + std::to_string(t) + " run " + std::to_string(run));
        UseScriptToManipulate(folder.Path("up.js"), value);
        if (value.ToUTF8() != "THREAD " + std::to_string(t) + " RUN " + std::to_string(run)) ++wrong;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_TRUE(host.alerts.empty());
}

// A runner that throws (a host's may) still leaves the caller's arguments as
// they were, for a Script process and for a data script alike.
TEST(ScriptRunner, ArgumentsComeBackWhenTheRunnerThrows) {
  struct ThrowingRunner : IScriptRunner {
    bool CanRunFile(const PMString&) override { return true; }
    void RunFile(const PMString&) override { throw std::runtime_error("runner broke"); }
  };
  struct ThrowingHost : test::TestHost {
    std::unique_ptr<IScriptRunner> FindScriptRunner(const PMString&) override {
      return std::make_unique<ThrowingRunner>();
    }
  } host;
  host.ScriptArguments().Set(PMString("DataQuery"), PMString("mine"));
  WideString text("t"), header, data;
  EXPECT_THROW(UseScriptToManipulate(PMString("a.js"), text), std::runtime_error);
  EXPECT_THROW(GetCustomDataFromScript(PMString("a.js"), header, data, "q", "", ""), std::runtime_error);
  EXPECT_EQ(host.ScriptArguments().Values().size(), 1u);
  EXPECT_EQ(host.ScriptArguments().Get(PMString("DataQuery")), PMString("mine"));
}

}  // namespace
}  // namespace talp::host
