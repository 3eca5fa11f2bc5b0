// The "ODBC" source: catalogue, records, group loop and field update through
// the ODBC driver manager, one connection per operation.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

int fetchTableListODBC(const PMString& user, const PMString& password, const PMString& dsn, WideString& result);
int fetchColumnListODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        WideString& result);
int fetchRecordListODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        const PMString& sortField, const PMString& shownField, const PMString& search,
                        const PMString& groupField, WideString& result);
int fetchRecordLoopODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        WideString& result, const PMString& condition);
int fetchSpecificRecordODBC(const PMString& user, const PMString& password, const PMString& dsn,
                            const PMString& table, const PMString& keyField, const PMString& keyValue,
                            const PMString& groupField, const PMString& lineLayout, const WideString& styling,
                            WideString& result);
int fetchRecordGroupLoopODBC(const PMString& user, const PMString& password, const PMString& dsn,
                             const PMString& table, WideString& result, const PMString& condition,
                             const PMString& groupField, const PMString& lineLayout, const WideString& styling);
int updateBaseFieldWithInfoODBC(const WideString& value, const PMString& field, const PMString& keyValue,
                                const PMString& user, const PMString& password, const PMString& dsn,
                                const PMString& table, const PMString& keyField);

}  // namespace talp
