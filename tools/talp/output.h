// Writing a result text in the tool's output modes.
#pragma once

#include <ostream>

#include "options.h"
#include "talp/wide_string.h"

namespace talp::cli {

// Writes result in mode (kAuto must already be resolved): UTF-8 exactly,
// UTF-16LE without mark, or for people: one record per line, fields in
// aligned columns.
void WriteResult(const WideString& result, OutputMode mode, std::ostream& out);

}  // namespace talp::cli
