#include "remote/source_table.h"

#include "http/http_client.h"
#include "sources/custom/custom_base.h"
#include "sources/data_engine.h"
#include "sources/file/file_base.h"
#include "sources/odbc/odbc_base.h"
#include "sources/sql/sql_base.h"
#include "text/word_styling.h"

namespace talp {

const SourceTable& RealSources() {
  static const SourceTable table{
      .fetchTableListODBC = fetchTableListODBC,
      .fetchColumnListODBC = fetchColumnListODBC,
      .fetchRecordListODBC = fetchRecordListODBC,
      .fetchRecordLoopODBC = fetchRecordLoopODBC,
      .fetchSpecificRecordODBC = fetchSpecificRecordODBC,
      .fetchRecordGroupLoopODBC = fetchRecordGroupLoopODBC,
      .updateBaseFieldWithInfoODBC = updateBaseFieldWithInfoODBC,
      .fetchColumnListFile = fetchColumnListFile,
      .fetchRecordLoopFile = fetchRecordLoopFile,
      .fetchSpecificRecordFile = fetchSpecificRecordFile,
      .fetchRecordGroupLoopFile = fetchRecordGroupLoopFile,
      .updateBaseFieldWithInfoFile = updateBaseFieldWithInfoFile,
      .fetchDatabaseListSQL = fetchDatabaseListSQL,
      .fetchTableListSQL = fetchTableListSQL,
      .fetchColumnListSQL = fetchColumnListSQL,
      .ConnectWithInfoSQL = ConnectWithInfoSQL,
      .fetchRecordListSQL = fetchRecordListSQL,
      .fetchRecordLoopSQL = fetchRecordLoopSQL,
      .fetchSpecificRecordSQL = fetchSpecificRecordSQL,
      .fetchRecordGroupLoopSQL = fetchRecordGroupLoopSQL,
      .updateBaseFieldWithInfoSQL = updateBaseFieldWithInfoSQL,
      .fetchColumnListCustom = fetchColumnListCustom,
      .fetchRecordLoopCustom = fetchRecordLoopCustom,
      .fetchSpecificRecordCustom = fetchSpecificRecordCustom,
      .fetchRecordGroupLoopCustom = fetchRecordGroupLoopCustom,
      .runHTTPclient = runHTTPclient,
      .GetClientList = GetClientList,
      .AppendHeaderFromWordStyling = AppendHeaderFromWordStyling,
      .GetData = GetData,
  };
  return table;
}

}  // namespace talp
