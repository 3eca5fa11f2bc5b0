#include "sources/sql/mysql_connection.h"

namespace talp {

MYSQL* pConnection = nullptr;

namespace sql {
namespace {

// Long enough for a slow network, short enough that a host that never
// answers does not hang the caller for minutes.
constexpr unsigned kConnectTimeoutSeconds = 10;

// Table names longer than this never reach the client library, and the
// server's error number for a name it cannot take.
constexpr std::size_t kLongestTableName = 256;
constexpr unsigned kWrongTableName = 1103;

std::recursive_mutex& OperationMutex() {
  static std::recursive_mutex mutex;
  return mutex;
}

const char* OrNull(const std::string& text) { return text.empty() ? nullptr : text.c_str(); }

// "utf8" on current servers is a three-byte subset that turns characters
// beyond the Basic Multilingual Plane into "?"; utf8mb4 keeps them. A server
// that does not know utf8mb4 gets utf8.
void SetCharacterSet(MYSQL* handle, const char* variable) {
  const std::string full = std::string("SET ") + variable + "=utf8mb4";
  if (mysql_query(handle, full.c_str()) != 0) {
    const std::string basic = std::string("SET ") + variable + "=utf8";
    mysql_query(handle, basic.c_str());
  }
}

}  // namespace

MySqlSession::MySqlSession() : lock_(OperationMutex()) {
  // Once per process, before any handle; not thread-safe, hence under the lock.
  static const bool libraryReady = mysql_library_init(0, nullptr, nullptr) == 0;
  (void)libraryReady;
}

MySqlSession::~MySqlSession() { pConnection = nullptr; }

bool MySqlSession::Init() {
  MYSQL* handle = mysql_init(nullptr);
  if (handle == nullptr) return false;
  handles_.emplace_back(handle);
  pConnection = handle;
  unsigned timeout = kConnectTimeoutSeconds;
  mysql_options(handle, MYSQL_OPT_CONNECT_TIMEOUT, &timeout);
  return true;
}

MYSQL* MySqlSession::Current() const { return handles_.empty() ? nullptr : handles_.back().get(); }

bool MySqlSession::Connect(const PMString& host, int port, const PMString& user, const PMString& password,
                           const PMString& database, const char* socket, unsigned long flags) {
  if (Current() == nullptr) return false;
  const std::string hostBytes = host.GrabCString();
  const std::string userBytes = user.GrabCString();
  const std::string passwordBytes = password.GrabCString();
  const std::string databaseBytes = database.GrabCString();
  return mysql_real_connect(Current(), OrNull(hostBytes), userBytes.c_str(), passwordBytes.c_str(),
                            OrNull(databaseBytes), static_cast<unsigned>(port), socket, flags) != nullptr;
}

bool MySqlSession::InitAndConnect(const PMString& host, int port, const PMString& user, const PMString& password,
                                  const PMString& database, const char* socket, unsigned long flags) {
  if (Init() && Connect(host, port, user, password, database, socket, flags)) return true;
  Close();
  return false;
}

void MySqlSession::Prepare() {
  MYSQL* handle = Current();
  if (handle == nullptr) return;
  SetCharacterSet(handle, "character_set_client");
  SetCharacterSet(handle, "character_set_results");
  SetCharacterSet(handle, "character_set_connection");
}

bool MySqlSession::Query(std::string_view statement) {
  refusal_.clear();
  return Current() != nullptr && mysql_real_query(Current(), statement.data(), statement.size()) == 0;
}

Result MySqlSession::StoreResult() { return Result(Current() ? mysql_store_result(Current()) : nullptr); }

Result MySqlSession::ListFields(const PMString& table) {
  refusal_.clear();
  if (Current() == nullptr) return nullptr;
  const std::string name = table.GrabCString();
  // The client library copies the name into a buffer of its own that longer
  // names overrun. No table is named like that (the server allows 64
  // characters), so the name is refused here in the server's own words.
  if (name.size() > kLongestTableName) {
    refusal_ = "Incorrect table name '" + name + "'";
    return nullptr;
  }
  return Result(mysql_list_fields(Current(), name.c_str(), nullptr));
}

Result MySqlSession::ListDatabases() { return Result(Current() ? mysql_list_dbs(Current(), nullptr) : nullptr); }

Result MySqlSession::ListTables() { return Result(Current() ? mysql_list_tables(Current(), nullptr) : nullptr); }

unsigned MySqlSession::ErrorNumber() const {
  if (!refusal_.empty()) return kWrongTableName;
  return Current() ? mysql_errno(Current()) : 0;
}

std::string MySqlSession::ErrorText() const {
  if (!refusal_.empty()) return refusal_;
  return Current() ? mysql_error(Current()) : "";
}

void MySqlSession::Close() {
  if (handles_.empty() || !handles_.back()) return;
  closedAddress_ = reinterpret_cast<std::uintptr_t>(handles_.back().get());
  handles_.back().reset();
  pConnection = nullptr;
}

bool MySqlSession::FreshHandleDiffersFromCurrent() {
  const Handle fresh(mysql_init(nullptr));
  const std::uintptr_t current = pConnection ? reinterpret_cast<std::uintptr_t>(pConnection) : closedAddress_;
  return reinterpret_cast<std::uintptr_t>(fresh.get()) != current;
}

std::string FieldNamesList(MYSQL_RES* result) {
  std::string names;
  if (result == nullptr) return names;
  const MYSQL_FIELD* fields = mysql_fetch_fields(result);
  for (unsigned i = 0, n = mysql_num_fields(result); i < n; ++i) {
    names.append(fields[i].name, fields[i].name_length).push_back('\r');
  }
  return names;
}

}  // namespace sql
}  // namespace talp
