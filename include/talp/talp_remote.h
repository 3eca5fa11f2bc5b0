// TALPRemote: the implementation of ITALPRemote.
//
// It holds nothing but the host object that owns it: AddRef and Release go
// to the owner (and do nothing without one), QueryInterface answers the base
// interface with the owner and forwards every other ID to it. Outside a host,
// construct it without an owner and call the operations directly. Operations
// run to completion on the caller's thread; the database sources share
// process-wide connection state, so calls should not overlap.
#pragma once

#include "talp/italp_remote.h"

// The implementation ID under which the host's factory creates TALPRemote.
inline constexpr std::uint32_t kTALPRemoteImpl = 978350;

class TALPRemote final : public ITALPRemote {
 public:
  explicit TALPRemote(IPMUnknown* owner = nullptr) : owner_(owner) {}

  IPMUnknown* QueryInterface(PMIID interfaceID) const override;
  void AddRef() const override;
  void Release() const override;

  int GetDatabaseList(PMString descriptor, WideString& result) override;
  int GetTableList(PMString descriptor, WideString& result) override;
  int GetColumnList(PMString descriptor, WideString styling, WideString& result) override;
  int GetRecordList(PMString descriptor, WideString& result, PMString search, long p4) override;
  int GetRecordLoop(PMString descriptor, WideString& result, PMString where) override;
  int GetSpecificRecord(PMString descriptor, PMString keyValue, WideString styling, WideString& result) override;
  int SendUpdateBaseFieldWithInfo(WideString value, PMString updateField, PMString keyValue, PMString host, int port,
                                  PMString user, PMString password, PMString database, PMString table,
                                  PMString keyField, PMString sourceType, PMString dsn, PMString filePath) override;
  int SendConnectWithInfoSQL(WideString statement, PMString host, int port, PMString user, PMString password,
                             PMString database, PMString extra) override;
  void SendUsingHttpPost(PMString url, int port, PMString filePath, PMString filePathValue,
                         PMString fileName) override;
  void GetUsingHttpPost(PMString url, int port, WideString& result) override;
  void GetGroupDataLoop(PMString descriptor, WideString styling, WideString& result, PMString query) override;

 private:
  IPMUnknown* owner_;
};
