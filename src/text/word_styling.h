// Word styling: the caller's styling text either computes extra fields for
// each record (an XML list of "Process" elements) or is a find/replace table.
#pragma once

#include "talp/wide_string.h"

namespace talp {

// Appends the names of the computed fields, each followed by CR, to the
// CR-separated column list header.
void AppendHeaderFromWordStyling(const WideString& styling, WideString& header);

// Restyles one TAB-separated record in place; header is the CR-separated
// list of the record's field names.
void HandleWordStyling(const WideString& styling, const WideString& header, WideString& record);

}  // namespace talp
