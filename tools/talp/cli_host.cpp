#include "cli_host.h"

namespace talp::cli {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

std::string FormatProgress(const char* what, std::uint64_t done, std::uint64_t total) {
  if (total == 0) return std::string(what) + " " + std::to_string(done);
  const std::uint64_t percent = done >= total ? 100 : done * 100 / total;
  return std::string(what) + " " + std::to_string(percent) + "%";
}

CliHost::CliHost(std::ostream& err, std::FILE* terminal, host::AnsiText ansi)
    : err_(err), terminal_(terminal), ansi_(ansi), start_(steady_clock::now()), lastDrawn_(start_) {}

CliHost::~CliHost() { Erase(); }

void CliHost::InformationAlert(const PMString& message) {
  if (silent_) return;
  const std::lock_guard lock(mutex_);
  Erase();
  PlatformHostServices::InformationAlert(message);
}

void CliHost::Progress(const char* what, std::uint64_t done, std::uint64_t total) {
  if (terminal_ == nullptr) return;
  const std::lock_guard lock(mutex_);
  const auto now = steady_clock::now();
  if (now - start_ < milliseconds(1000) || now - lastDrawn_ < milliseconds(100)) return;
  lastDrawn_ = now;
  std::fprintf(terminal_, "\r\033[K%s", FormatProgress(what, done, total).c_str());
  std::fflush(terminal_);
  shown_ = true;
}

void CliHost::RemarkOnFile(const PMString& path, host::FileRemark remark) {
  switch (remark) {
    case host::FileRemark::kValidUTF8ReadAsWindows1252: {
      const std::string name = path.GrabCString();
      {
        const std::lock_guard lock(mutex_);
        if (!remarked_.insert(name).second) return;
      }
      Note(name + " has no byte-order mark and was read as Windows-1252, but it is valid UTF-8;" +
           " to read it as UTF-8, use --ansi utf-8 (or TALP_ANSI=utf-8)");
      return;
    }
  }
}

void CliHost::Note(const std::string& text) {
  const std::lock_guard lock(mutex_);
  Erase();
  err_ << "talp: note: " << text << '\n' << std::flush;
}

void CliHost::Erase() {
  if (!shown_) return;
  std::fprintf(terminal_, "\r\033[K");
  std::fflush(terminal_);
  shown_ = false;
}

}  // namespace talp::cli
