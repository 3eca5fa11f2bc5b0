#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "database_fixture.h"

namespace talp {
namespace {

class SqlLock : public test::SourceTest {};
ON_EVERY_SOURCE(SqlLock);

// The operations of a source share their handles: concurrent callers wait
// for each other instead of corrupting one another's results.
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
