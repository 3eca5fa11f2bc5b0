// The MySQL source's connection handling: every operation initialises a
// fresh client handle into the shared pConnection, connects, prepares the
// character sets, works and closes again. Nothing stays open between calls.
#pragma once

#include <mysql.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "sources/sql/sql_text.h"
#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// The open handle of the MySQL operation that runs now; null once it is
// closed, so that it never points at a freed handle. Shared by every MySQL
// operation; MySqlSession keeps two operations from running at once.
extern MYSQL* pConnection;

namespace sql {

// Connect flags of the column list: bit 1 asked for the long (secure) password
// scheme, bit 4 for all column flags in field descriptions. Current servers
// negotiate both anyway.
inline constexpr unsigned long kLongPasswordAndLongFlag = 1UL | 4UL;

// Frees a result set when it goes out of scope.
struct ResultDeleter {
  void operator()(MYSQL_RES* result) const { mysql_free_result(result); }
};
using Result = std::unique_ptr<MYSQL_RES, ResultDeleter>;

// One MySQL operation. Holds the lock that serialises MySQL operations (a
// nested operation on the same thread is allowed) and owns every handle it
// initialises: a handle the operation abandons or leaves open on a failure
// is closed when the session ends, so no connection outlives its operation.
class MySqlSession {
 public:
  MySqlSession();
  ~MySqlSession();
  MySqlSession(const MySqlSession&) = delete;
  MySqlSession& operator=(const MySqlSession&) = delete;

  // Initialises a new handle into pConnection; false when the client library
  // cannot allocate one. A handle initialised before stays unused.
  bool Init();
  // Connects the current handle. An empty database or socket is passed as
  // none. False on failure; ErrorText() then says why.
  bool Connect(const PMString& host, int port, const PMString& user, const PMString& password,
               const PMString& database, const char* socket = nullptr, unsigned long flags = 0);
  // The second initialisation and the connect that most operations make; the
  // handle is closed again when either fails (then false).
  bool InitAndConnect(const PMString& host, int port, const PMString& user, const PMString& password,
                      const PMString& database, const char* socket = nullptr, unsigned long flags = 0);
  // Sends the three character-set statements; their results are not read.
  void Prepare();
  // Runs a statement given as its UTF-8 bytes; false when the server rejects
  // it. Like every call below, a harmless no-op on a closed handle.
  bool Query(std::string_view statement);
  Result StoreResult();
  Result ListFields(const PMString& table);
  Result ListDatabases();
  Result ListTables();
  unsigned ErrorNumber() const;
  std::string ErrorText() const;
  // Closes the current handle; closing it again does nothing.
  void Close();
  // Initialises a handle that is released at once; its address tells whether
  // the allocator handed out the memory of the current handle, or of the one
  // closed last, again.
  bool FreshHandleDiffersFromCurrent();

 private:
  struct HandleCloser {
    void operator()(MYSQL* handle) const { mysql_close(handle); }
  };
  using Handle = std::unique_ptr<MYSQL, HandleCloser>;
  MYSQL* Current() const;  // null before Init and once closed

  std::unique_lock<std::recursive_mutex> lock_;
  std::vector<Handle> handles_;  // the current one is last; null once closed
  std::uintptr_t closedAddress_ = 0;  // of the handle closed last, compared as a number only
  std::string refusal_;          // the error of a command refused before the library saw it
};

// The bytes of field i of row, whole (NUL bytes included); empty for SQL NULL.
inline std::string_view FieldBytes(const MYSQL_ROW row, const unsigned long* lengths, unsigned i) {
  return row[i] ? std::string_view(row[i], lengths[i]) : std::string_view();
}

// The names of result's fields, each followed by CR.
std::string FieldNamesList(MYSQL_RES* result);

}  // namespace sql
}  // namespace talp
