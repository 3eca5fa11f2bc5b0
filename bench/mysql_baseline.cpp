// The least a program can do for what "talp loop" and "talp record" do on
// the MySQL source, written straight against the client library: the
// yardstick of bench/mysql_scale.sh. The password comes from TALP_PASSWORD.
//   mysql_baseline loop HOST PORT USER DATABASE TABLE
//   mysql_baseline record HOST PORT USER DATABASE TABLE KEYFIELD KEYVALUE
#include <mysql.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

int Fail(MYSQL* handle) {
  std::fprintf(stderr, "mysql_baseline: %s\n", mysql_error(handle));
  return 1;
}

void WriteRows(MYSQL_RES* result) {
  const unsigned n = mysql_num_fields(result);
  while (MYSQL_ROW row = mysql_fetch_row(result)) {
    const unsigned long* lengths = mysql_fetch_lengths(result);
    for (unsigned i = 0; i < n; ++i) {
      if (row[i] != nullptr) std::fwrite(row[i], 1, lengths[i], stdout);
      std::fputc('\t', stdout);
    }
    std::fputc('\r', stdout);
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string mode = argc > 1 ? argv[1] : "";
  if (!((mode == "loop" && argc == 7) || (mode == "record" && argc == 9))) {
    std::fprintf(stderr, "usage: mysql_baseline loop|record HOST PORT USER DATABASE TABLE [KEYFIELD KEYVALUE]\n");
    return 2;
  }
  const char* password = std::getenv("TALP_PASSWORD");
  MYSQL* handle = mysql_init(nullptr);
  if (!mysql_real_connect(handle, argv[2], argv[4], password ? password : "", argv[5],
                          static_cast<unsigned>(std::atoi(argv[3])), nullptr, 0)) {
    return Fail(handle);
  }
  const std::string table = argv[6];
  std::string statement = "SELECT * FROM " + table;
  if (mode == "record") {
    MYSQL_RES* fields = mysql_list_fields(handle, table.c_str(), nullptr);
    if (fields == nullptr) return Fail(handle);
    mysql_free_result(fields);
    statement += std::string(" WHERE ") + argv[7] + "='" + argv[8] + "'";
  }
  for (const char* set : {"SET character_set_client=utf8mb4", "SET character_set_results=utf8mb4",
                          "SET character_set_connection=utf8mb4"}) {
    mysql_query(handle, set);
  }
  if (mysql_query(handle, statement.c_str()) != 0) return Fail(handle);
  MYSQL_RES* result = mysql_store_result(handle);
  if (result == nullptr) return Fail(handle);
  WriteRows(result);
  mysql_free_result(result);
  mysql_close(handle);
  return 0;
}
