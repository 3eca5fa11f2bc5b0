#include <gtest/gtest.h>

#include "mysql_fixture.h"
#include "sources/sql/sql_base.h"

namespace talp {
namespace {

class SearchString : public test::MySqlTest {
 protected:
  std::string Build(const std::string& table, const std::string& input) {
    PMString search(input);
    CreateSearchString(host, port, user, password, database, PMString(table), search);
    return search.GrabCString();
  }
};

TEST_F(SearchString, ClassifiesTheInputByItsFirstCharacters) {
  Exec("CREATE TABLE tt (a INT, b TEXT, c TEXT)");
  const struct { const char *input, *expected, *table = "tt"; } cases[] = {
      {"", ""},
      {"SELECT * FROM tt", "SELECT * FROM tt"},
      {"WHERE id=3", " WHERE id=3"},
      {"WHERE ", " WHERE "},
      {"x", " WHERE a LIKE '%x%' OR b LIKE '%x%' OR c LIKE '%x%'"},
      {"select * from t",
       " WHERE a LIKE '%select * from t%' OR b LIKE '%select * from t%' OR c LIKE '%select * from t%'"},
      {"WHERE", " WHERE a LIKE '%WHERE%' OR b LIKE '%WHERE%' OR c LIKE '%WHERE%'"},
      // Trusted text: the quote is not escaped.
      {"o'brien", " WHERE a LIKE '%o'brien%' OR b LIKE '%o'brien%' OR c LIKE '%o'brien%'"},
      {"50%_", " WHERE a LIKE '%50%_%' OR b LIKE '%50%_%' OR c LIKE '%50%_%'"},
      // Without columns the condition is empty; a one-character table name lists none.
      {"x", " WHERE ", "missing"},
      {"x", " WHERE ", "t"},
  };
  for (const auto& c : cases) EXPECT_EQ(Build(c.table, c.input), c.expected) << c.input << " in " << c.table;
}

TEST_F(SearchString, FindsWordsInAnyColumn) {
  Exec("CREATE TABLE goods (id INT, name TEXT); INSERT INTO goods VALUES (1, 'hammer'), (2, 'drill'), (31, 'x')");
  EXPECT_EQ(Rows("SELECT id FROM goods" + Build("goods", "ll")), std::vector<std::string>{"2"});
  EXPECT_EQ(Rows("SELECT id FROM goods" + Build("goods", "3")), std::vector<std::string>{"31"});
}

}  // namespace
}  // namespace talp
