// Reading an XML table back into the CR/TAB form.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/text_handlers.h"
#include "text/xml_table.h"
#include "text/xml_text.h"

namespace talp {
namespace {

using namespace xml;  // NOLINT: the helpers of this one component

// The markup is scanned once per pass, ROW by ROW.

enum class TagKind { kOpen, kClose, kEmpty, kOther };

struct Markup {
  TagKind kind;
  std::size_t begin;  // offset of the "<"
  std::size_t end;    // offset after the ">"
  Units name;         // all between "<" (or "</") and ">" (or "/>")
};

bool IsBlank(char16_t c) { return c == u' ' || c == kTab || c == kCR || c == kLF; }

// "ROW", also with attributes, which other writers add.
bool IsRowName(Units name) { return name.starts_with(u"ROW") && (name.size() == 3 || IsBlank(name[3])); }

// The markup of a text in order. A "<" that the next ">" does not close before
// another "<" is text, so "a<b" inside a value stays a value. Comments run to
// "-->" (or the end); "<?...>" and "<!...>" are passed on as kOther.
class MarkupScanner {
 public:
  explicit MarkupScanner(Units text) : text_(text) {}

  bool Next(Markup& markup) {
    while (true) {
      const std::size_t at = text_.find(u'<', pos_);
      if (at == kNone) break;
      if (text_.substr(at).starts_with(u"<!--")) {
        const std::size_t close = text_.find(u"-->", at + 4);
        pos_ = close == kNone ? text_.size() : close + 3;
        markup = {TagKind::kOther, at, pos_, {}};
        return true;
      }
      const std::size_t close = text_.find_first_of(u"<>", at + 1);
      if (close == kNone) break;
      pos_ = close;
      if (text_[close] == u'<') continue;
      pos_ = close + 1;
      markup = Classify(at, pos_);
      return true;
    }
    pos_ = text_.size();
    return false;
  }

 private:
  Markup Classify(std::size_t begin, std::size_t end) const {
    // Names are taken whole, blanks included: the writer puts any header
    // name between "<" and ">".
    const Units inner = text_.substr(begin + 1, end - begin - 2);
    if (inner.starts_with(u'/')) return {TagKind::kClose, begin, end, inner.substr(1)};
    if (inner.starts_with(u'?') || inner.starts_with(u'!')) return {TagKind::kOther, begin, end, {}};
    if (inner.ends_with(u'/')) return {TagKind::kEmpty, begin, end, inner.substr(0, inner.size() - 1)};
    return {TagKind::kOpen, begin, end, inner};
  }

  Units text_;
  std::size_t pos_ = 0;
};

// Element names as small numbers, shared by both passes.
class NameTable {
 public:
  static constexpr std::uint32_t kUnknown = UINT32_MAX;

  std::uint32_t Intern(Units name) {
    const auto [it, added] = ids_.try_emplace(name, static_cast<std::uint32_t>(names_.size()));
    if (added) names_.push_back(name);
    return it->second;
  }
  std::uint32_t Find(Units name) const {
    const auto it = ids_.find(name);
    return it == ids_.end() ? kUnknown : it->second;
  }
  Units NameOf(std::uint32_t id) const { return names_[id]; }
  std::size_t Size() const { return names_.size(); }

 private:
  std::unordered_map<Units, std::uint32_t> ids_;
  std::vector<Units> names_;
};

struct Child {
  std::uint32_t name;
  Units value;
};

// Gives the children of one ROW after the other. A child's value is the raw
// text between its tag and the matching closing tag (the latest unclosed
// element of that name), nested markup included; a child left unclosed ends
// at the next tag. A ROW ends at "</ROW>", at the next "<ROW>" or at the end
// of the text. Text between children is ignored.
class RowReader {
 public:
  RowReader(Units text, NameTable& names) : text_(text), scanner_(text), names_(names) {}

  bool Next(std::vector<Child>& children) {
    children.clear();
    Markup markup;
    do {
      if (!NextMarkup(markup)) return false;
    } while (markup.kind == TagKind::kClose || markup.kind == TagKind::kOther || !IsRowName(markup.name));
    if (markup.kind == TagKind::kEmpty) return true;

    tags_.clear();
    std::size_t rowEnd = text_.size();
    while (NextMarkup(markup)) {
      if (markup.kind != TagKind::kOther && IsRowName(markup.name)) {
        // A new ROW ends this one and is read next.
        hasPending_ = markup.kind != TagKind::kClose;
        if (hasPending_) pending_ = markup;
        rowEnd = markup.begin;
        break;
      }
      tags_.push_back(markup);
    }
    MatchClosingTags();
    for (std::size_t i = 0; i < tags_.size();) {
      const Markup& tag = tags_[i];
      if (tag.kind == TagKind::kEmpty) {
        children.push_back({names_.Intern(tag.name), {}});
        ++i;
      } else if (tag.kind == TagKind::kOpen) {
        const std::size_t close = closing_[i];
        const std::size_t to = close != kNone ? tags_[close].begin : i + 1 < tags_.size() ? tags_[i + 1].begin : rowEnd;
        children.push_back({ids_[i], text_.substr(tag.end, to - tag.end)});
        i = close != kNone ? close + 1 : i + 1;
      } else {
        ++i;
      }
    }
    return true;
  }

 private:
  struct OpenElement {
    std::size_t row = 0;  // the row the entry belongs to; older ones are void
    std::size_t tag = kNone;
  };

  bool NextMarkup(Markup& markup) {
    if (!hasPending_) return scanner_.Next(markup);
    markup = pending_;
    hasPending_ = false;
    return true;
  }

  // closing_[i] = index of the tag that closes tags_[i], or kNone: each
  // closing tag takes the latest unclosed element of its name, one stack per
  // name kept as a chain through earlier_.
  void MatchClosingTags() {
    ++row_;
    closing_.assign(tags_.size(), kNone);
    earlier_.assign(tags_.size(), kNone);
    ids_.assign(tags_.size(), NameTable::kUnknown);
    for (std::size_t j = 0; j < tags_.size(); ++j) {
      const Markup& tag = tags_[j];
      if (tag.kind == TagKind::kOpen) {
        const std::uint32_t id = names_.Intern(tag.name);
        if (latest_.size() <= id) latest_.resize(names_.Size());
        OpenElement& latest = latest_[id];
        earlier_[j] = latest.row == row_ ? latest.tag : kNone;
        latest = {row_, j};
        ids_[j] = id;
      } else if (tag.kind == TagKind::kClose) {
        const std::uint32_t id = names_.Find(tag.name);
        if (id >= latest_.size() || latest_[id].row != row_ || latest_[id].tag == kNone) continue;
        OpenElement& latest = latest_[id];
        closing_[latest.tag] = j;
        latest.tag = earlier_[latest.tag];
      }
    }
  }

  Units text_;
  MarkupScanner scanner_;
  NameTable& names_;
  Markup pending_{};
  bool hasPending_ = false;
  std::vector<Markup> tags_;
  std::vector<std::size_t> closing_;
  std::vector<std::size_t> earlier_;
  std::vector<std::uint32_t> ids_;
  std::vector<OpenElement> latest_;
  std::size_t row_ = 0;
};

// The columns of the table: the k-th child of a name in a row goes to the
// column of the k-th element of that name in the header, so repeated names
// keep their places. A name, or a repetition, that no earlier row had gets a
// new column at the end.
class Columns {
 public:
  void StartRow() { ++row_; }

  std::uint32_t Place(std::uint32_t name) {
    if (byName_.size() <= name) {
      byName_.resize(name + 1);
      seen_.resize(name + 1);
    }
    Seen& seen = seen_[name];
    if (seen.row != row_) seen = {row_, 0};
    std::vector<std::uint32_t>& columns = byName_[name];
    if (seen.count == columns.size()) {
      columns.push_back(static_cast<std::uint32_t>(names_.size()));
      names_.push_back(name);
    }
    return columns[seen.count++];
  }

  std::size_t Count() const { return names_.size(); }
  std::uint32_t NameOf(std::size_t column) const { return names_[column]; }

 private:
  struct Seen {
    std::size_t row = 0;
    std::size_t count = 0;
  };
  std::vector<std::vector<std::uint32_t>> byName_;
  std::vector<Seen> seen_;
  std::vector<std::uint32_t> names_;
  std::size_t row_ = 0;
};


}  // namespace

void ParseXML(WideString& data) {
  const Units text = data.Units();
  NameTable names;
  Columns columns;
  std::vector<Child> children;

  // The first pass finds the columns, so that a name first met in a later
  // row still gets a column that every line has.
  std::size_t rows = 0;
  for (RowReader reader(text, names); reader.Next(children); ++rows) {
    columns.StartRow();
    for (const Child& child : children) columns.Place(child.name);
  }
  if (rows == 0) {
    data = WideString();
    return;
  }

  std::u16string out;
  out.reserve(text.size());
  for (std::size_t c = 0; c < columns.Count(); ++c) {
    if (c > 0) out += kTab;
    AppendCell(out, names.NameOf(columns.NameOf(c)));
  }
  std::vector<Units> values(columns.Count());
  for (RowReader reader(text, names); reader.Next(children);) {
    columns.StartRow();
    std::fill(values.begin(), values.end(), Units());
    for (const Child& child : children) values[columns.Place(child.name)] = child.value;
    out += kCR;
    for (std::size_t c = 0; c < values.size(); ++c) {
      if (c > 0) out += kTab;
      AppendCell(out, values[c]);
    }
  }
  data = WideString(std::move(out));
}


}  // namespace talp
