// The dispatch's view of the sources: one slot per source entry point, filled
// with the real functions by RealSources(). Tests fill a table of their own to
// watch what the dispatch calls, and with which arguments.
#pragma once

#include <functional>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

struct SourceTable {
  using P = const PMString&;
  using W = const WideString&;
  using Out = WideString&;

  // ODBC
  std::function<int(P user, P password, P dsn, Out)> fetchTableListODBC;
  std::function<int(P user, P password, P dsn, P table, Out)> fetchColumnListODBC;
  std::function<int(P user, P password, P dsn, P table, P sortField, P shownField, P search, P groupField, Out)>
      fetchRecordListODBC;
  std::function<int(P user, P password, P dsn, P table, Out, P condition)> fetchRecordLoopODBC;
  std::function<int(P user, P password, P dsn, P table, P keyField, P keyValue, P groupField, P lineLayout,
                    W styling, Out)>
      fetchSpecificRecordODBC;
  std::function<int(P user, P password, P dsn, P table, Out, P condition, P groupField, P lineLayout, W styling)>
      fetchRecordGroupLoopODBC;
  std::function<int(W value, P field, P keyValue, P user, P password, P dsn, P table, P keyField)>
      updateBaseFieldWithInfoODBC;

  // File
  std::function<int(P path, Out)> fetchColumnListFile;
  std::function<int(P path, P condition, Out)> fetchRecordLoopFile;
  std::function<int(P path, P keyField, P keyValue, W styling, Out)> fetchSpecificRecordFile;
  std::function<int(P path, P query, Out, P groupField, P groupContents, W styling)> fetchRecordGroupLoopFile;
  std::function<int(W value, P updateField, P keyField, P keyValue, P path)> updateBaseFieldWithInfoFile;

  // MySQL
  std::function<int(P host, int port, P user, P password, Out)> fetchDatabaseListSQL;
  std::function<int(P host, int port, P user, P password, P database, Out)> fetchTableListSQL;
  std::function<int(P host, int port, P user, P password, P database, P table, P query, Out)> fetchColumnListSQL;
  std::function<int(W statement, P host, int port, P user, P password, P database, P extra)> ConnectWithInfoSQL;
  std::function<int(P host, int port, P user, P password, P database, P table, P sortField, P shownField, P search,
                    P groupField, Out)>
      fetchRecordListSQL;
  std::function<int(P host, int port, P user, P password, P database, P table, Out, P condition)>
      fetchRecordLoopSQL;
  std::function<int(P host, int port, P user, P password, P database, P table, P keyField, P keyValue,
                    P groupField, P lineLayout, W styling, Out)>
      fetchSpecificRecordSQL;
  std::function<int(P host, int port, P user, P password, P database, P table, Out, P condition, P groupField,
                    P lineLayout, W styling)>
      fetchRecordGroupLoopSQL;
  std::function<int(W value, P field, P keyValue, P host, int port, P user, P password, P database, P table,
                    P keyField)>
      updateBaseFieldWithInfoSQL;

  // Custom (script)
  std::function<int(P descriptor, P scriptPath, Out)> fetchColumnListCustom;
  std::function<int(P scriptPath, Out, P where)> fetchRecordLoopCustom;
  std::function<int(P scriptPath, P keyField, P keyValue, W styling, Out)> fetchSpecificRecordCustom;
  std::function<int(P scriptPath, Out, P query, P groupField, P groupContents, W styling)>
      fetchRecordGroupLoopCustom;

  // HTTP
  std::function<void(P url, int port, P filePath, P filePathValue, P fileName)> runHTTPclient;
  std::function<void(P url, int port, Out)> GetClientList;

  // Text engine steps the dispatch applies itself
  std::function<void(W styling, Out header)> AppendHeaderFromWordStyling;
  std::function<int(Out result, Out header, P search, P descriptor, P extra)> GetData;
};

// The table of the real source functions; lives for the whole program.
const SourceTable& RealSources();

}  // namespace talp
