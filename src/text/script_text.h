// Handing text to a user's host script for manipulation.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Runs the host script at scriptPath with text in the script argument
// "scriptArguments" and replaces text by what the script leaves there. The
// host's other script arguments are saved before and restored after. Without
// a runner for the file, text is unchanged.
void UseScriptToManipulate(const PMString& scriptPath, WideString& text);

}  // namespace talp
