// ITALPRemote: the one interface that sibling plug-ins use to read records
// from, and write them back to, the data sources.
//
// Every read operation takes a connection descriptor (";"-separated fields,
// numbered from 1; field 10 names the source type: "ODBC", "File", "mySQL" or
// "Custom"), delivers UTF-16 text through its WideString& argument (records
// separated by CR, fields by TAB) and returns the source's status (0 when no
// source answered). The slot order below is part of the binary contract with
// callers and must never change.
#pragma once

#include <cstdint>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

using PMIID = std::uint32_t;

// The host's base interface.
inline constexpr PMIID IID_IPMUNKNOWN = 306;
// ITALPRemote's own interface ID (chosen by this plug-in's resources).
inline constexpr PMIID IID_ITALPREMOTE = 0xEEDAF;

// The host's object-model base: reference counting and interface look-up.
class IPMUnknown {
 public:
  virtual IPMUnknown* QueryInterface(PMIID interfaceID) const = 0;
  virtual void AddRef() const = 0;
  virtual void Release() const = 0;

 protected:
  ~IPMUnknown() = default;
};

class ITALPRemote : public IPMUnknown {
 public:
  virtual int GetDatabaseList(PMString descriptor, WideString& result) = 0;
  virtual int GetTableList(PMString descriptor, WideString& result) = 0;
  virtual int GetColumnList(PMString descriptor, WideString styling, WideString& result) = 0;
  virtual int GetRecordList(PMString descriptor, WideString& result, PMString search, long p4) = 0;
  virtual int GetRecordLoop(PMString descriptor, WideString& result, PMString where) = 0;
  virtual int GetSpecificRecord(PMString descriptor, PMString keyValue, WideString styling, WideString& result) = 0;
  virtual int SendUpdateBaseFieldWithInfo(WideString value, PMString updateField, PMString keyValue, PMString host,
                                          int port, PMString user, PMString password, PMString database,
                                          PMString table, PMString keyField, PMString sourceType, PMString dsn,
                                          PMString filePath) = 0;
  virtual int SendConnectWithInfoSQL(WideString statement, PMString host, int port, PMString user,
                                     PMString password, PMString database, PMString extra) = 0;
  virtual void SendUsingHttpPost(PMString url, int port, PMString filePath, PMString filePathValue,
                                 PMString fileName) = 0;
  virtual void GetUsingHttpPost(PMString url, int port, WideString& result) = 0;
  virtual void GetGroupDataLoop(PMString descriptor, WideString styling, WideString& result, PMString query) = 0;
  virtual ~ITALPRemote() = default;
};
