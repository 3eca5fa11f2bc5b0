// The record-list data engine for source types other than "mySQL" and "ODBC".
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// For a "File" descriptor (field 10), reads the data file (field 12): header
// receives the field names, each followed by CR, and result the records that
// search selects the way the File record loop selects them, separated by CR
// (none after the last). Other source types give two empty texts. The last
// argument is not used. Returns 0.
int GetData(WideString& result, WideString& header, const PMString& search, const PMString& descriptor,
            const PMString& extra);

}  // namespace talp
