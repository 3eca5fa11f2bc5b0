#include "mysql_fixture.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace talp::test {
namespace {

std::string Env(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// Letters, digits and underscores of the running test's name.
std::string TestTag() {
  const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
  std::string tag = std::string(info->test_suite_name()) + "_" + info->name();
  for (char& c : tag) {
    if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
  }
  // Database names are limited to 64 characters.
  return "t" + std::to_string(::getpid()) + "_" + tag.substr(0, 40);
}

}  // namespace

const MySqlServer& TestServer() {
  static const MySqlServer server{Env("TALP_MYSQL_HOST"), Env("TALP_MYSQL_USER"), Env("TALP_MYSQL_PASSWORD"),
                                  Env("TALP_MYSQL_SOCKET"), std::atoi(Env("TALP_MYSQL_PORT").c_str())};
  return server;
}

void MySqlTest::SetUp() {
  const MySqlServer& server = TestServer();
  ASSERT_FALSE(server.host.empty()) << "no test server: run the tests with scripts/run-tests.sh";
  admin_ = mysql_init(nullptr);
  ASSERT_NE(mysql_real_connect(admin_, server.host.c_str(), server.user.c_str(), server.password.c_str(), nullptr,
                               static_cast<unsigned>(server.port), nullptr, CLIENT_MULTI_STATEMENTS),
            nullptr)
      << mysql_error(admin_);
  mysql_set_character_set(admin_, "utf8mb4");
  const std::string name = TestTag();
  const std::string create = "DROP DATABASE IF EXISTS " + name + "; CREATE DATABASE " + name +
                             " CHARACTER SET utf8mb4; USE " + name;
  Exec(create);
  host = PMString(server.host);
  port = server.port;
  user = PMString(server.user);
  password = PMString(server.password);
  database = PMString(name);
}

void MySqlTest::TearDown() {
  if (admin_ == nullptr) return;
  std::string drop = "DROP DATABASE IF EXISTS " + database.GrabCString();
  for (const std::string& name : users_) drop += "; DROP USER IF EXISTS '" + name + "'@'%'";
  if (!database.IsEmpty()) Exec(drop);
  mysql_close(admin_);
}

void MySqlTest::Exec(const std::string& statements) {
  ASSERT_EQ(mysql_query(admin_, statements.c_str()), 0) << mysql_error(admin_) << "\nin: " << statements;
  // Drains every result of a multi-statement text.
  do {
    if (MYSQL_RES* result = mysql_store_result(admin_)) mysql_free_result(result);
  } while (mysql_next_result(admin_) == 0);
  ASSERT_EQ(mysql_errno(admin_), 0U) << mysql_error(admin_) << "\nin: " << statements;
}

std::vector<std::string> MySqlTest::Rows(const std::string& query) {
  std::vector<std::string> rows;
  EXPECT_EQ(mysql_query(admin_, query.c_str()), 0) << mysql_error(admin_);
  MYSQL_RES* result = mysql_store_result(admin_);
  if (result == nullptr) return rows;
  const unsigned n = mysql_num_fields(result);
  while (MYSQL_ROW row = mysql_fetch_row(result)) {
    const unsigned long* lengths = mysql_fetch_lengths(result);
    std::string line;
    for (unsigned i = 0; i < n; ++i) {
      if (i > 0) line += '\t';
      line += row[i] ? std::string(row[i], lengths[i]) : "\\N";
    }
    rows.push_back(line);
  }
  mysql_free_result(result);
  return rows;
}

std::string MySqlTest::CreateUser(const std::string& suffix, const std::string& secret) {
  const std::string name = "u" + std::to_string(::getpid()) + suffix;
  users_.push_back(name);
  Exec("CREATE USER '" + name + "'@'%' IDENTIFIED BY '" + secret + "'; GRANT ALL ON " + database.GrabCString() +
       ".* TO '" + name + "'@'%'");
  return name;
}

}  // namespace talp::test
