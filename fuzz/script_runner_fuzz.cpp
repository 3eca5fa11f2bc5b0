// Feeds arbitrary bytes as a script's source and arguments through the
// platform's script runner, as a "Script" process and as a data script, and
// the source's bytes through the engine's text conversion.
// Input: source NUL text NUL query (the texts as UTF-8).
//
// A script may do anything a script can: fail, loop until its time is up,
// exhaust its memory. What must never happen is the script process dying on
// its own (a fault in the engine or in the code around it, which the
// sanitizers report in that process) or anything going wrong here.
#include <stdlib.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "fuzz_input.h"
#include "host/script_process.h"
#include "host/script_runner.h"
#include "host/utf.h"
#include "sources/custom/custom_data.h"
#include "talp/host_services.h"
#include "text/script_text.h"

namespace {

class FuzzHost : public talp::host::PlatformHostServices {
 public:
  FuzzHost() { SetScriptLimits({.seconds = 1, .megabytes = 64}); }
  void InformationAlert(const PMString&) override {}
};

std::string folder;

void RemoveFolder() { std::filesystem::remove_all(folder); }

const std::string& ScriptPath() {
  static const std::string path = [] {
    folder = (std::filesystem::temp_directory_path() / "talp-fuzz-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) std::abort();
    std::atexit(RemoveFolder);
    return folder + "/fuzz.js";
  }();
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto parts = SplitAtNul<3>(data, size);
  // Any units survive the engine's form unchanged.
  std::u16string units, back;
  talp::utf::DecodeUTF8(parts[0], units);
  talp::utf::DecodeCESU8(parts[0], units);
  std::string cesu;
  talp::utf::EncodeCESU8(units, cesu);
  talp::utf::DecodeCESU8(cesu, back);
  if (back != units) std::abort();

  static FuzzHost host;
  static talp::host::ScopedHostServices installed(host);
  std::ofstream(ScriptPath(), std::ios::binary | std::ios::trunc) << parts[0];
  const talp::host::ScriptScope operation;
  WideString text(parts[1]);
  talp::UseScriptToManipulate(PMString(ScriptPath()), text);
  WideString header, lines;
  talp::GetCustomDataFromScript(PMString(ScriptPath()), header, lines, PMString(parts[2]), PMString(), PMString());
  if (talp::host::ScriptProcess::StoppedRuns() != 0) std::abort();
  return 0;
}
