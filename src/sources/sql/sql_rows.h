// Turning the rows of a MySQL result into the source's texts.
#pragma once

#include <mysql.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "talp/host_services.h"
#include "sources/sql/sql_text.h"
#include "talp/pm_string.h"

namespace talp::sql {

// Replaces record with row as a loop record: every value protected, every
// field followed by a TAB (so that computed fields line up after the last),
// decoded from UTF-8. bytes is scratch space reused from row to row.
void LoopRecord(MYSQL_RES* result, MYSQL_ROW row, const unsigned long* lengths, std::string& bytes,
                std::u16string& record);

// The position (0-based) of the field of result named name, or -1.
long FieldPosition(MYSQL_RES* result, const PMString& name);

// The rows of a stored result one by one, reporting progress on long results.
class RowCursor {
 public:
  explicit RowCursor(MYSQL_RES* result) : result_(result), total_(result ? mysql_num_rows(result) : 0) {}
  // The next row and its value lengths; false at the end or without a result.
  bool Next(MYSQL_ROW& row, const unsigned long*& lengths) {
    if (result_ == nullptr || (row = mysql_fetch_row(result_)) == nullptr) return false;
    lengths = mysql_fetch_lengths(result_);
    if (++done_ % (1 << 16) == 0) host::Host().Progress("records", done_, total_);
    return true;
  }

 private:
  MYSQL_RES* result_;
  std::uint64_t total_;
  std::uint64_t done_ = 0;
};

// Calls visit(row, lengths) for every row of result.
template <typename Visit>
void ForEachRow(MYSQL_RES* result, Visit&& visit) {
  RowCursor rows(result);
  MYSQL_ROW row;
  const unsigned long* lengths;
  while (rows.Next(row, lengths)) visit(row, lengths);
}

}  // namespace talp::sql
