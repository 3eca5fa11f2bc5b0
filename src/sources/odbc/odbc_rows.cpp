#include "sources/odbc/odbc_rows.h"

#include <cstring>
#include <vector>

#include "sources/odbc/odbc_connection.h"
#include "sources/sql/sql_text.h"
#include "talp/host_services.h"
#include "text/record_template.h"

namespace talp::odbc {

bool RowReader::NextRow() {
  while (!done_) {
    if (!inSet_) {
      if (!SQL_SUCCEEDED(SQLNumResultCols(hstmt.get(), &columns_))) {
        ODBC_Errors("SQLNumResultCols");
        done_ = true;
        break;
      }
      inSet_ = columns_ > 0;
      if (!inSet_) {
        SQLLEN count = 0;
        SQLRowCount(hstmt.get(), &count);
      }
    }
    if (inSet_) {
      const SQLRETURN rc = SQLFetchScroll(hstmt.get(), SQL_FETCH_NEXT, 0);
      if (SQL_SUCCEEDED(rc)) {
        if (++rows_ % (1 << 16) == 0) host::Host().Progress("records", rows_, 0);
        return true;
      }
      if (rc != SQL_NO_DATA) ODBC_Errors("Fetch");
      inSet_ = false;
    }
    const SQLRETURN more = SQLMoreResults(hstmt.get());
    if (more != SQL_SUCCESS) {
      // The normal end of the results is reported too: it prints whatever
      // records the driver left.
      if (more != SQL_ERROR) ODBC_Errors("SQLMoreResults");
      done_ = true;
    }
  }
  return false;
}

bool RowReader::Read(SQLUSMALLINT column, std::string_view& value) {
  char* buffer = buffers_[next_];
  SQLLEN indicator = 0;
  if (!SQL_SUCCEEDED(SQLGetData(hstmt.get(), column, SQL_C_CHAR, buffer, kValueBuffer, &indicator))) {
    ODBC_Errors("SQLGetData");
    return false;
  }
  if (indicator != SQL_NULL_DATA) {
    last_ = std::string_view(buffer, strnlen(buffer, kValueBuffer));
    next_ = 1 - next_;
  }
  value = last_;
  return true;
}

void LoopRecord(RowReader& rows, std::string& bytes) {
  bytes.clear();
  std::string_view value;
  for (SQLSMALLINT column = 1; column <= rows.Columns() && rows.Read(column, value); ++column) {
    sql::AppendProtected(bytes, value, true);
    bytes.push_back('\t');
  }
}

long ColumnPosition(const WideString& columns, const PMString& name) {
  const WideString wanted(name);
  const std::vector<std::u16string_view> names = SplitFields(columns.Units(), u'\r');
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (names[i] == wanted.Units()) return static_cast<long>(i);
  }
  return -1;
}

}  // namespace talp::odbc
