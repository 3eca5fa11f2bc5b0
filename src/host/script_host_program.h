// Where the program talp-script-host is.
#pragma once

#include <string>

namespace talp::host {

// The environment variable TALP_SCRIPT_HOST when set; otherwise the first
// executable talp-script-host found beside the code that runs (the library,
// the plug-in module or the program that holds it, and the running program
// itself) as the build folder and an installation lay it out: in the same
// folder, in its "talpremote" folder, in "../lib/talpremote" or in "..".
// Nothing is fixed when the library is built, so an installed tree can be
// moved. A bare "talp-script-host" when none is found (it then fails to start).
std::string ScriptHostProgram();

}  // namespace talp::host
