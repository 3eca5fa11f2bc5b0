// The host services of the talp tool: the platform's, with the settings of
// the command line, notes on the error stream and progress on a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <mutex>
#include <ostream>
#include <set>
#include <string>

#include "talp/host_services.h"

namespace talp::cli {

// "records 42%" (or "records 1234" when the total is unknown).
std::string FormatProgress(const char* what, std::uint64_t done, std::uint64_t total);

// Alerts go to standard error as the platform writes them. Notes go to err as
// "talp: note: TEXT" lines, a remark on a file once per file. With a
// terminal, a progress line shows there once work has taken more than a
// second, redrawn at most ten times a second and erased before anything else
// is written and when the object goes away.
class CliHost : public host::PlatformHostServices {
 public:
  CliHost(std::ostream& err, std::FILE* terminal, host::AnsiText ansi);
  ~CliHost() override;

  void InformationAlert(const PMString& message) override;
  void Progress(const char* what, std::uint64_t done, std::uint64_t total) override;
  host::AnsiText Ansi() const override { return ansi_; }
  void RemarkOnFile(const PMString& path, host::FileRemark remark) override;

  void Note(const std::string& text);
  // While silent, alerts are not shown: talp's own extra calls (the column
  // names for --json) must not repeat what the operation said.
  void SilenceAlerts(bool silent) { silent_ = silent; }

 private:
  void Erase();

  std::ostream& err_;
  std::FILE* terminal_;
  host::AnsiText ansi_;
  std::mutex mutex_;  // file operations may report from several threads
  std::set<std::string> remarked_;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point lastDrawn_;
  bool shown_ = false;
  bool silent_ = false;  // set and read on the operation's thread, where alerts come from
};

}  // namespace talp::cli
