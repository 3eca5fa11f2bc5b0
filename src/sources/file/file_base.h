// The "File" source: delimited or XML text files read as tables (record 1
// is the header). Every entry point returns 0.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

int fetchColumnListFile(const PMString& path, WideString& result);
int fetchRecordLoopFile(const PMString& path, const PMString& condition, WideString& result);
int fetchSpecificRecordFile(const PMString& path, const PMString& keyField, const PMString& keyValue,
                            const WideString& styling, WideString& result);
int fetchRecordGroupLoopFile(const PMString& path, const PMString& query, WideString& result,
                             const PMString& groupField, const PMString& groupContents, const WideString& styling);
int updateBaseFieldWithInfoFile(const WideString& newValue, const PMString& updateField, const PMString& keyField,
                                const PMString& keyValue, const PMString& path);

}  // namespace talp
