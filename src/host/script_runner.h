// The platform's JavaScript runner and the sessions its scripts run in.
//
// A session holds one script process (script_process.h) with an engine per
// script file: each file is read and compiled once, and its runs share its
// engine state. A failing script shows one alert per session and script
// file, naming the file and the reason. Sessions are per thread: scripts on
// separate threads never share anything.
#pragma once

#include <memory>

#include "talp/host_services.h"

namespace talp::host {

// Marks one provider operation: the scripts run on this thread while a scope
// is open share a session, which ends, with everything of it, when the last
// scope on the thread closes; the next operation starts afresh. A run
// outside any scope has a session of its own. Scopes nest.
class ScriptScope {
 public:
  ScriptScope();
  ~ScriptScope();
  ScriptScope(const ScriptScope&) = delete;
  ScriptScope& operator=(const ScriptScope&) = delete;
};

// A runner for scriptPath when it names a ".js" or ".jsx" file (in any
// letter case), else null. It can run a file it can read; it runs it with
// the calling thread's script arguments (the host's store) within the host
// settings' limits. Use it on the thread that found it.
std::unique_ptr<IScriptRunner> FindJavaScriptRunner(const PMString& scriptPath);

}  // namespace talp::host
