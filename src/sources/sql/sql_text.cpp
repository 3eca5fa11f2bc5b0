#include "sources/sql/sql_text.h"

#include <vector>

#include "host/utf.h"
#include "text/text_handlers.h"

namespace talp::sql {

PMString LikeCondition(const std::string& text, const WideString& columns) {
  // The caller's text is trusted: quotes and wildcards in it act as SQL.
  const std::vector<std::u16string_view> names = SplitFields(columns.Units(), u'\r');
  const std::size_t count = names.size() - 1;
  std::u16string condition = u" WHERE ";
  std::u16string like = u" LIKE ";
  like.append(WideString("'%" + text + "%'").Units());
  for (std::size_t i = 0; i < count; ++i) {
    // After an empty last name the condition ends with " OR ".
    if (names[i].empty()) continue;
    condition.append(names[i]).append(like);
    if (i + 1 != count) condition.append(u" OR ");
  }
  return PMString(WideString(std::move(condition)));
}

std::string RecordListStatement(const PMString& table, const PMString& sortField, const PMString& shownField,
                                const PMString& condition, const PMString& groupField) {
  const std::string sort = sortField.GrabCString();
  std::string statement = "SELECT " + shownField.GrabCString() + "," + sort + " FROM " + table.GrabCString();
  statement += condition.GrabCString();
  if (AsksForGrouping(groupField)) statement += " GROUP BY " + groupField.GrabCString();
  return statement + " ORDER BY " + sort + " ASC LIMIT 200";
}

std::string SelectWhereEquals(const PMString& table, const PMString& field, std::string_view value) {
  std::string statement = "SELECT * FROM " + table.GrabCString() + " WHERE " + field.GrabCString() + "='";
  statement.append(value).push_back('\'');
  return statement;
}

void AppendProtected(std::string& out, std::string_view value, bool lineFeeds) {
  const char* specials = lineFeeds ? "\r\t\n" : "\r\t";
  for (;;) {
    const std::size_t special = value.find_first_of(specials);
    if (special == std::string_view::npos) break;
    out.append(value.substr(0, special));
    out.append(value[special] == '\r' ? "<br>" : value[special] == '\t' ? "<tb>" : "<sr>");
    value.remove_prefix(special + 1);
  }
  out.append(value);
}

void DecodeInto(std::string_view bytes, WideString& output) {
  std::u16string units;
  units.reserve(bytes.size());
  utf::DecodeUTF8(bytes, units);
  output = WideString(std::move(units));
}

bool AsksForGrouping(const PMString& groupField) {
  return !groupField.IsEmpty() && groupField != PMString("None");
}

GroupEntries::GroupEntries(const WideString& header, const WideString& styling, const PMString& lineLayout)
    : header_(header), restyle_(styling), useLayout_(!lineLayout.IsEmpty()),
      entry_(lineLayout.AsWide().Units(), header.Units()) {}

void GroupEntries::Add(std::u16string& record) {
  const auto& fields = restyle_.RestyleInLoop(header_, record);
  if (count_ > 0) text_.append(u"<br>");
  text_.append(count_ % 2 == 0 ? u"<pstyle:LineLight>" : u"<pstyle:LineDark>");
  if (useLayout_) {
    entry_.Fill(fields, text_);
  } else {
    text_.append(record);
  }
  ++count_;
}

std::u16string GroupEntries::Finish() {
  if (count_ == 0) return {};
  text_.push_back(kCR);
  AppendNumber(count_, text_);
  text_.push_back(kCR);
  return std::move(text_);
}

}  // namespace talp::sql
