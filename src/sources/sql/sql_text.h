// Texts that both SQL sources, "mySQL" and "ODBC", build the same way: the
// search condition, the statements of the record list and of one record or
// group, protected values and the group lines of a specific record. Plain
// functions and one single-threaded builder; nothing here talks to a server.
#pragma once

#include <string>
#include <string_view>

#include "talp/pm_string.h"
#include "talp/wide_string.h"
#include "text/record_template.h"
#include "text/word_styling.h"

namespace talp::sql {

// The " WHERE a LIKE '%text%' OR b LIKE ..." condition of plain text over a
// CR-separated column list: one term for each CR, so a name after the last
// CR gets none; an empty name adds nothing, not even its " OR ".
PMString LikeCondition(const std::string& text, const WideString& columns);

// The search rules: empty stays empty, "SELECT ..." stays as it is, "WHERE
// ..." gains a leading blank, and other text becomes " WHERE a LIKE '%text%'
// OR b LIKE ..." with one term for each CR in the column list that columns()
// gives (asked for plain text only), the text inserted unescaped.
template <typename Columns>
void ApplySearchRules(PMString& search, Columns&& columns) {
  const std::string input = search.GrabCString();
  if (input.empty() || input.starts_with("SELECT ")) return;
  search = input.starts_with("WHERE ") ? PMString(" " + input) : LikeCondition(input, columns());
}
// "SELECT shown,sort FROM table" with the condition, the grouping and the
// order of the record list, at most 200 rows.
std::string RecordListStatement(const PMString& table, const PMString& sortField, const PMString& shownField,
                                const PMString& condition, const PMString& groupField);

// "SELECT * FROM table WHERE field='value'", the value unescaped.
std::string SelectWhereEquals(const PMString& table, const PMString& field, std::string_view value);

// Appends value with every CR written as "<br>" and every TAB as "<tb>" (and,
// with lineFeeds, every LF as "<sr>"), so that it can stand in a TAB- or
// CR-separated text.
void AppendProtected(std::string& out, std::string_view value, bool lineFeeds = false);

// Replaces output with bytes decoded as UTF-8 (malformed bytes become U+FFFD).
void DecodeInto(std::string_view bytes, WideString& output);

// True when a group field asks for grouping: neither empty nor "None".
bool AsksForGrouping(const PMString& groupField);

// The group lines of a specific record: each record laid out by the styling
// and the line layout (or its own fields without one), light and dark in
// turn from light, joined by "<br>", then a CR, the number of records and a
// CR. header and styling must outlive the builder.
class GroupEntries {
 public:
  GroupEntries(const WideString& header, const WideString& styling, const PMString& lineLayout);
  // record: the fields, each followed by TAB; restyled in place.
  void Add(std::u16string& record);
  // The text; empty when no record was added.
  std::u16string Finish();

 private:
  const WideString& header_;
  WordStyling restyle_;
  bool useLayout_;
  RecordTemplate entry_;
  std::u16string text_;
  long count_ = 0;
};

}  // namespace talp::sql
