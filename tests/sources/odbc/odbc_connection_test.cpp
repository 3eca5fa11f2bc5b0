#include <gtest/gtest.h>

#include <functional>

#include "database_fixture.h"
#include "sources/odbc/odbc_base.h"

namespace talp {
namespace {

class OdbcConnection : public test::SourceTest {};
INSTANTIATE_TEST_SUITE_P(, OdbcConnection,
                         testing::Values(test::Source::kOdbcSQLite, test::Source::kOdbcMariaDB), test::SourceName);

// Every operation with a data source it cannot reach: its status, one alert,
// the diagnostics on standard error, and the output it leaves.
TEST_P(OdbcConnection, RefusedConnection) {
  const std::string unknown =
      "1: SQLDriverConnect = [unixODBC][Driver Manager]Data source name not found and no default driver specified "
      "(0) SQLSTATE=IM002\n";
  using Operation = std::function<int(const PMString& dsn, const PMString& secret, WideString& out)>;
  const struct { const char* name; Operation run; int status; const char* output; } operations[] = {
      {"tables", [](auto& d, auto& s, auto& out) { return fetchTableListODBC("u", s, d, out); }, 1, ""},
      {"columns", [](auto& d, auto& s, auto& out) { return fetchColumnListODBC("u", s, d, "t", out); }, 1, ""},
      {"list", [](auto& d, auto& s, auto& out) { return fetchRecordListODBC("u", s, d, "t", "a", "b", "x", "", out); },
       0, ""},
      {"record",
       [](auto& d, auto& s, auto& out) { return fetchSpecificRecordODBC("u", s, d, "t", "a", "1", "g", "", "", out); },
       0, "untouched"},
      {"group",
       [](auto& d, auto& s, auto& out) { return fetchRecordGroupLoopODBC("u", s, d, "t", out, "x", "g", "", ""); }, 0,
       "untouched"},
      {"update",
       [](auto& d, auto& s, auto&) { return updateBaseFieldWithInfoODBC("v", "f", "1", "u", s, d, "t", "k"); }, 0,
       "untouched"},
  };
  for (const auto& o : operations) {
    const struct { PMString dsn, secret; } cases[] = {{"talp_no_such_source", password},
                                                     {dsn, Pick(nullptr, "not-the-password")}};
    for (const auto& c : cases) {
      if (c.secret.IsEmpty() || (Kind() == test::Source::kOdbcSQLite && c.dsn == dsn)) continue;
      alerts.alerts.clear();
      WideString result("untouched");
      testing::internal::CaptureStderr();
      EXPECT_EQ(o.run(c.dsn, c.secret, result), o.status) << o.name;
      const std::string diagnostics = testing::internal::GetCapturedStderr();
      EXPECT_EQ(result.ToUTF8(), o.output) << o.name;
      // However often the operation connects, the alert shows once.
      EXPECT_EQ(alerts.alerts, std::vector<std::string>{"Unable to connect to the data source!"}) << o.name;
      EXPECT_TRUE(diagnostics.starts_with(c.dsn == dsn ? "1: SQLDriverConnect = [ma-" : unknown)) << diagnostics;
    }
  }
}

// unixODBC reports a driver library that cannot be loaded with state 01000;
// the process then ends, through the host, with status -1.
TEST_P(OdbcConnection, MissingDriverEndsTheProcess) {
  WideString result("untouched");
  testing::internal::CaptureStderr();
  try {
    fetchTableListODBC(user, password, PMString(std::getenv("TALP_ODBC_MISSING_DSN")), result);
    ADD_FAILURE() << "the process went on";
  } catch (const test::ProcessExit& exit) {
    EXPECT_EQ(exit.status, -1);
  }
  const std::string diagnostics = testing::internal::GetCapturedStderr();
  EXPECT_TRUE(diagnostics.starts_with("1: SQLDriverConnect = [unixODBC][Driver Manager]Can't open lib '")) << diagnostics;
  EXPECT_TRUE(diagnostics.ends_with("no-such-driver.so' : file not found (0) SQLSTATE=01000\n")) << diagnostics;
  EXPECT_TRUE(alerts.alerts.empty());
}

// Values are read into a buffer of 4096 bytes: longer ones are cut.
TEST_P(OdbcConnection, LongValuesAreCut) {
  Exec({"CREATE TABLE t (id INT, v TEXT)", "INSERT INTO t VALUES (1, '" + std::string(5000, 'x') + "')"});
  WideString result;
  testing::internal::CaptureStderr();
  fetchRecordListODBC(user, password, dsn, "t", "id", "v", "", "", result);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(result.ToUTF8(), std::string(4095, 'x') + "\t1\t\r");
}

}  // namespace
}  // namespace talp
