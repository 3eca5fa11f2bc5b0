// The process the script engines of one session run in.
//
// Scripts run in a child process rather than in the host's own: the engine
// as the system ships it has no interrupt check, so the only sure way to end
// a script that loops forever is to kill the process it runs in, and a script
// that exhausts memory, or finds a fault in the engine, takes only that
// process down. A run costs a round trip over a socket pair, a few
// microseconds; the engines stay in the process from run to run.
//
// The process runs the program talp-script-host (found by ScriptHostProgram;
// the environment variable TALP_SCRIPT_HOST names another).
// One object belongs to one thread at a time.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "host/script_engine.h"
#include "host/unique_fd.h"

namespace talp::host {

// The descriptor on which the script process finds its socket.
inline constexpr int kScriptSocket = 3;

// The script process's work: answers run requests on kScriptSocket until
// the socket closes, then ends the process. parent: the process id that
// started it, as text; a process whose parent is already another one ends.
[[noreturn]] void ServeScripts(const char* parent);

class ScriptProcess {
 public:
  // A new process, or null when none can be started.
  static std::unique_ptr<ScriptProcess> Start();
  // Kills the process and waits for it.
  ~ScriptProcess();
  ScriptProcess(const ScriptProcess&) = delete;
  ScriptProcess& operator=(const ScriptProcess&) = delete;

  enum class Outcome {
    kDone,      // the script returned; arguments hold what it left
    kFailed,    // it could not be compiled, threw, or hit the memory limit: reason says which
    kTimedOut,  // it ran past its time and the process was killed
    kStopped,   // the process ended without an answer
  };
  // Runs the script path, whose source is the file's bytes (sent the first
  // time only; later runs use the engine compiled then), with arguments as
  // its script arguments. The engine of a new script gets memoryLimit bytes.
  // After kTimedOut or kStopped the process is of no more use: drop it.
  Outcome Run(const std::string& path, const std::string& source, ScriptValues& arguments,
              std::uint64_t memoryLimit, double seconds, std::string& reason);

  // How many runs, since the program started, ended with kStopped: a fault
  // in the engine or in the code around it. For the fuzzer.
  static std::uint64_t StoppedRuns();

 private:
  ScriptProcess(pid_t pid, UniqueFd socket) : pid_(pid), socket_(std::move(socket)) {}

  pid_t pid_;
  UniqueFd socket_;
  std::set<std::string> sent_;  // scripts whose source the process has
  std::string buffer_;          // the last answer, kept for its memory
  std::chrono::steady_clock::duration receiveTimeout_{};  // as set on the socket
};

}  // namespace talp::host
