#include "talp/host_services.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "host/script_runner.h"

namespace talp::host {

PMString ScriptArgumentStore::Get(const PMString& name) const {
  const auto it = values_.find(name);
  return it == values_.end() ? PMString() : it->second;
}

void ScriptArgumentStore::Restore() {
  if (saved_.empty()) return;
  values_ = std::move(saved_.back());
  saved_.pop_back();
}

void HostServices::Progress(const char*, std::uint64_t, std::uint64_t) {}

void HostServices::RemarkOnFile(const PMString&, FileRemark) {}

void PlatformHostServices::InformationAlert(const PMString& message) {
  // One alert is one line: line breaks inside the message become blanks.
  std::string line = message.GrabCString();
  for (char& c : line) {
    if (c == '\r' || c == '\n') c = ' ';
  }
  std::fprintf(stderr, "alert: %s\n", line.c_str());
  std::fflush(stderr);
}

void PlatformHostServices::ExitProcess(int status) {
  std::fflush(nullptr);
  std::exit(status);
}

PlatformHostServices::PlatformHostServices() {
  static std::atomic<std::uint64_t> created{0};
  id_ = ++created;
}

ScriptArgumentStore& PlatformHostServices::ScriptArguments() {
  // A thread's store starts empty for each services object.
  thread_local struct {
    std::uint64_t owner = 0;
    ScriptArgumentStore store;
  } local;
  if (local.owner != id_) {
    local.owner = id_;
    local.store = ScriptArgumentStore();
  }
  return local.store;
}

std::unique_ptr<IScriptRunner> PlatformHostServices::FindScriptRunner(const PMString& scriptPath) {
  return FindJavaScriptRunner(scriptPath);
}

namespace {

HostServices*& Current() {
  static PlatformHostServices platform;
  static HostServices* current = &platform;
  return current;
}

}  // namespace

HostServices& Host() { return *Current(); }

ScopedHostServices::ScopedHostServices(HostServices& services) : previous_(Current()) { Current() = &services; }

ScopedHostServices::~ScopedHostServices() { Current() = previous_; }

std::optional<std::string> ReadWholeFile(const PMString& path) {
  const auto stream = Host().OpenFileRead(path);
  if (!stream || !stream->IsGood()) return std::nullopt;
  std::string bytes;
  const std::int64_t size = stream->Size();
  if (size > 0) bytes.reserve(static_cast<std::size_t>(size));
  char chunk[1 << 16];
  while (const std::size_t got = stream->Read(chunk, sizeof chunk)) bytes.append(chunk, got);
  return bytes;
}

void EndProcess(int status) {
  Host().ExitProcess(status);
  std::_Exit(status);  // a host that returns from ExitProcess breaks its contract
}

}  // namespace talp::host
