// talp: runs one provider operation from the command line and prints its result.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "run.h"
#include "talp/talp_remote.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  // Progress is for people: only when standard error is a terminal.
  std::FILE* const terminal = ::isatty(STDERR_FILENO) == 1 ? stderr : nullptr;
  const talp::cli::Environment environment{.password = std::getenv("TALP_PASSWORD"),
                                           .ansi = std::getenv("TALP_ANSI")};
  std::ios::sync_with_stdio(false);
  TALPRemote remote;
  try {
    return talp::cli::RunTalp(remote, args, std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1, environment,
                              terminal);
  } catch (const std::bad_alloc&) {
    // A result larger than the memory the system grants: say so rather than abort.
    std::cerr << "talp: not enough memory for the result\n";
    return 3;
  }
}
