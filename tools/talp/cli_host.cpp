#include "progress.h"

namespace talp::cli {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::string FormatProgress(const char* what, std::uint64_t done, std::uint64_t total) {
  if (total == 0) return std::string(what) + " " + std::to_string(done);
  const std::uint64_t percent = done >= total ? 100 : done * 100 / total;
  return std::string(what) + " " + std::to_string(percent) + "%";
}

TerminalProgressHost::TerminalProgressHost(std::FILE* terminal)
    : terminal_(terminal), start_(steady_clock::now()), lastDrawn_(start_) {}

TerminalProgressHost::~TerminalProgressHost() { Erase(); }

void TerminalProgressHost::Progress(const char* what, std::uint64_t done, std::uint64_t total) {
  const auto now = steady_clock::now();
  if (now - start_ < milliseconds(1000) || now - lastDrawn_ < milliseconds(100)) return;
  lastDrawn_ = now;
  std::fprintf(terminal_, "\r\033[K%s", FormatProgress(what, done, total).c_str());
  std::fflush(terminal_);
  shown_ = true;
}

void TerminalProgressHost::InformationAlert(const PMString& message) {
  Erase();
  PlatformHostServices::InformationAlert(message);
}

void TerminalProgressHost::Erase() {
  if (!shown_) return;
  std::fprintf(terminal_, "\r\033[K");
  std::fflush(terminal_);
  shown_ = false;
}

}  // namespace talp::cli
