#include "sources/odbc/odbc_base.h"
#include "sources/sql/sql_text.h"

namespace talp {

void CreateODBCSearchString(const PMString& user, const PMString& password, const PMString& dsn,
                            const PMString& table, PMString& search) {
  sql::ApplySearchRules(search, [&] {
    WideString columns;
    fetchColumnListODBC(user, password, dsn, table, columns);
    return columns;
  });
}

}  // namespace talp
