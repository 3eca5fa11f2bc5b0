#include "sources/odbc/odbc_connection.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "talp/host_services.h"

namespace talp {

odbc::Handle<SQL_HANDLE_ENV> henv;
odbc::Handle<SQL_HANDLE_DBC> hdbc;
odbc::Handle<SQL_HANDLE_STMT> hstmt;
SQLINTEGER connected = 0;
SQLCHAR outdsn[4096];

namespace {

// The driver manager's connection option that names the application to the
// driver; the headers have no name for it.
constexpr SQLUSMALLINT kApplicationNameOption = 1051;
constexpr char kApplicationName[] = "TesseraConnect";

constexpr SQLSMALLINT kMostRecordsPerHandle = 5;

std::recursive_mutex& OperationMutex() {
  static std::recursive_mutex mutex;
  return mutex;
}

// How many operations run on the thread that holds the lock (one and those it
// runs), and whether one of them has shown the connect alert. Guarded by the
// lock.
int operationDepth = 0;
bool connectAlertShown = false;

// A driver that cannot be loaded. unixODBC says so with state 01000 and
// "Can't open lib" where the ODBC standard has IM003.
bool DriverCannotBeLoaded(const SQLCHAR* state, const SQLCHAR* message) {
  const char* s = reinterpret_cast<const char*>(state);
  return std::strcmp(s, "IM003") == 0 ||
         (std::strcmp(s, "01000") == 0 && std::strstr(reinterpret_cast<const char*>(message), "Can't open lib"));
}

// Writes the records of one handle; true when one says the driver cannot be
// loaded.
bool WriteDiagnostics(SQLSMALLINT type, SQLHANDLE handle, const char* where) {
  bool missingDriver = false;
  if (handle == SQL_NULL_HANDLE) return missingDriver;
  for (SQLSMALLINT record = 1; record <= kMostRecordsPerHandle; ++record) {
    SQLCHAR state[6] = {};
    SQLINTEGER native = 0;
    SQLCHAR message[512] = {};
    SQLSMALLINT length = 0;
    const SQLRETURN rc = SQLGetDiagRec(type, handle, record, state, &native, message, sizeof message, &length);
    if (!SQL_SUCCEEDED(rc)) break;
    std::fprintf(stderr, "%d: %s = %s (%ld) SQLSTATE=%s\n", record, where, reinterpret_cast<char*>(message),
                 static_cast<long>(native), reinterpret_cast<char*>(state));
    missingDriver = missingDriver || DriverCannotBeLoaded(state, message);
  }
  return missingDriver;
}

}  // namespace

int ODBC_Connect(const PMString& user, const PMString& password, const PMString& dsn) {
  // Whatever an earlier connect of this operation left goes first.
  ODBC_Disconnect();
  SQLHANDLE handle = SQL_NULL_HANDLE;
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &handle))) return -1;
  henv.reset(handle);
  SQLSetEnvAttr(henv.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), SQL_IS_UINTEGER);
  if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, henv.get(), &handle))) return -1;
  hdbc.reset(handle);
  SQLSetConnectOption(hdbc.get(), kApplicationNameOption, reinterpret_cast<SQLULEN>(kApplicationName));

  std::string text = "DSN=" + dsn.GrabCString() + ";UID=" + user.GrabCString() + ";PWD=" + password.GrabCString();
  SQLSMALLINT length = 0;
  const SQLRETURN rc = SQLDriverConnect(hdbc.get(), nullptr, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS,
                                        outdsn, sizeof outdsn, &length, SQL_DRIVER_NOPROMPT);
  // Both hold the password.
  std::fill(text.begin(), text.end(), '\0');
  std::fill(std::begin(outdsn), std::end(outdsn), 0);
  if (rc != SQL_SUCCESS) ODBC_Errors("SQLDriverConnect");
  if (!SQL_SUCCEEDED(rc)) return -1;
  connected = 1;
  return odbc::EnsureStatement() ? 0 : -1;
}

int ODBC_Disconnect() {
  if (hstmt) {
    SQLCloseCursor(hstmt.get());
    hstmt.reset();
  }
  // The flag stays set after the first connect, so a connection handle that
  // never connected is asked to disconnect too; it answers with an error.
  if (connected && hdbc) SQLDisconnect(hdbc.get());
  hdbc.reset();
  henv.reset();
  return 0;
}

int ODBC_Errors(const char* where) {
  bool missingDriver = WriteDiagnostics(SQL_HANDLE_STMT, hstmt.get(), where);
  missingDriver = WriteDiagnostics(SQL_HANDLE_DBC, hdbc.get(), where) || missingDriver;
  missingDriver = WriteDiagnostics(SQL_HANDLE_ENV, henv.get(), where) || missingDriver;
  std::fflush(stderr);
  // Deliberately drastic: without its driver the data source is taken to be
  // beyond repair.
  if (missingDriver) host::EndProcess(-1);
  return -1;
}

namespace odbc {

Session::Session() : lock_(OperationMutex()) {
  if (operationDepth++ == 0) connectAlertShown = false;
}

Session::~Session() {
  ODBC_Disconnect();
  --operationDepth;
}

bool ConnectOrAlert(const PMString& user, const PMString& password, const PMString& dsn) {
  if (ODBC_Connect(user, password, dsn) == 0) return true;
  if (!connectAlertShown) CAlert::InformationAlert("Unable to connect to the data source!");
  connectAlertShown = true;
  ODBC_Disconnect();
  return false;
}

bool EnsureStatement() {
  if (hstmt) return true;
  SQLHANDLE handle = SQL_NULL_HANDLE;
  if (!hdbc || !SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, hdbc.get(), &handle))) return false;
  hstmt.reset(handle);
  return true;
}

SQLRETURN ExecDirect(const std::string& statement) {
  // The driver manager's declaration lacks the const; the text is only read.
  return SQLExecDirect(hstmt.get(), reinterpret_cast<SQLCHAR*>(const_cast<char*>(statement.c_str())), SQL_NTS);
}

}  // namespace odbc
}  // namespace talp
