// Progress of long operations, shown on a terminal's standard error.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

#include "talp/host_services.h"

namespace talp::cli {

// "records 42%" (or "records 1234" when the total is unknown).
std::string FormatProgress(const char* what, std::uint64_t done, std::uint64_t total);

// The platform's services, plus a progress line on a terminal once work has
// taken more than a second; redrawn at most ten times a second and erased
// when the object goes away.
class TerminalProgressHost : public host::PlatformHostServices {
 public:
  explicit TerminalProgressHost(std::FILE* terminal);
  ~TerminalProgressHost() override;

  void Progress(const char* what, std::uint64_t done, std::uint64_t total) override;
  void InformationAlert(const PMString& message) override;

 private:
  void Erase();

  std::FILE* terminal_;
  std::chrono::steady_clock::time_point start_;
  std::chrono::steady_clock::time_point lastDrawn_;
  bool shown_ = false;
};

}  // namespace talp::cli
