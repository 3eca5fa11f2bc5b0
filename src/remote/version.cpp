#include "talp/version.h"

namespace talp {

const char* LibraryVersion() { return TALP_VERSION; }

}  // namespace talp
