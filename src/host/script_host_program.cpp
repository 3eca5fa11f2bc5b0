#include "host/script_host_program.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>

#include "host/paths.h"

namespace talp::host {
namespace {

constexpr const char* kName = "talp-script-host";

// The folder of path with its links resolved; empty when there is none.
std::string RealFolderOf(const char* path) {
  char resolved[PATH_MAX];
  if (path == nullptr || ::realpath(path, resolved) == nullptr) return {};
  return FolderOf(resolved);
}

}  // namespace

std::string ScriptHostProgram() {
  const char* chosen = std::getenv("TALP_SCRIPT_HOST");
  if (chosen != nullptr && *chosen != '\0') return chosen;
  Dl_info code{};
  const bool found = ::dladdr(reinterpret_cast<void*>(&ScriptHostProgram), &code) != 0;
  for (const std::string& folder : {RealFolderOf(found ? code.dli_fname : nullptr), RealFolderOf("/proc/self/exe")}) {
    if (folder.empty()) continue;
    for (const char* place : {"/", "/talpremote/", "/../lib/talpremote/", "/../"}) {
      const std::string candidate = folder + place + kName;
      if (::access(candidate.c_str(), X_OK) == 0) return candidate;
    }
  }
  return kName;
}

}  // namespace talp::host
