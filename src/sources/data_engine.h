// The record-list data engine for source types other than "mySQL" and
// "ODBC": it reads the records of a "File" or "Custom" source.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// header receives the field names, each followed by CR, and result the
// records that search selects the way the source's record loop selects
// them, separated by CR (none after the last):
// - "File" (descriptor field 10): the data file of field 12;
// - "Custom": the script of field 19, given search as "DataQuery" and
//   fields 14 and 15 as "GroupUsingListField" and "GroupContens".
// Other source types give two empty texts. The last argument is not used.
// Returns 0.
int GetData(WideString& result, WideString& header, const PMString& search, const PMString& descriptor,
            const PMString& extra);

}  // namespace talp
