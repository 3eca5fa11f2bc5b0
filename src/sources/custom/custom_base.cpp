// Not built yet: every entry point answers 0 and leaves its result untouched.
#include "sources/custom/custom_base.h"

namespace talp {

int fetchColumnListCustom(const PMString&, const PMString&, WideString&) { return 0; }
int fetchRecordLoopCustom(const PMString&, WideString&, const PMString&) { return 0; }
int fetchSpecificRecordCustom(const PMString&, const PMString&, const PMString&, const WideString&, WideString&) {
  return 0;
}
int fetchRecordGroupLoopCustom(const PMString&, WideString&, const PMString&, const PMString&, const PMString&,
                               const WideString&) {
  return 0;
}

}  // namespace talp
