// The "Custom" source: records produced by a host script. Every entry point
// returns 0.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

int fetchColumnListCustom(const PMString& descriptor, const PMString& scriptPath, WideString& result);
int fetchRecordLoopCustom(const PMString& scriptPath, WideString& result, const PMString& where);
int fetchSpecificRecordCustom(const PMString& scriptPath, const PMString& keyField, const PMString& keyValue,
                              const WideString& styling, WideString& result);
int fetchRecordGroupLoopCustom(const PMString& scriptPath, WideString& result, const PMString& query,
                               const PMString& groupField, const PMString& groupContents, const WideString& styling);

}  // namespace talp
