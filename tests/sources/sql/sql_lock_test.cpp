#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "mysql_fixture.h"
#include "sources/sql/mysql_connection.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SqlLock : public test::MySqlTest {};

TEST_F(SqlLock, AnOperationWaitsForTheOneThatRuns) {
  Exec("CREATE TABLE tt (id INT)");
  std::atomic<bool> done = false;
  std::thread other;
  {
    const sql::MySqlSession running;  // holds the lock, as a running operation does
    other = std::thread([&] {
      WideString result;
      fetchTableListSQL(host, port, user, password, database, result);
      done = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_FALSE(done);
  }
  other.join();
  EXPECT_TRUE(done);
}

// The operations share one handle; concurrent callers wait for each other.
TEST_F(SqlLock, ConcurrentOperationsDoNotCorruptEachOther) {
  Exec("CREATE TABLE t (id INT PRIMARY KEY, v TEXT); INSERT INTO t VALUES (42, 'old');"
       "CREATE TABLE c (id INT PRIMARY KEY, v TEXT); INSERT INTO c SELECT seq, CONCAT('row', seq) FROM seq_1_to_50");
  std::string expected;
  for (int i = 1; i <= 50; ++i) expected += std::to_string(i) + "\trow" + std::to_string(i) + "\t\r";
  std::atomic<int> failures = 0;
  auto reader = [&] {
    for (int round = 0; round < 15; ++round) {
      WideString result;
      const int status = fetchRecordLoopSQL(host, port, user, password, database, "c", result, "ORDER BY id");
      if (status != 0 || result.ToUTF8() != expected) ++failures;
    }
  };
  auto writer = [&] {
    for (int round = 0; round < 15; ++round) {
      failures += updateBaseFieldWithInfoSQL("old", "v", "42", host, port, user, password, database, "t", "id") != 0;
    }
  };
  std::thread threads[] = {std::thread(reader), std::thread(reader), std::thread(writer)};
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_TRUE(alerts.alerts.empty());
}

}  // namespace
}  // namespace talp
