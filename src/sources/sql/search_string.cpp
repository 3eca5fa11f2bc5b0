#include "sources/sql/sql_base.h"
#include "sources/sql/sql_text.h"

namespace talp {

void CreateSearchString(const PMString& host, int port, const PMString& user, const PMString& password,
                        const PMString& database, const PMString& table, PMString& search) {
  sql::ApplySearchRules(search, [&] {
    // The search is not a "SELECT " here, so this lists the table's fields.
    WideString columns;
    fetchColumnListSQL(host, port, user, password, database, table, search, columns);
    return columns;
  });
}

}  // namespace talp
