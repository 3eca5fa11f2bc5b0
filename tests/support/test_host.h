// Host services for tests: alerts and file remarks are recorded instead of
// shown, a process exit throws ProcessExit instead of ending the test run,
// files are the platform's (or bytes in memory), settings can be changed, and
// scripts run in the platform's runner. Installs itself for its lifetime.
#pragma once

#include <algorithm>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "talp/host_services.h"

namespace talp::test {

struct ProcessExit {
  int status;
};

class TestHost : public host::PlatformHostServices {
 public:
  TestHost() : scope_(*this) {}

  void InformationAlert(const PMString& message) override {
    const std::lock_guard lock(mutex_);  // file operations may run on several threads
    alerts.push_back(message.GrabCString());
  }
  void RemarkOnFile(const PMString& path, host::FileRemark) override {
    const std::lock_guard lock(mutex_);
    remarks.push_back(path.GrabCString());
  }
  [[noreturn]] void ExitProcess(int status) override { throw ProcessExit{status}; }
  PMString LocalizedDecimal() const override { return localizedDecimal; }
  host::AnsiText Ansi() const override { return ansi; }
  std::chrono::milliseconds FileLockWait() const override { return fileLockWait; }

  std::vector<std::string> alerts;
  std::vector<std::string> remarks;  // paths remarked on
  host::AnsiText ansi = host::AnsiText::kWindows1252;
  std::chrono::milliseconds fileLockWait{30000};
  PMString localizedDecimal = ".";

 private:
  std::mutex mutex_;
  host::ScopedHostServices scope_;
};

// Bytes in memory behind a read stream of unknown size that hands out at
// most chunk bytes per read, so that pieces end inside characters and lines.
// A stream that is not good is so from the start; one that fails at its end
// turns bad with the read that gives its last bytes, as no real file does.
class MemoryReadStream : public host::FileReadStream {
 public:
  MemoryReadStream(std::string_view bytes, bool good, std::size_t chunk, bool failsAtEnd = false)
      : bytes_(bytes), good_(good), failsAtEnd_(failsAtEnd), chunk_(chunk) {}
  bool IsGood() const override { return good_ && !(failsAtEnd_ && at_ == bytes_.size()); }
  std::int64_t Size() const override { return -1; }
  bool Seek(std::int64_t) override { return false; }
  std::size_t Read(void* buffer, std::size_t n) override {
    const std::size_t got = bytes_.copy(static_cast<char*>(buffer), std::min(n, chunk_), at_);
    at_ += got;
    return got;
  }

 private:
  std::string_view bytes_;
  bool good_, failsAtEnd_;
  std::size_t chunk_, at_ = 0;
};

// A test host whose every file, whatever its path, reads as bytes.
class MemoryFileHost : public TestHost {
 public:
  MemoryFileHost(std::string_view bytes, std::size_t chunk, bool good = true, bool failsAtEnd = false)
      : bytes_(bytes), chunk_(chunk), good_(good), failsAtEnd_(failsAtEnd) {}
  std::unique_ptr<host::FileReadStream> OpenFileRead(const PMString&) override {
    return std::make_unique<MemoryReadStream>(bytes_, good_, chunk_, failsAtEnd_);
  }

 private:
  std::string_view bytes_;
  std::size_t chunk_;
  bool good_, failsAtEnd_;
};

}  // namespace talp::test
