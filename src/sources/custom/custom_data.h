// Running the data script of the "Custom" source.
#pragma once

#include <string>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Runs the script at scriptPath with only "DataQuery", "GroupContens" and
// "GroupUsingListField" set, in that order, and sets header and data to the
// "HeaderData" and "ProductionData" it leaves (both empty when there is no
// runner for it, or it fails). The host's script arguments are saved before
// and put back after, however the run ends. Returns 0.
int GetCustomDataFromScript(const PMString& scriptPath, WideString& header, WideString& data,
                            const PMString& dataQuery, const PMString& groupUsingListField,
                            const PMString& groupContents);

// The lines of data from the second on that are ended by CR and that where
// selects against header (as the script gave it), each followed by CR: what
// the record loop delivers.
std::u16string SelectCustomRecords(const WideString& header, const WideString& data, const PMString& where);

}  // namespace talp
