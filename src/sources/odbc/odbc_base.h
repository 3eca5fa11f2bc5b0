// The "ODBC" source: catalogue, records, group loop and field update through
// the ODBC driver manager, one connection per operation (see
// odbc_connection.h). A refused connection shows "Unable to connect to the
// data source!"; other failures write diagnostics to standard error and are
// otherwise silent. Statuses as each operation says.
#pragma once

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// Every table the data source offers (views and system tables included),
// each name followed by CR. 1 for a refused connection or a failing catalogue
// call, else 0. Clears result first.
int fetchTableListODBC(const PMString& user, const PMString& password, const PMString& dsn, WideString& result);
// The columns of "SELECT * FROM table", at most 1024 names, separated by CR
// with none after the last. 1 for a refused connection, else 0. Clears
// result first.
int fetchColumnListODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        WideString& result);
// The search rules of the MySQL source over the ODBC column list, whose last
// name has no CR after it: the last column is never searched. Replaces search.
void CreateODBCSearchString(const PMString& user, const PMString& password, const PMString& dsn,
                            const PMString& table, PMString& search);
// Replaces result with "shown TAB sort TAB CR" per row, at most 200 rows; a
// search beginning "SELECT " is run as it stands. A NULL repeats the value
// read before it. 0.
int fetchRecordListODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        const PMString& sortField, const PMString& shownField, const PMString& search,
                        const PMString& groupField, WideString& result);
// The source has no record loop: does nothing and returns 1.
int fetchRecordLoopODBC(const PMString& user, const PMString& password, const PMString& dsn, const PMString& table,
                        WideString& result, const PMString& condition);
// As the MySQL source's: the record whose key field equals the quoted key
// value, one protected value per line, then the styling's computed fields;
// with a group field, a line of the group's records and a line with their
// number. 0.
int fetchSpecificRecordODBC(const PMString& user, const PMString& password, const PMString& dsn,
                            const PMString& table, const PMString& keyField, const PMString& keyValue,
                            const PMString& groupField, const PMString& lineLayout, const WideString& styling,
                            WideString& result);
// The group value of the record whose key field equals the quoted key value:
// groupValue receives its value in the column named groupField (empty when
// there is no such record or column), groupColumn that column's position from
// 0 (or -1). 0.
int fetchGroupAroundInfoODBC(const PMString& user, const PMString& password, const PMString& dsn,
                             const PMString& table, const PMString& keyField, const PMString& keyValue,
                             const PMString& groupField, int& groupColumn, WideString& groupValue);
// As the MySQL group loop, appending to result. 0.
int fetchRecordGroupLoopODBC(const PMString& user, const PMString& password, const PMString& dsn,
                             const PMString& table, WideString& result, const PMString& condition,
                             const PMString& groupField, const PMString& lineLayout, const WideString& styling);
// "UPDATE table SET field='value' WHERE keyField=keyValue", nothing quoted
// but the value, nothing escaped; its outcome is not looked at. 0.
int updateBaseFieldWithInfoODBC(const WideString& value, const PMString& field, const PMString& keyValue,
                                const PMString& user, const PMString& password, const PMString& dsn,
                                const PMString& table, const PMString& keyField);

}  // namespace talp
