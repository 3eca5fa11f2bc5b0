// The "mySQL" source: catalogue, records, group loop and field update on a
// MySQL-compatible server, one connection per operation. Statuses: 0 done
// (or failed silently), 1 for the failures each operation names.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

int fetchDatabaseListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                         WideString& result);
int fetchTableListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                      const PMString& database, WideString& result);
int fetchColumnListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                       const PMString& database, const PMString& table, const PMString& query, WideString& result);
int ConnectWithInfoSQL(const WideString& statement, const PMString& host, int port, const PMString& user,
                       const PMString& password, const PMString& database, const PMString& extra);
// Turns a user's search into the text that follows the table name: empty
// stays empty, "SELECT ..." stays as it is, "WHERE ..." gains a leading blank,
// and anything else becomes " WHERE a LIKE '%text%' OR b LIKE ..." over the
// table's columns (text inserted unescaped). Replaces search.
void CreateSearchString(const PMString& host, int port, const PMString& user, const PMString& password,
                        const PMString& database, const PMString& table, PMString& search);
int fetchRecordListSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                       const PMString& database, const PMString& table, const PMString& sortField,
                       const PMString& shownField, const PMString& search, const PMString& groupField,
                       WideString& result);
int fetchRecordLoopSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                       const PMString& database, const PMString& table, WideString& result,
                       const PMString& condition);
int fetchSpecificRecordSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                           const PMString& database, const PMString& table, const PMString& keyField,
                           const PMString& keyValue, const PMString& groupField, const PMString& lineLayout,
                           const WideString& styling, WideString& result);
int fetchRecordGroupLoopSQL(const PMString& host, int port, const PMString& user, const PMString& password,
                            const PMString& database, const PMString& table, WideString& result,
                            const PMString& condition, const PMString& groupField, const PMString& lineLayout,
                            const WideString& styling);
int updateBaseFieldWithInfoSQL(const WideString& value, const PMString& field, const PMString& keyValue,
                               const PMString& host, int port, const PMString& user, const PMString& password,
                               const PMString& database, const PMString& table, const PMString& keyField);

}  // namespace talp
