// talp: runs one provider operation from the command line and prints its result.
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "run.h"
#include "talp/talp_remote.h"

int main(int argc, char** argv) {
  const std::vector<std::string> args(argv + 1, argv + argc);
  TALPRemote remote;
  return talp::cli::RunTalp(remote, args, std::cout, std::cerr, ::isatty(STDOUT_FILENO) == 1,
                            std::getenv("TALP_PASSWORD"));
}
