// Not built yet: every entry point answers 0 and leaves its result untouched.
#include "sources/odbc/odbc_base.h"

namespace talp {

int fetchTableListODBC(const PMString&, const PMString&, const PMString&, WideString&) { return 0; }
int fetchColumnListODBC(const PMString&, const PMString&, const PMString&, const PMString&, WideString&) {
  return 0;
}
int fetchRecordListODBC(const PMString&, const PMString&, const PMString&, const PMString&, const PMString&,
                        const PMString&, const PMString&, const PMString&, WideString&) {
  return 0;
}
int fetchRecordLoopODBC(const PMString&, const PMString&, const PMString&, const PMString&, WideString&,
                        const PMString&) {
  return 0;
}
int fetchSpecificRecordODBC(const PMString&, const PMString&, const PMString&, const PMString&, const PMString&,
                            const PMString&, const PMString&, const PMString&, const WideString&, WideString&) {
  return 0;
}
int fetchRecordGroupLoopODBC(const PMString&, const PMString&, const PMString&, const PMString&, WideString&,
                             const PMString&, const PMString&, const PMString&, const WideString&) {
  return 0;
}
int updateBaseFieldWithInfoODBC(const WideString&, const PMString&, const PMString&, const PMString&,
                                const PMString&, const PMString&, const PMString&, const PMString&) {
  return 0;
}

}  // namespace talp
