#include "talp/talp_remote.h"

#include "host/script_runner.h"
#include "remote/dispatch.h"
#include "remote/source_table.h"

IPMUnknown* TALPRemote::QueryInterface(PMIID interfaceID) const {
  if (owner_ == nullptr) return nullptr;
  if (interfaceID == IID_IPMUNKNOWN) {
    owner_->AddRef();
    return owner_;
  }
  return owner_->QueryInterface(interfaceID);
}

void TALPRemote::AddRef() const {
  if (owner_ != nullptr) owner_->AddRef();
}

void TALPRemote::Release() const {
  if (owner_ != nullptr) owner_->Release();
}

using talp::RealSources;
namespace dispatch = talp::dispatch;
// The operations that may run scripts open a script scope: their scripts
// share one session, and the next operation starts from fresh engines.
using ScriptScope = talp::host::ScriptScope;

int TALPRemote::GetDatabaseList(PMString descriptor, WideString& result) {
  return dispatch::GetDatabaseList(RealSources(), descriptor, result);
}

int TALPRemote::GetTableList(PMString descriptor, WideString& result) {
  return dispatch::GetTableList(RealSources(), descriptor, result);
}

int TALPRemote::GetColumnList(PMString descriptor, WideString styling, WideString& result) {
  const ScriptScope scripts;
  return dispatch::GetColumnList(RealSources(), descriptor, styling, result);
}

int TALPRemote::GetRecordList(PMString descriptor, WideString& result, PMString search, long p4) {
  const ScriptScope scripts;
  return dispatch::GetRecordList(RealSources(), descriptor, result, search, p4);
}

int TALPRemote::GetRecordLoop(PMString descriptor, WideString& result, PMString where) {
  const ScriptScope scripts;
  return dispatch::GetRecordLoop(RealSources(), descriptor, result, where);
}

int TALPRemote::GetSpecificRecord(PMString descriptor, PMString keyValue, WideString styling, WideString& result) {
  const ScriptScope scripts;
  return dispatch::GetSpecificRecord(RealSources(), descriptor, keyValue, styling, result);
}

int TALPRemote::SendUpdateBaseFieldWithInfo(WideString value, PMString updateField, PMString keyValue, PMString host,
                                            int port, PMString user, PMString password, PMString database,
                                            PMString table, PMString keyField, PMString sourceType, PMString dsn,
                                            PMString filePath) {
  return dispatch::SendUpdateBaseFieldWithInfo(RealSources(), value, updateField, keyValue, host, port, user, password,
                                               database, table, keyField, sourceType, dsn, filePath);
}

int TALPRemote::SendConnectWithInfoSQL(WideString statement, PMString host, int port, PMString user,
                                       PMString password, PMString database, PMString extra) {
  return dispatch::SendConnectWithInfoSQL(RealSources(), statement, host, port, user, password, database, extra);
}

void TALPRemote::SendUsingHttpPost(PMString url, int port, PMString filePath, PMString filePathValue,
                                   PMString fileName) {
  dispatch::SendUsingHttpPost(RealSources(), url, port, filePath, filePathValue, fileName);
}

void TALPRemote::GetUsingHttpPost(PMString url, int port, WideString& result) {
  dispatch::GetUsingHttpPost(RealSources(), url, port, result);
}

void TALPRemote::GetGroupDataLoop(PMString descriptor, WideString styling, WideString& result, PMString query) {
  const ScriptScope scripts;
  dispatch::GetGroupDataLoop(RealSources(), descriptor, styling, result, query);
}
