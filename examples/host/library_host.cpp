// Embeds talpremote by linking the library: a TALPRemote without a host
// object answers the operations directly.
//
// Usage: library_host CATALOGUE
#include <iostream>

#include "print_catalogue.h"
#include "talp/talp.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: library_host CATALOGUE (talpremote " << talp::LibraryVersion() << ")\n";
    return 2;
  }
  TALPRemote remote;
  return example::PrintCatalogue(remote, argv[1]);
}
