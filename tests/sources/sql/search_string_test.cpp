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
  const struct {
    const char* input;
    const char* expected;
  } cases[] = {
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
  };
  for (const auto& c : cases) EXPECT_EQ(Build("tt", c.input), c.expected) << c.input;
}

TEST_F(SearchString, WithoutColumnsTheConditionIsEmpty) {
  EXPECT_EQ(Build("missing", "x"), " WHERE ");
  EXPECT_EQ(Build("t", "x"), " WHERE ");  // a one-character table name lists no columns
}

TEST_F(SearchString, FindsWordsInAnyColumn) {
  Exec("CREATE TABLE goods (id INT, name TEXT); INSERT INTO goods VALUES (1, 'hammer'), (2, 'drill'), (31, 'x')");
  const std::string condition = Build("goods", "ll");
  EXPECT_EQ(Rows("SELECT id FROM goods" + condition), std::vector<std::string>{"2"});
  EXPECT_EQ(Rows("SELECT id FROM goods" + Build("goods", "3")), std::vector<std::string>{"31"});
}

}  // namespace
}  // namespace talp
