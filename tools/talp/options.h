// Command-line options of the talp tool: one operation, its arguments, the
// connection descriptor and the output mode.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "talp/host_services.h"

namespace talp::cli {

enum class OutputMode { kAuto, kRaw, kUtf16, kPretty, kJson };

struct Options {
  std::string operation;
  std::vector<std::string> arguments;  // the operation's positional arguments
  std::string descriptor;              // raw descriptor with named fields applied
  std::map<std::string, std::string> texts;  // the operation's own options, by long name
  OutputMode output = OutputMode::kAuto;
  host::AnsiText ansi = host::AnsiText::kWindows1252;  // what files without a mark hold
  // The host settings for scripts, when given.
  std::optional<double> scriptSeconds;
  std::optional<std::uint64_t> scriptMegabytes;
  bool help = false;
  bool version = false;
};

// The environment variables talp reads; null when unset.
struct Environment {
  const char* password = nullptr;  // TALP_PASSWORD
  const char* ansi = nullptr;      // TALP_ANSI
};

struct ParseResult {
  Options options;
  std::string error;  // empty when the command line is valid
};

// Parses the arguments that follow the program name. The environment's
// password and "ANSI" setting hold unless --password or --ansi is given. A
// text option whose value begins with "@" is read from that file.
ParseResult ParseOptions(const std::vector<std::string>& args, const Environment& environment);

// The text of --help.
std::string UsageText();

}  // namespace talp::cli
