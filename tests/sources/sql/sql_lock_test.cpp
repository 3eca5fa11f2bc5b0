#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "database_fixture.h"
#include "sources/odbc/odbc_connection.h"
#include "sources/sql/mysql_connection.h"

namespace talp {
namespace {

class SqlLock : public test::SourceTest {};
ON_EVERY_SOURCE(SqlLock);

TEST_P(SqlLock, AnOperationWaitsForTheOneThatRuns) {
  Exec({"CREATE TABLE tt (id INT)"});
  std::atomic<bool> done = false;
  std::thread other;
  {
    // Holds the lock, as a running operation does.
    std::optional<sql::MySqlSession> mysql;
    std::optional<odbc::Session> odbc;
    Odbc() ? (void)odbc.emplace() : (void)mysql.emplace();
    other = std::thread([&] {
      WideString result;
      Tables(result);
      done = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(done);
  }
  other.join();
  EXPECT_TRUE(done);
}

// The operations share their handles; concurrent callers wait for each other.
TEST_P(SqlLock, ConcurrentOperationsDoNotCorruptEachOther) {
  std::string insert = "INSERT INTO c VALUES (1, 'row1')", expected = "row1\t1\t\r";
  for (int i = 2; i <= 50; ++i) {
    insert += ", (" + std::to_string(i) + ", 'row" + std::to_string(i) + "')";
    expected += "row" + std::to_string(i) + "\t" + std::to_string(i) + "\t\r";
  }
  Exec({"CREATE TABLE t (id INT PRIMARY KEY, v TEXT)", "INSERT INTO t VALUES (42, 'old')",
        "CREATE TABLE c (id INT PRIMARY KEY, v TEXT)", insert});
  std::atomic<int> failures = 0;
  auto reader = [&] {
    for (int round = 0; round < 15; ++round) {
      WideString result;
      failures += List("c", "id", "v", "", "", result) != 0 || result.ToUTF8() != expected;
    }
  };
  auto writer = [&] {
    for (int round = 0; round < 15; ++round) failures += Update("old", "v", "42", "t", "id") != 0;
  };
  std::thread threads[] = {std::thread(reader), std::thread(reader), std::thread(writer)};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
