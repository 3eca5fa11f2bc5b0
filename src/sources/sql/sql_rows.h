// Turning the rows of a MySQL result into the source's texts.
#pragma once

#include <mysql.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "talp/host_services.h"
#include "talp/pm_string.h"

namespace talp::sql {

// Appends value with every CR written as "<br>" and every TAB as "<tb>", so
// that it can stand in a TAB- or CR-separated text.
void AppendProtected(std::string& out, std::string_view value);

// Replaces record with row as a loop record: every value protected, every
// field followed by a TAB (so that computed fields line up after the last),
// decoded from UTF-8. bytes is scratch space reused from row to row.
void LoopRecord(MYSQL_RES* result, MYSQL_ROW row, const unsigned long* lengths, std::string& bytes,
                std::u16string& record);

// The position (0-based) of the field of result named name, or -1.
long FieldPosition(MYSQL_RES* result, const PMString& name);

// Calls visit(row, lengths) for every row of result, reporting progress on
// long results.
template <typename Visit>
void ForEachRow(MYSQL_RES* result, Visit&& visit) {
  if (result == nullptr) return;
  const std::uint64_t total = mysql_num_rows(result);
  std::uint64_t done = 0;
  while (MYSQL_ROW row = mysql_fetch_row(result)) {
    visit(row, mysql_fetch_lengths(result));
    if (++done % (1 << 16) == 0) host::Host().Progress("records", done, total);
  }
}

// True when a group field asks for grouping: neither empty nor "None".
bool AsksForGrouping(const PMString& groupField);

}  // namespace talp::sql
