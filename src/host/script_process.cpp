#include "host/script_process.h"

#include <signal.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>

#include "host/script_host_program.h"

namespace talp::host {
namespace {

using Clock = std::chrono::steady_clock;

std::atomic<std::uint64_t> stoppedRuns{0};

ScriptProcess::Outcome Stopped() {
  ++stoppedRuns;
  return ScriptProcess::Outcome::kStopped;
}

// Messages are a 64-bit length and a body of fields: numbers in the
// machine's order (both ends are the same program), texts as a length and
// their bytes or UTF-16 units.
class WireWriter {
 public:
  explicit WireWriter(std::string& out) : out_(out) {
    out_.clear();
    Number(std::uint64_t{0});  // the length, filled in by Finish
  }
  template <typename T>
  void Number(T value) {
    out_.append(reinterpret_cast<const char*>(&value), sizeof value);
  }
  void Bytes(std::string_view bytes) {
    Number(std::uint64_t{bytes.size()});
    out_.append(bytes);
  }
  void Units(std::u16string_view units) {
    Number(std::uint64_t{units.size()});
    out_.append(reinterpret_cast<const char*>(units.data()), units.size() * sizeof(char16_t));
  }
  void Values(const ScriptValues& values) {
    Number(std::uint64_t{values.size()});
    for (const auto& [name, value] : values) {
      Units(name);
      Units(value);
    }
  }
  void Finish() {
    const std::uint64_t length = out_.size() - sizeof(std::uint64_t);
    std::memcpy(out_.data(), &length, sizeof length);
  }

 private:
  std::string& out_;
};

// Reads the fields back; once anything is missing, every later field is
// empty and Good() is false.
class WireReader {
 public:
  explicit WireReader(std::string_view in) : in_(in) {}
  template <typename T>
  T Number() {
    T value{};
    const std::string_view bytes = Take(sizeof value);
    if (bytes.size() == sizeof value) std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }
  std::string_view Bytes() { return Take(Number<std::uint64_t>()); }
  std::u16string Units() {
    const std::uint64_t count = Number<std::uint64_t>();
    const std::string_view bytes = count <= in_.size() / sizeof(char16_t) ? Take(count * sizeof(char16_t)) : Fail();
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(units.data(), bytes.data(), bytes.size());
    return units;
  }
  ScriptValues Values() {
    ScriptValues values;
    for (std::uint64_t count = Number<std::uint64_t>(); count > 0 && good_; --count) {
      std::u16string name = Units();
      values[std::move(name)] = Units();
    }
    return values;
  }
  bool Good() const { return good_; }

 private:
  std::string_view Take(std::uint64_t n) {
    if (!good_ || n > in_.size()) return Fail();
    const std::string_view taken = in_.substr(0, n);
    in_.remove_prefix(n);
    return taken;
  }
  std::string_view Fail() {
    good_ = false;
    in_ = {};
    return {};
  }

  std::string_view in_;
  bool good_ = true;
};

bool SendAll(int socket, std::string_view bytes) {
  while (!bytes.empty()) {
    // MSG_NOSIGNAL: a process that is gone is a failed send, never SIGPIPE.
    const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) continue;
    if (sent <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

enum class Received { kAll, kClosed, kTimedOut };

// How long a side keeps asking before it sleeps. With a script process on
// each record the two sides hand work to each other every few microseconds;
// a side that sleeps must be woken, which costs more than the script itself
// and, on a machine whose cores are busy, waits for the scheduler (measured:
// a hundred times longer than asking). A side that finds nothing for this
// long goes to sleep.
constexpr auto kSpin = std::chrono::microseconds(50);

// Reads one message into buffer and sets body to its body, a view into
// buffer. Without a deadline it waits as long as it takes; with one, each
// wait is bounded by the socket's receive timeout (set by the caller), and
// the deadline is checked after it.
Received ReceiveMessage(int socket, std::string& buffer, std::string_view& body,
                        std::optional<Clock::time_point> deadline) {
  // Most messages fit the first read: one call each.
  constexpr std::size_t kFirstRead = std::size_t{1} << 16;
  if (buffer.size() < kFirstRead) buffer.resize(kFirstRead);
  std::size_t have = 0;
  std::uint64_t need = sizeof(std::uint64_t);
  bool lengthKnown = false;
  const auto stopSpinning = Clock::now() + kSpin;
  bool spinning = true;
  while (have < need) {
    const ssize_t got = ::recv(socket, buffer.data() + have, buffer.size() - have, spinning ? MSG_DONTWAIT : 0);
    if (spinning && got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK)) {
      spinning = Clock::now() < stopSpinning;
      continue;
    }
    if (got == 0) return Received::kClosed;
    if (got < 0) {
      if (errno == EINTR) continue;
      if (errno != EAGAIN && errno != EWOULDBLOCK) return Received::kClosed;
    } else {
      have += static_cast<std::size_t>(got);
    }
    if (deadline && Clock::now() >= *deadline && have < need) return Received::kTimedOut;
    if (!lengthKnown && have >= sizeof(std::uint64_t)) {
      std::uint64_t length;
      std::memcpy(&length, buffer.data(), sizeof length);
      if (length > buffer.max_size() - sizeof length) return Received::kClosed;
      need = sizeof length + length;
      lengthKnown = true;
      // Exactly the message: nothing follows it before it is answered.
      buffer.resize(std::max<std::size_t>(buffer.size(), need));
    }
  }
  body = std::string_view(buffer).substr(sizeof(std::uint64_t), need - sizeof(std::uint64_t));
  return Received::kAll;
}

// The script process: answers each run request until the socket closes.
// Nothing here may return or throw into the code that forked it.
[[noreturn]] void Serve(int socket) {
  struct Script {
    std::string source;
    std::uint64_t memoryLimit = 0;
    std::unique_ptr<ScriptEngine> engine;
    std::string compileError;  // a script that does not compile stays so
  };
  try {
    std::map<std::string, Script> scripts;
    std::string buffer, reply, reason;
    std::string_view request;
    while (ReceiveMessage(socket, buffer, request, std::nullopt) == Received::kAll) {
      WireReader in(request);
      const bool withSource = in.Number<std::uint8_t>() != 0;
      const std::string path(in.Bytes());
      Script& script = scripts[path];
      if (withSource) {
        script.source = in.Bytes();
        script.engine.reset();
      }
      script.memoryLimit = in.Number<std::uint64_t>();
      ScriptValues arguments = in.Values();
      bool done = false;
      reason.clear();
      if (!in.Good()) {
        reason = "the request was cut short";
      } else if (!script.compileError.empty() && !withSource) {
        reason = script.compileError;
      } else {
        if (!script.engine) {
          script.engine = std::make_unique<ScriptEngine>(script.memoryLimit);
          script.compileError.clear();
          script.engine->Compile(script.source, path, script.compileError);
        }
        if (!script.compileError.empty()) {
          reason = script.compileError;
        } else {
          done = script.engine->Run(arguments, reason);
          // After the memory limit the heap is spent: the next run starts afresh.
          if (!done && script.engine->OverLimit()) script.engine.reset();
        }
      }
      WireWriter out(reply);
      out.Number(std::uint8_t{done});
      out.Bytes(reason);
      if (done) out.Values(arguments);
      out.Finish();
      if (!SendAll(socket, reply)) break;
    }
  } catch (...) {
    ::_exit(71);
  }
  ::_exit(0);
}

}  // namespace

std::unique_ptr<ScriptProcess> ScriptProcess::Start() {
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return nullptr;
  UniqueFd ours(ends[0]), theirs(ends[1]);
  const std::string program = ScriptHostProgram();
  const std::string parent = std::to_string(::getpid());
  // Spawned, not forked: a copy of a host with threads could inherit a lock
  // that another thread held (in the allocator, say) and wait for it forever.
  // The program gets its end of the socket pair as descriptor 3.
  posix_spawn_file_actions_t actions;
  if (::posix_spawn_file_actions_init(&actions) != 0) return nullptr;
  ::posix_spawn_file_actions_adddup2(&actions, theirs.Get(), kScriptSocket);
  char* argv[] = {const_cast<char*>(program.c_str()), const_cast<char*>(parent.c_str()), nullptr};
  pid_t pid = -1;
  const int spawned = ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv, environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) return nullptr;
  return std::unique_ptr<ScriptProcess>(new ScriptProcess(pid, std::move(ours)));
}

void ServeScripts(const char* parent) {
  // The process must not outlive the thread that started it, even when that
  // thread's process dies without ending it.
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (parent == nullptr || std::to_string(::getppid()) != parent) ::_exit(0);
  // Only its own end stays open: whatever else the host left open is none
  // of its business.
  ::close_range(kScriptSocket + 1, ~0U, 0);
  Serve(kScriptSocket);
}

std::uint64_t ScriptProcess::StoppedRuns() { return stoppedRuns; }

ScriptProcess::~ScriptProcess() {
  socket_.Reset();
  ::kill(pid_, SIGKILL);
  while (::waitpid(pid_, nullptr, 0) < 0 && errno == EINTR) {
  }
}

ScriptProcess::Outcome ScriptProcess::Run(const std::string& path, const std::string& source,
                                          ScriptValues& arguments, std::uint64_t memoryLimit, double seconds,
                                          std::string& reason) {
  const bool withSource = sent_.insert(path).second;
  std::string message;
  WireWriter out(message);
  out.Number(std::uint8_t{withSource});
  out.Bytes(path);
  if (withSource) out.Bytes(source);
  out.Number(memoryLimit);
  out.Values(arguments);
  out.Finish();
  const auto limit = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
  if (limit != receiveTimeout_) {
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(limit).count();
    const timeval timeout{static_cast<time_t>(micros / 1000000), static_cast<suseconds_t>(micros % 1000000)};
    if (::setsockopt(socket_.Get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout) != 0) return Outcome::kStopped;
    receiveTimeout_ = limit;
  }
  const auto deadline = Clock::now() + limit;
  if (!SendAll(socket_.Get(), message)) return Stopped();
  std::string_view reply;
  switch (ReceiveMessage(socket_.Get(), buffer_, reply, deadline)) {
    case Received::kTimedOut:
      return Outcome::kTimedOut;
    case Received::kClosed:
      return Stopped();
    case Received::kAll:
      break;
  }
  WireReader in(reply);
  const bool done = in.Number<std::uint8_t>() != 0;
  reason = in.Bytes();
  ScriptValues left = done ? in.Values() : ScriptValues();
  if (!in.Good()) return Stopped();
  if (!done) return Outcome::kFailed;
  arguments = std::move(left);
  return Outcome::kDone;
}

}  // namespace talp::host
