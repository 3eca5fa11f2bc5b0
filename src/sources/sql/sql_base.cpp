// Not built yet: every entry point answers 0 and leaves its result untouched.
#include "sources/sql/sql_base.h"

namespace talp {

int fetchDatabaseListSQL(const PMString&, int, const PMString&, const PMString&, WideString&) { return 0; }
int fetchTableListSQL(const PMString&, int, const PMString&, const PMString&, const PMString&, WideString&) {
  return 0;
}
int fetchColumnListSQL(const PMString&, int, const PMString&, const PMString&, const PMString&, const PMString&,
                       const PMString&, WideString&) {
  return 0;
}
int ConnectWithInfoSQL(const WideString&, const PMString&, int, const PMString&, const PMString&, const PMString&,
                       const PMString&) {
  return 0;
}
int fetchRecordListSQL(const PMString&, int, const PMString&, const PMString&, const PMString&, const PMString&,
                       const PMString&, const PMString&, const PMString&, const PMString&, WideString&) {
  return 0;
}
int fetchRecordLoopSQL(const PMString&, int, const PMString&, const PMString&, const PMString&, const PMString&,
                       WideString&, const PMString&) {
  return 0;
}
int fetchSpecificRecordSQL(const PMString&, int, const PMString&, const PMString&, const PMString&, const PMString&,
                           const PMString&, const PMString&, const PMString&, const PMString&, const WideString&,
                           WideString&) {
  return 0;
}
int fetchRecordGroupLoopSQL(const PMString&, int, const PMString&, const PMString&, const PMString&,
                            const PMString&, WideString&, const PMString&, const PMString&, const PMString&,
                            const WideString&) {
  return 0;
}
int updateBaseFieldWithInfoSQL(const WideString&, const PMString&, const PMString&, const PMString&, int,
                               const PMString&, const PMString&, const PMString&, const PMString&,
                               const PMString&) {
  return 0;
}

}  // namespace talp
