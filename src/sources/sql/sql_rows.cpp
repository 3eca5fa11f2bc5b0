#include "sources/sql/sql_rows.h"

#include "host/utf.h"
#include "sources/sql/mysql_connection.h"

namespace talp::sql {

void LoopRecord(MYSQL_RES* result, MYSQL_ROW row, const unsigned long* lengths, std::string& bytes,
                std::u16string& record) {
  bytes.clear();
  for (unsigned i = 0, n = mysql_num_fields(result); i < n; ++i) {
    AppendProtected(bytes, FieldBytes(row, lengths, i));
    bytes.push_back('\t');
  }
  record.clear();
  utf::DecodeUTF8(bytes, record);
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

}  // namespace talp::sql
