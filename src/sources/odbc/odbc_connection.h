// The ODBC source's connection handling, through the unixODBC driver manager:
// every operation connects at its start (fresh environment, connection and
// statement handles in the shared globals) and disconnects at its end.
// Nothing stays open between calls. Diagnostics go to standard error.
#pragma once

#include <sql.h>
#include <sqlext.h>

#include <mutex>
#include <string>
#include <string_view>

#include "talp/pm_string.h"

namespace talp {
namespace odbc {

// Owns one ODBC handle of type Type: frees it when reset or destroyed.
template <SQLSMALLINT Type>
class Handle {
 public:
  Handle() = default;
  ~Handle() { reset(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  SQLHANDLE get() const { return handle_; }
  explicit operator bool() const { return handle_ != SQL_NULL_HANDLE; }
  // Frees the handle held (if any) and takes handle.
  void reset(SQLHANDLE handle = SQL_NULL_HANDLE) {
    if (handle_ != SQL_NULL_HANDLE) SQLFreeHandle(Type, handle_);
    handle_ = handle;
  }

 private:
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

}  // namespace odbc

// The handles of the ODBC operation that runs now; empty between operations.
// Shared by every ODBC operation; odbc::Session keeps two from overlapping.
extern odbc::Handle<SQL_HANDLE_ENV> henv;
extern odbc::Handle<SQL_HANDLE_DBC> hdbc;
extern odbc::Handle<SQL_HANDLE_STMT> hstmt;
// Set by the first successful connect and never cleared.
extern SQLINTEGER connected;
// Receives the completed connection string of each connect, which nothing
// reads; it is wiped at once, since it holds the password.
extern SQLCHAR outdsn[4096];

// Connects to the data source dsn as user with password ("DSN=...;UID=...;
// PWD=...", values as they stand, so a ';' in one adds a setting) and
// allocates the statement handle. 0 when connected, -1 otherwise (the
// diagnostics are on standard error; see ODBC_Errors).
int ODBC_Connect(const PMString& user, const PMString& password, const PMString& dsn);
// Closes the cursor, frees the statement handle, disconnects, frees the
// connection and environment handles; each only when there is one. 0.
int ODBC_Disconnect();
// Writes the diagnostic records of the statement, connection and environment
// handles (at most 5 each) to standard error, one line each:
// "N: WHERE = MESSAGE (NATIVE) SQLSTATE=STATE". Returns -1, unless one says
// that the driver cannot be loaded: then the process ends through the host
// with status -1.
int ODBC_Errors(const char* where);

namespace odbc {

// One ODBC operation: holds the lock that serialises them (an operation may
// run another on the same thread before it connects) and disconnects
// whatever is still connected when it ends, on every return path.
class Session {
 public:
  Session();
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

 private:
  std::unique_lock<std::recursive_mutex> lock_;
};

// ODBC_Connect; when it fails, shows "Unable to connect to the data source!"
// (once per operation, however many connects the operation and those it runs
// make) and disconnects.
bool ConnectOrAlert(const PMString& user, const PMString& password, const PMString& dsn);

// Makes sure hstmt holds a statement handle; false when none can be had.
bool EnsureStatement();
// Runs statement on hstmt (up to its first NUL byte); the driver's answer.
SQLRETURN ExecDirect(const std::string& statement);

}  // namespace odbc
}  // namespace talp
