// The talp tool: runs one provider operation from a command line.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "talp/italp_remote.h"

namespace talp::cli {

// Parses args (without the program name), runs the operation on remote and
// writes its result to out, usage errors to err. outIsTerminal picks the
// default output mode. Returns the exit status: the operation's status (0
// where it has none), 2 for a usage error.
int RunTalp(ITALPRemote& remote, const std::vector<std::string>& args, std::ostream& out, std::ostream& err,
            bool outIsTerminal, const char* envPassword);

}  // namespace talp::cli
