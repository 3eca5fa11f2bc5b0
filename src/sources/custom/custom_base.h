// The "Custom" source: records produced by a user's script (descriptor field
// 19), which receives "DataQuery", "GroupUsingListField" and "GroupContens"
// and hands back "HeaderData" (TAB-separated names) and "ProductionData"
// (lines ended by CR, fields separated by TAB). Every entry point returns 0;
// a script that cannot run or fails gives no header and no data.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// result = the header's names, one per line (CR-separated). The script gets
// descriptor fields 16, 14 and 15 as "DataQuery", "GroupUsingListField" and
// "GroupContens".
int fetchColumnListCustom(const PMString& descriptor, const PMString& scriptPath, WideString& result);
// Appends the data lines from the second on that where selects, each
// followed by CR. Line 1 is never delivered, while the specific record
// searches from line 1: callers rely on both.
int fetchRecordLoopCustom(const PMString& scriptPath, WideString& result, const PMString& where);
// result = the first data line ended by CR whose key column equals keyValue
// exactly, one field per line; left as it was (its TABs made CRs) when none
// does. styling is not used.
int fetchSpecificRecordCustom(const PMString& scriptPath, const PMString& keyField, const PMString& keyValue,
                              const WideString& styling, WideString& result);
// Appends the data lines (ended by CR) that query selects, runs of equal
// group values folded into one line, in the script form of GroupRuns: no
// counts. styling is not used.
int fetchRecordGroupLoopCustom(const PMString& scriptPath, WideString& result, const PMString& query,
                               const PMString& groupField, const PMString& groupContents, const WideString& styling);

}  // namespace talp
