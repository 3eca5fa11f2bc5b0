#include "sources/sql/sql_rows.h"

namespace talp::sql {

void AppendProtected(std::string& out, std::string_view value) {
  for (;;) {
    const std::size_t special = value.find_first_of("\r\t");
    if (special == std::string_view::npos) break;
    out.append(value.substr(0, special)).append(value[special] == '\r' ? "<br>" : "<tb>");
    value.remove_prefix(special + 1);
  }
  out.append(value);
}

long FieldPosition(MYSQL_RES* result, const PMString& name) {
  if (result == nullptr) return -1;
  const std::string wanted = name.GrabCString();
  const MYSQL_FIELD* fields = mysql_fetch_fields(result);
  for (unsigned i = 0, n = mysql_num_fields(result); i < n; ++i) {
    if (std::string_view(fields[i].name, fields[i].name_length) == wanted) return static_cast<long>(i);
  }
  return -1;
}

bool AsksForGrouping(const PMString& groupField) {
  return !groupField.IsEmpty() && groupField != PMString("None");
}

}  // namespace talp::sql
