#include "remote/dispatch.h"

#include <string_view>

#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp::dispatch {
namespace {

// The descriptor's fields, read the way every operation reads them.
class Descriptor {
 public:
  explicit Descriptor(const PMString& text) : text_(text) {}
  PMString F(int n) const { return myGetLine(text_, ';', n); }
  int Port() const { return F(2).GetAsNumber(); }
  PMString Type() const { return F(10); }
  const PMString& Text() const { return text_; }

 private:
  PMString text_;
};

// Source-type words, compared exactly.
const PMString kODBC("ODBC");
const PMString kFile("File");
const PMString kMySQL("mySQL");
const PMString kCustom("Custom");

}  // namespace

int GetDatabaseList(const SourceTable& sources, const PMString& descriptor, WideString& result) {
  const Descriptor d(descriptor);
  return sources.fetchDatabaseListSQL(d.F(1), d.Port(), d.F(3), d.F(4), result);
}

int GetTableList(const SourceTable& sources, const PMString& descriptor, WideString& result) {
  const Descriptor d(descriptor);
  const PMString type = d.Type();
  if (type == kODBC) return sources.fetchTableListODBC(d.F(3), d.F(4), d.F(11), result);
  if (type == kMySQL) return sources.fetchTableListSQL(d.F(1), d.Port(), d.F(3), d.F(4), d.F(5), result);
  return 0;
}

int GetColumnList(const SourceTable& sources, const PMString& descriptor, const WideString& styling,
                  WideString& result) {
  const Descriptor d(descriptor);
  const PMString type = d.Type();
  int status = 0;
  if (type == kODBC) {
    status = sources.fetchColumnListODBC(d.F(3), d.F(4), d.F(11), d.F(6), result);
  } else if (type == kFile) {
    status = sources.fetchColumnListFile(d.F(12), result);
  } else if (type == kMySQL) {
    status = sources.fetchColumnListSQL(d.F(1), d.Port(), d.F(3), d.F(4), d.F(5), d.F(6), d.F(16), result);
  } else if (type == kCustom) {
    // The script source is the one that receives the whole descriptor.
    status = sources.fetchColumnListCustom(d.Text(), d.F(19), result);
  }
  sources.AppendHeaderFromWordStyling(styling, result);
  return status;
}

int GetRecordList(const SourceTable& sources, const PMString& descriptor, WideString& result, const PMString& search,
                  long /*p4*/) {
  const Descriptor d(descriptor);
  const PMString type = d.Type();
  result.Clear();
  if (type == kMySQL) {
    sources.fetchRecordListSQL(d.F(1), d.Port(), d.F(3), d.F(4), d.F(5), d.F(6), d.F(21), d.F(7), search, d.F(14),
                               result);
  } else if (type == kODBC) {
    sources.fetchRecordListODBC(d.F(3), d.F(4), d.F(11), d.F(6), d.F(21), d.F(7), search, d.F(14), result);
  } else {
    WideString header;
    sources.GetData(result, header, search, descriptor, PMString());
    result = BuildRecordList(result, header, WideString(d.F(7)), WideString(d.F(21)));
  }
  return 0;
}

WideString BuildRecordList(const WideString& data, const WideString& header, const WideString& keyField,
                           const WideString& sortField) {
  const int keyColumn = GetIndexOfHeaderField(header, keyField);
  const int sortColumn = GetIndexOfHeaderField(header, sortField);
  // The cap counts separators, so up to 201 lines become entries; callers
  // rely on that. Every line gives an entry, empty ones included.
  constexpr int kMaxEntries = 201;
  WideString list;
  ItemCursor lines(data.Units(), kCR);
  std::u16string_view line;
  for (int entries = 0; entries < kMaxEntries && lines.Next(line); ++entries) {
    list.AppendUnits(FieldOf(line, kTab, keyColumn));
    list.AppendUnits(u"\t");
    list.AppendUnits(FieldOf(line, kTab, sortColumn));
    list.AppendUnits(u"\r");
  }
  return list;
}

int GetRecordLoop(const SourceTable& sources, const PMString& descriptor, WideString& result, const PMString& where) {
  const Descriptor d(descriptor);
  const PMString type = d.Type();
  if (type == kODBC) return sources.fetchRecordLoopODBC(d.F(3), d.F(4), d.F(11), d.F(6), result, where);
  if (type == kFile) return sources.fetchRecordLoopFile(d.F(12), where, result);
  if (type == kMySQL) {
    return sources.fetchRecordLoopSQL(d.F(1), d.Port(), d.F(3), d.F(4), d.F(5), d.F(6), result, where);
  }
  if (type == kCustom) return sources.fetchRecordLoopCustom(d.F(19), result, where);
  return 0;
}

int GetSpecificRecord(const SourceTable& sources, const PMString& descriptor, const PMString& keyValue,
                      const WideString& styling, WideString& result) {
  const Descriptor d(descriptor);
  const PMString type = d.Type();
  if (type == kODBC) {
    return sources.fetchSpecificRecordODBC(d.F(3), d.F(4), d.F(11), d.F(6), d.F(7), keyValue, d.F(14), d.F(15),
                                           styling, result);
  }
  if (type == kFile) return sources.fetchSpecificRecordFile(d.F(12), d.F(7), keyValue, styling, result);
  if (type == kMySQL) {
    return sources.fetchSpecificRecordSQL(d.F(1), d.Port(), d.F(3), d.F(4), d.F(5), d.F(6), d.F(7), keyValue,
                                          d.F(14), d.F(15), styling, result);
  }
  if (type == kCustom) return sources.fetchSpecificRecordCustom(d.F(19), d.F(7), keyValue, styling, result);
  return 0;
}

void GetGroupDataLoop(const SourceTable& sources, const PMString& descriptor, const WideString& styling,
                      WideString& result, const PMString& query) {
  const Descriptor d(descriptor);
  const PMString type = d.Type();
  if (type == kODBC) {
    sources.fetchRecordGroupLoopODBC(d.F(3), d.F(4), d.F(11), d.F(6), result, query, d.F(14), d.F(15), styling);
  } else if (type == kFile) {
    sources.fetchRecordGroupLoopFile(d.F(12), query, result, d.F(14), d.F(15), styling);
  } else if (type == kMySQL) {
    sources.fetchRecordGroupLoopSQL(d.F(1), d.Port(), d.F(3), d.F(4), d.F(5), d.F(6), result, query, d.F(14),
                                    d.F(15), styling);
  } else if (type == kCustom) {
    sources.fetchRecordGroupLoopCustom(d.F(19), result, query, d.F(14), d.F(15), styling);
  }
}

int SendUpdateBaseFieldWithInfo(const SourceTable& sources, const WideString& value, const PMString& updateField,
                                const PMString& keyValue, const PMString& host, int port, const PMString& user,
                                const PMString& password, const PMString& database, const PMString& table,
                                const PMString& keyField, const PMString& sourceType, const PMString& dsn,
                                const PMString& filePath) {
  if (sourceType == kODBC) {
    return sources.updateBaseFieldWithInfoODBC(value, updateField, keyValue, user, password, dsn, table, keyField);
  }
  if (sourceType == kFile) {
    return sources.updateBaseFieldWithInfoFile(value, updateField, keyField, keyValue, filePath);
  }
  return sources.updateBaseFieldWithInfoSQL(value, updateField, keyValue, host, port, user, password, database, table,
                                            keyField);
}

int SendConnectWithInfoSQL(const SourceTable& sources, const WideString& statement, const PMString& host, int port,
                           const PMString& user, const PMString& password, const PMString& database,
                           const PMString& extra) {
  return sources.ConnectWithInfoSQL(statement, host, port, user, password, database, extra);
}

void SendUsingHttpPost(const SourceTable& sources, const PMString& url, int port, const PMString& filePath,
                       const PMString& filePathValue, const PMString& fileName) {
  sources.runHTTPclient(url, port, filePath, filePathValue, fileName);
}

void GetUsingHttpPost(const SourceTable& sources, const PMString& url, int port, WideString& result) {
  sources.GetClientList(url, port, result);
}

}  // namespace talp::dispatch
