#include <gtest/gtest.h>

#include "database_fixture.h"
#include "sources/odbc/odbc_base.h"

namespace talp {
namespace {

class OdbcConnection : public test::SourceTest {};
INSTANTIATE_TEST_SUITE_P(, OdbcConnection,
                         testing::Values(test::Source::kOdbcSQLite, test::Source::kOdbcMariaDB), test::SourceName);

// unixODBC reports a driver library that cannot be loaded with state 01000;
// the process then ends, through the host, with status -1.
TEST_P(OdbcConnection, MissingDriverEndsTheProcess) {
  WideString result("untouched");
  const std::string diagnostics = test::Diagnostics([&] {
    try {
      fetchTableListODBC(user, password, PMString(std::getenv("TALP_ODBC_MISSING_DSN")), result);
      ADD_FAILURE() << "the process went on";
    } catch (const test::ProcessExit& exit) {
      EXPECT_EQ(exit.status, -1);
    }
  });
  EXPECT_TRUE(diagnostics.starts_with("1: SQLDriverConnect = [unixODBC][Driver Manager]Can't open lib '")) << diagnostics;
  EXPECT_TRUE(diagnostics.ends_with("no-such-driver.so' : file not found (0) SQLSTATE=01000\n")) << diagnostics;
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
