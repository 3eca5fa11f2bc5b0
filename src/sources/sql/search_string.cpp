#include <string>
#include <string_view>
#include <vector>

#include "sources/sql/sql_base.h"
#include "text/record_template.h"

namespace talp {

void CreateSearchString(const PMString& host, int port, const PMString& user, const PMString& password,
                        const PMString& database, const PMString& table, PMString& search) {
  const std::string input = search.GrabCString();
  if (input.empty() || input.starts_with("SELECT ")) return;
  if (input.starts_with("WHERE ")) {
    search = PMString(" " + input);
    return;
  }
  // The caller's text is trusted: quotes and wildcards in it act as SQL.
  const std::string pattern = "'%" + input + "%'";
  WideString columns;
  fetchColumnListSQL(host, port, user, password, database, table, search, columns);
  // One name per CR; whatever follows the last CR is not a column.
  const std::vector<std::u16string_view> names = SplitFields(columns.Units(), u'\r');
  const std::size_t count = names.size() - 1;
  std::u16string condition = u" WHERE ";
  std::u16string like = u" LIKE ";
  like.append(WideString(pattern).Units());
  for (std::size_t i = 0; i < count; ++i) {
    // An empty name adds nothing, not even its " OR ": after an empty last
    // name the condition ends with " OR ".
    if (names[i].empty()) continue;
    condition.append(names[i]).append(like);
    if (i + 1 != count) condition.append(u" OR ");
  }
  search = PMString(WideString(std::move(condition)));
}

}  // namespace talp
