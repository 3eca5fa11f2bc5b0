// Tests against the real databases that scripts/run-tests.sh provides: its
// throw-away MariaDB server (TALP_MYSQL_*), reached through the MySQL client
// library or the MariaDB ODBC driver, and SQLite files through the SQLite
// ODBC driver (data sources from ODBCSYSINI, names in TALP_ODBC_*). Each test
// gets a database of its own, dropped again afterwards, so tests never
// depend on each other or on the order they run in.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "sources/odbc/odbc_base.h"
#include "sources/sql/sql_base.h"
#include "talp/pm_string.h"
#include "talp/wide_string.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp::test {

enum class Source { kMySQL, kOdbcSQLite, kOdbcMariaDB };

class DatabaseTest : public testing::Test {
 protected:
  virtual Source Kind() const { return Source::kMySQL; }
  bool Odbc() const { return Kind() != Source::kMySQL; }
  // What the source under test expects: the MySQL or the ODBC text.
  const char* Pick(const char* mysql, const char* odbc) const { return Odbc() ? odbc : mysql; }

  void SetUp() override;
  void TearDown() override;

  // Runs statements on the test's database through the ODBC driver directly
  // (not through the code under test); fails the test on an error.
  void Exec(std::initializer_list<std::string> statements);
  // The rows of a query, fields joined by TAB, NULL as "\\N".
  std::vector<std::string> Rows(const std::string& query);

  // The operations of the source under test, its connection filled in.
  int Tables(WideString& out) {
    return Odbc() ? fetchTableListODBC(user, password, dsn, out)
                  : fetchTableListSQL(host, port, user, password, database, out);
  }
  // The query is MySQL's alone.
  int Columns(const PMString& table, WideString& out, const PMString& query = "") {
    return Odbc() ? fetchColumnListODBC(user, password, dsn, table, out)
                  : fetchColumnListSQL(host, port, user, password, database, table, query, out);
  }
  int List(const PMString& table, const PMString& sort, const PMString& shown, const PMString& search,
           const PMString& group, WideString& out) {
    return Odbc() ? fetchRecordListODBC(user, password, dsn, table, sort, shown, search, group, out)
                  : fetchRecordListSQL(host, port, user, password, database, table, sort, shown, search, group, out);
  }
  int Record(const PMString& table, const PMString& key, const PMString& value, const PMString& group,
             const PMString& layout, const WideString& styling, WideString& out) {
    return Odbc() ? fetchSpecificRecordODBC(user, password, dsn, table, key, value, group, layout, styling, out)
                  : fetchSpecificRecordSQL(host, port, user, password, database, table, key, value, group, layout,
                                           styling, out);
  }
  int Group(const PMString& table, WideString& out, const PMString& condition, const PMString& group,
            const PMString& layout, const WideString& styling) {
    return Odbc() ? fetchRecordGroupLoopODBC(user, password, dsn, table, out, condition, group, layout, styling)
                  : fetchRecordGroupLoopSQL(host, port, user, password, database, table, out, condition, group,
                                            layout, styling);
  }
  int Update(const WideString& value, const PMString& field, const PMString& key, const PMString& table,
             const PMString& keyField) {
    return Odbc() ? updateBaseFieldWithInfoODBC(value, field, key, user, password, dsn, table, keyField)
                  : updateBaseFieldWithInfoSQL(value, field, key, host, port, user, password, database, table,
                                               keyField);
  }

  PMString host, user, password, database, dsn;
  int port = 0;
  TestHost alerts;

 private:
  std::string server_;  // the MariaDB data source
  std::unique_ptr<TempFolder> folder_;  // the SQLite file's
};

// The same tests against every source: TEST_P on a SourceTest, then
// ON_EVERY_SOURCE(suite).
class SourceTest : public DatabaseTest, public testing::WithParamInterface<Source> {
 protected:
  Source Kind() const override { return GetParam(); }
};
inline std::string SourceName(const testing::TestParamInfo<Source>& info) {
  return info.param == Source::kMySQL ? "MySQL" : info.param == Source::kOdbcSQLite ? "OdbcSQLite" : "OdbcMariaDB";
}
#define ON_EVERY_SOURCE(suite)                                                                            \
  INSTANTIATE_TEST_SUITE_P(, suite,                                                                       \
                           testing::Values(::talp::test::Source::kMySQL, ::talp::test::Source::kOdbcSQLite, \
                                           ::talp::test::Source::kOdbcMariaDB),                           \
                           ::talp::test::SourceName)

// Runs operation with standard error captured; what it wrote there (the
// drivers' diagnostics).
template <typename Operation>
std::string Diagnostics(const Operation& operation) {
  testing::internal::CaptureStderr();
  operation();
  return testing::internal::GetCapturedStderr();
}

}  // namespace talp::test
