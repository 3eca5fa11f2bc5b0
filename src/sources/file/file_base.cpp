// The File group loop is built with word styling; until then it answers 0
// and leaves its result untouched.
#include "sources/file/file_base.h"

namespace talp {

int fetchRecordGroupLoopFile(const PMString&, const PMString&, WideString&, const PMString&, const PMString&,
                             const WideString&) {
  return 0;
}

}  // namespace talp
