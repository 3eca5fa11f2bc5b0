// The provider's dispatch: each operation splits the connection descriptor
// into its ";"-separated fields, tests the source-type word (field 10) in the
// operation's own order and calls exactly one entry of the source table,
// passing descriptor fields as the source expects them. The returned status
// is the source's, 0 when no source matched. Nothing is validated: a missing
// field is an empty text (port 0).
#pragma once

#include "remote/source_table.h"
#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp::dispatch {

// Always asks MySQL; reads fields 1 to 4 only.
int GetDatabaseList(const SourceTable& sources, const PMString& descriptor, WideString& result);
// Knows "ODBC" and "mySQL" only.
int GetTableList(const SourceTable& sources, const PMString& descriptor, WideString& result);
// Then, whichever source answered (or none), appends the computed fields'
// names of styling to the column list.
int GetColumnList(const SourceTable& sources, const PMString& descriptor, const WideString& styling,
                  WideString& result);
// Clears result first. "mySQL", then "ODBC"; every other type word goes to the
// data engine, whose lines become "key TAB sort CR" entries (at most 201).
// Always returns 0; p4 is accepted and not used.
int GetRecordList(const SourceTable& sources, const PMString& descriptor, WideString& result, const PMString& search,
                  long p4);
int GetRecordLoop(const SourceTable& sources, const PMString& descriptor, WideString& result, const PMString& where);
int GetSpecificRecord(const SourceTable& sources, const PMString& descriptor, const PMString& keyValue,
                      const WideString& styling, WideString& result);
void GetGroupDataLoop(const SourceTable& sources, const PMString& descriptor, const WideString& styling,
                      WideString& result, const PMString& query);
// "ODBC", "File"; every other type word, an empty one included, is MySQL.
int SendUpdateBaseFieldWithInfo(const SourceTable& sources, const WideString& value, const PMString& updateField,
                                const PMString& keyValue, const PMString& host, int port, const PMString& user,
                                const PMString& password, const PMString& database, const PMString& table,
                                const PMString& keyField, const PMString& sourceType, const PMString& dsn,
                                const PMString& filePath);
int SendConnectWithInfoSQL(const SourceTable& sources, const WideString& statement, const PMString& host, int port,
                           const PMString& user, const PMString& password, const PMString& database,
                           const PMString& extra);
void SendUsingHttpPost(const SourceTable& sources, const PMString& url, int port, const PMString& filePath,
                       const PMString& filePathValue, const PMString& fileName);
void GetUsingHttpPost(const SourceTable& sources, const PMString& url, int port, WideString& result);

// Builds the record list from data lines and their CR-separated header: for
// each of the first (number of CRs, at most 200) + 1 lines, the item under
// the header name keyField, a TAB, the item under sortField, and a CR.
WideString BuildRecordList(const WideString& data, const WideString& header, const WideString& keyField,
                           const WideString& sortField);

}  // namespace talp::dispatch
