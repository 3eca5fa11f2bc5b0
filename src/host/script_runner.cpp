#include "host/script_runner.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "host/script_process.h"

namespace talp::host {
namespace {

struct Session {
  std::unique_ptr<ScriptProcess> process;  // started with the first run
  std::map<std::string, std::optional<std::string>> sources;  // by path; nullopt: unreadable
  std::set<std::string> reported;                             // paths already alerted
};

thread_local std::unique_ptr<Session> tSession;
thread_local int tScopes = 0;

// One alert per session and script file, however many records run it.
void Report(const std::string& path, const std::string& message) {
  if (tSession->reported.insert(path).second) Host().InformationAlert(PMString(message));
}

// The file's bytes, read once per session; null when it cannot be read.
const std::string* SourceOf(const std::string& path) {
  auto [entry, added] = tSession->sources.try_emplace(path);
  if (added) entry->second = ReadWholeFile(PMString(path));
  if (!entry->second) {
    Report(path, "The script file " + path + " cannot be read.");
    return nullptr;
  }
  return &*entry->second;
}

std::string Seconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", seconds);
  return text;
}

class JavaScriptRunner : public IScriptRunner {
 public:
  bool CanRunFile(const PMString& scriptPath) override { return SourceOf(scriptPath.GrabCString()) != nullptr; }
  void RunFile(const PMString& scriptPath) override;

 private:
  ScriptScope scope_;  // the session lasts at least as long as the runner
};

void JavaScriptRunner::RunFile(const PMString& scriptPath) {
  const std::string path = scriptPath.GrabCString();
  const std::string* source = SourceOf(path);
  if (source == nullptr) return;
  ScriptArgumentStore& store = Host().ScriptArguments();
  ScriptValues arguments;
  for (const auto& [name, value] : store.Values()) arguments.emplace(name.AsWide().Units(), value.AsWide().Units());
  const ScriptLimits limits = Host().GetScriptLimits();
  const double seconds = std::max(limits.seconds, 0.001);
  const std::uint64_t memory = std::min<std::uint64_t>(limits.megabytes, std::uint64_t{1} << 20) << 20;

  std::unique_ptr<ScriptProcess>& process = tSession->process;
  if (!process) process = ScriptProcess::Start();
  std::string reason;
  using Outcome = ScriptProcess::Outcome;
  const Outcome outcome =
      process ? process->Run(path, *source, arguments, memory, seconds, reason) : Outcome::kStopped;
  switch (outcome) {
    case Outcome::kDone:
      store.ClearAll();
      for (auto& [name, value] : arguments) {
        store.Set(PMString(WideString(name)), PMString(WideString(std::move(value))));
      }
      return;
    case Outcome::kFailed:
      break;
    case Outcome::kTimedOut:
      reason = "it ran longer than " + Seconds(seconds) + " s";
      process.reset();
      break;
    case Outcome::kStopped:
      reason = process ? "its engine stopped unexpectedly" : "its engine could not be started";
      process.reset();
      break;
  }
  Report(path, "The script " + path + " failed: " + reason);
}

}  // namespace

ScriptScope::ScriptScope() {
  if (tScopes++ == 0) tSession = std::make_unique<Session>();
}

ScriptScope::~ScriptScope() {
  if (--tScopes == 0) tSession.reset();
}

std::unique_ptr<IScriptRunner> FindJavaScriptRunner(const PMString& scriptPath) {
  std::string path = scriptPath.GrabCString();
  const auto dot = path.find_last_of("./");
  if (dot == std::string::npos || path[dot] != '.') return nullptr;
  std::string extension = path.substr(dot + 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension != "js" && extension != "jsx") return nullptr;
  return std::make_unique<JavaScriptRunner>();
}

}  // namespace talp::host
