// Reading the rows of an executed ODBC statement as character data.
#pragma once

#include <sql.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp::odbc {

// The rows of every result set of the statement that ran on hstmt, in turn.
// Failures are written to standard error through ODBC_Errors with the step
// that failed: "SQLNumResultCols" ends the reading, "Fetch" ends the result
// set, "SQLGetData" abandons the rest of the row; the end of the results is
// reported as "SQLMoreResults" (which writes whatever records there are,
// normally none).
class RowReader {
 public:
  RowReader() = default;
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;

  // Moves to the next row; false when none is left.
  bool NextRow();
  // The number of columns of the current result set.
  SQLSMALLINT Columns() const { return columns_; }
  // Reads column (from 1) of the current row, columns in increasing order:
  // the text up to its first NUL byte, cut by the driver after 4095 bytes.
  // For SQL NULL it is the last value read, of any column or row, since the
  // buffer it was read into is reused (empty before the first). The text
  // lives until the next read. False when the column cannot be read.
  bool Read(SQLUSMALLINT column, std::string_view& value);

 private:
  static constexpr SQLLEN kValueBuffer = 4096;
  // Two buffers in turn: the last value read stays whole in one while the
  // driver writes into the other (some drivers write a NUL byte for NULL).
  char buffers_[2][kValueBuffer];
  std::string_view last_;
  int next_ = 0;
  SQLSMALLINT columns_ = 0;
  bool inSet_ = false;
  bool done_ = false;
  std::uint64_t rows_ = 0;
};

// Replaces bytes with the current row as a loop record: every value
// protected ("<br>", "<tb>", "<sr>"), every one followed by a TAB.
void LoopRecord(RowReader& rows, std::string& bytes);

// The position (from 0) of the name in a CR-separated column list, or -1.
long ColumnPosition(const WideString& columns, const PMString& name);

}  // namespace talp::odbc
