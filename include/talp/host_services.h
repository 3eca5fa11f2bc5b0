// The host services the system uses: alerts, the process exit, file streams,
// the script runner with its named argument store, and host settings.
//
// Everything goes through one replaceable HostServices object, so that a real
// host, the command-line tool or a test can supply its own. The default one is
// for this platform (alerts on standard error, real exit, POSIX files, a
// JavaScript runner). Install another with ScopedHostServices; the services
// object itself must outlive its installation. Installing is not thread-safe.
//
// Threads: the system calls the services only from a thread that runs a
// provider operation, never from the worker threads it starts itself (host
// settings are read once on the operation's thread and passed to them).
// File operations may run on several threads at once, so the file services,
// the settings, alerts, remarks and Progress must allow concurrent calls. The
// MySQL and ODBC operations run one at a time.
// The platform's script arguments are per thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "talp/pm_string.h"

namespace talp::host {

// A file open for reading, positioned at its start.
class FileReadStream {
 public:
  virtual ~FileReadStream() = default;
  // False when the file could not be read, also once a read has failed part
  // way (Read then gave fewer bytes than the file holds).
  virtual bool IsGood() const = 0;
  virtual std::int64_t Size() const = 0;  // -1 when unknown
  // Moves to offset from the start; false when that is not possible.
  virtual bool Seek(std::int64_t offset) = 0;
  // Reads up to n bytes into buffer; returns how many were read (0 at the end).
  virtual std::size_t Read(void* buffer, std::size_t n) = 0;
};

// A file being written. Nothing reaches the target path until Commit, which
// replaces it in one step (data flushed to disk first, permissions kept).
// Destroying an uncommitted stream leaves the target as it was.
class FileWriteStream {
 public:
  virtual ~FileWriteStream() = default;
  // Appends n bytes; false after any failure (a full disk, say).
  virtual bool Write(const void* data, std::size_t n) = 0;
  // Flushes and puts the file in place; false when the target was not replaced.
  virtual bool Commit() = 0;
};

// What text files without a byte-order mark hold: the host setting for what
// "ANSI" means. Windows-1252 always, or UTF-8 when every byte of the file is
// valid UTF-8 (and Windows-1252 otherwise).
enum class AnsiText { kWindows1252, kUTF8WhereValid };

// A remark on a data file that is no failure: the operation goes on.
enum class FileRemark {
  // Read as Windows-1252 (the file has no mark), though all of it is valid
  // UTF-8 with characters beyond ASCII: it was probably written as UTF-8.
  kValidUTF8ReadAsWindows1252,
};

// The exclusive update lock of one data file, released when destroyed.
class FileUpdateLock {
 public:
  virtual ~FileUpdateLock() = default;
};

struct FileLockAttempt {
  std::unique_ptr<FileUpdateLock> lock;  // null when the lock was not had
  bool timedOut = false;                 // then: someone else held it all the time
  std::string failure;                   // otherwise: why not, for the user
};

// Runs one kind of script file for the host.
class IScriptRunner {
 public:
  virtual ~IScriptRunner() = default;
  virtual bool CanRunFile(const PMString& scriptPath) = 0;
  // Runs the file with the host's script arguments. The outcome of the run
  // is the script's business: nothing is returned, and a run that fails
  // leaves the arguments as they were before it.
  virtual void RunFile(const PMString& scriptPath) = 0;
};

// The host's named script arguments, through which scripts receive and
// return text. Save and Restore bracket one run so that its values do not
// reach the next one.
class ScriptArgumentStore {
 public:
  void Set(const PMString& name, const PMString& value) { values_[name] = value; }
  // The value of name, or an empty text when it is not set.
  PMString Get(const PMString& name) const;
  const std::map<PMString, PMString>& Values() const { return values_; }
  void Save() { saved_.push_back(values_); }
  void Restore();
  void ClearAll() { values_.clear(); }

 private:
  std::map<PMString, PMString> values_;
  std::vector<std::map<PMString, PMString>> saved_;
};

// Brackets one script run: saves the store's arguments and empties it, so
// that the run starts with only what its caller sets, and puts them back
// when it goes, however the run ends.
class ScriptArgumentsScope {
 public:
  explicit ScriptArgumentsScope(ScriptArgumentStore& store) : store_(store) {
    store_.Save();
    store_.ClearAll();
  }
  ~ScriptArgumentsScope() { store_.Restore(); }
  ScriptArgumentsScope(const ScriptArgumentsScope&) = delete;
  ScriptArgumentsScope& operator=(const ScriptArgumentsScope&) = delete;

 private:
  ScriptArgumentStore& store_;
};

// The host settings that bound one script run: a run that takes longer, or
// whose engine needs more memory, fails.
struct ScriptLimits {
  double seconds = 10;
  std::uint64_t megabytes = 256;
};

class HostServices {
 public:
  virtual ~HostServices() = default;

  // Shows a message to the user; returns when it has been shown.
  virtual void InformationAlert(const PMString& message) = 0;
  // Ends the process with status. The platform host really exits; a test
  // host may throw instead, but must not return.
  virtual void ExitProcess(int status) = 0;

  // Opens path for reading; null when it cannot be opened.
  virtual std::unique_ptr<FileReadStream> OpenFileRead(const PMString& path) = 0;
  // Starts a replacement of path, tagged with the four-character type and
  // creator codes where the file system keeps them; null when impossible.
  virtual std::unique_ptr<FileWriteStream> OpenFileWrite(const PMString& path, std::uint32_t fileType,
                                                         std::uint32_t creator) = 0;
  // Whether anything is at path, readable or not; true when that cannot be told.
  virtual bool FileExists(const PMString& path) = 0;
  // Takes the exclusive lock that updates of the data file at path hold while
  // they read, change and replace it, against other threads and processes;
  // waits up to wait for it. Readers take no lock.
  virtual FileLockAttempt LockFileForUpdate(const PMString& path, std::chrono::milliseconds wait) = 0;

  // A runner able to run scriptPath, or null when the host has none.
  virtual std::unique_ptr<IScriptRunner> FindScriptRunner(const PMString& scriptPath) = 0;
  // The store the runners read; the arguments of the calling thread.
  virtual ScriptArgumentStore& ScriptArguments() = 0;
  const ScriptLimits& GetScriptLimits() const { return scriptLimits_; }
  void SetScriptLimits(const ScriptLimits& limits) { scriptLimits_ = limits; }

  // The host setting "localizedDecimal": the user's decimal separator.
  virtual PMString LocalizedDecimal() const = 0;
  // What "ANSI" means for text files without a mark; Windows-1252 by default.
  virtual AnsiText Ansi() const { return AnsiText::kWindows1252; }
  // How long a field update waits for another update of the same file; 30 s by default.
  virtual std::chrono::milliseconds FileLockWait() const { return std::chrono::seconds(30); }
  // Tells the user something about a data file without interrupting the
  // operation; the default says nothing.
  virtual void RemarkOnFile(const PMString& path, FileRemark remark);

  // How far a long piece of work has come: done of total units of what (such
  // as "records"). Called often, so it must be cheap; hosts may show it. The
  // default shows nothing.
  virtual void Progress(const char* what, std::uint64_t done, std::uint64_t total);

 private:
  ScriptLimits scriptLimits_;
};

// The services of this platform: alerts as "alert: MESSAGE" lines on standard
// error, a real exit, POSIX files (update locks on a lock file beside the data
// file), "." as decimal separator, and a JavaScript runner for ".js" and
// ".jsx" files. Each thread has its own script arguments, so that operations
// on separate threads never see each other's.
class PlatformHostServices : public HostServices {
 public:
  PlatformHostServices();
  void InformationAlert(const PMString& message) override;
  void ExitProcess(int status) override;
  std::unique_ptr<FileReadStream> OpenFileRead(const PMString& path) override;
  std::unique_ptr<FileWriteStream> OpenFileWrite(const PMString& path, std::uint32_t fileType,
                                                 std::uint32_t creator) override;
  bool FileExists(const PMString& path) override;
  FileLockAttempt LockFileForUpdate(const PMString& path, std::chrono::milliseconds wait) override;
  std::unique_ptr<IScriptRunner> FindScriptRunner(const PMString& scriptPath) override;
  ScriptArgumentStore& ScriptArguments() override;
  PMString LocalizedDecimal() const override { return "."; }

 private:
  std::uint64_t id_;  // tells the stores of this object from those of earlier ones
};

// The services in force.
HostServices& Host();

// Installs services for the lifetime of this object, then puts back the
// previous ones.
class ScopedHostServices {
 public:
  explicit ScopedHostServices(HostServices& services);
  ~ScopedHostServices();
  ScopedHostServices(const ScopedHostServices&) = delete;
  ScopedHostServices& operator=(const ScopedHostServices&) = delete;

 private:
  HostServices* previous_;
};

// The whole content of the file at path, read through the host's streams;
// nullopt when it cannot be opened.
std::optional<std::string> ReadWholeFile(const PMString& path);

// Ends the process through the host. Used by the system's two deliberate
// exits; never returns.
[[noreturn]] void EndProcess(int status);

// Packs a four-character code such as "TEXT" into its 32-bit value.
constexpr std::uint32_t FourCharCode(const char (&code)[5]) {
  return (std::uint32_t{static_cast<unsigned char>(code[0])} << 24) |
         (std::uint32_t{static_cast<unsigned char>(code[1])} << 16) |
         (std::uint32_t{static_cast<unsigned char>(code[2])} << 8) | std::uint32_t{static_cast<unsigned char>(code[3])};
}

}  // namespace talp::host

// The host's modal information alert.
class CAlert {
 public:
  static void InformationAlert(const PMString& message) { talp::host::Host().InformationAlert(message); }
};
