// The record-list data engine for source types other than "mySQL" and "ODBC".
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Fills result with the data lines (CR-separated, fields TAB-separated) that
// search selects from the source the descriptor names, and header with the
// CR-separated field names. Returns 0.
int GetData(WideString& result, WideString& header, const PMString& search, const PMString& descriptor,
            const PMString& extra);

}  // namespace talp
