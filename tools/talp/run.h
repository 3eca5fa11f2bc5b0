// The talp tool: runs one provider operation from a command line.
#pragma once

#include <cstdio>
#include <ostream>
#include <string>
#include <vector>

#include "options.h"
#include "talp/italp_remote.h"

namespace talp::cli {

// Parses args (without the program name), runs the operation on remote and
// writes its result to out, usage errors and notes to err; alerts go to
// standard error. outIsTerminal picks the default output mode; progress is
// shown on terminal when it is not null. The operation runs with talp's own
// host services installed. Returns the exit status: the operation's status (0
// where it has none), 2 for a usage error.
int RunTalp(ITALPRemote& remote, const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
            bool outIsTerminal, const Environment& environment, std::FILE* terminal = nullptr);

}  // namespace talp::cli
