// Handing text to a user's host script for manipulation.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Runs the host script at scriptPath with text in the script argument
// "scriptArguments", the only argument set for the run, and replaces text by
// what the script leaves there. The host's other script arguments are saved
// before and put back after, also when the runner throws. Without a runner
// for the file, and when the script fails, text is unchanged.
void UseScriptToManipulate(const PMString& scriptPath, WideString& text);

}  // namespace talp
