// talp-script-host: the process the script engines of one session run in
// (see script_process.h). Started by the library, never by people.
#include "host/script_process.h"

int main(int argc, char** argv) { talp::host::ServeScripts(argc > 1 ? argv[1] : nullptr); }
