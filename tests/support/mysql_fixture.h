// Tests against the throw-away MariaDB server that scripts/run-tests.sh
// starts (its address comes from the TALP_MYSQL_* environment variables).
// Each test gets a database of its own, dropped again afterwards, so tests
// never depend on each other or on the order they run in.
#pragma once

#include <gtest/gtest.h>
#include <mysql.h>

#include <string>
#include <vector>

#include "talp/pm_string.h"
#include "test_host.h"

namespace talp::test {

struct MySqlServer {
  std::string host, user, password, socket;
  int port = 0;
};

// The server of this test run; fails the test when none was started.
const MySqlServer& TestServer();

class MySqlTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Runs statements on the test's database through the client library
  // directly; fails the test on a server error.
  void Exec(const std::string& statements);
  // The rows of a query, fields joined by TAB, NULL as "\\N".
  std::vector<std::string> Rows(const std::string& query);
  // A user of the test's own, with password, allowed the test's database
  // only; dropped with the database.
  std::string CreateUser(const std::string& suffix, const std::string& password);

  PMString host, user, password, database;
  int port = 0;
  TestHost alerts;

 private:
  MYSQL* admin_ = nullptr;
  std::vector<std::string> users_;
};

}  // namespace talp::test
