#include "text/xml_table.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/utf.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

using Units = std::u16string_view;
constexpr std::size_t kNone = Units::npos;

constexpr Units kDeclaration = u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

bool SplitsPair(Units text, std::size_t at) {
  return at > 0 && at < text.size() && utf::IsHighSurrogate(text[at - 1]) && utf::IsLowSurrogate(text[at]);
}

// A fixed text searched for in time linear in the text (Knuth-Morris-Pratt),
// so that a long, self-overlapping name cannot make a search quadratic. Only
// occurrences on character boundaries count.
class Pattern {
 public:
  explicit Pattern(std::u16string text) : text_(std::move(text)), fallback_(text_.size(), 0) {
    for (std::size_t i = 1, k = 0; i < text_.size(); ++i) {
      while (k > 0 && text_[i] != text_[k]) k = fallback_[k - 1];
      if (text_[i] == text_[k]) ++k;
      fallback_[i] = k;
    }
  }

  std::size_t Size() const { return text_.size(); }

  // Calls found(offset) for every occurrence that starts at or after from,
  // left to right, overlapping ones included, until found returns false.
  template <typename Found>
  void ForEach(Units in, std::size_t from, Found found) const {
    if (text_.empty()) return;
    for (std::size_t i = from, k = 0; i < in.size(); ++i) {
      while (k > 0 && in[i] != text_[k]) k = fallback_[k - 1];
      if (in[i] == text_[k]) ++k;
      if (k < text_.size()) continue;
      const std::size_t start = i + 1 - k;
      if (!SplitsPair(in, start) && !SplitsPair(in, i + 1) && !found(start)) return;
      k = fallback_[k - 1];
    }
  }

  // Offset of the first occurrence at or after from, or kNone.
  std::size_t Find(Units in, std::size_t from) const {
    std::size_t at = kNone;
    ForEach(in, from, [&at](std::size_t start) {
      at = start;
      return false;
    });
    return at;
  }

 private:
  std::u16string text_;
  std::vector<std::size_t> fallback_;
};

std::u16string Tag(Units before, Units name, Units after) {
  std::u16string tag;
  tag.reserve(before.size() + name.size() + after.size());
  return tag.append(before).append(name).append(after);
}

// Appends value with TAB written "<tb>" and CR "<br>", so that it cannot split
// a CR/TAB table.
void AppendCell(std::u16string& out, Units value) {
  for (const char16_t c : value) {
    if (c == kTab) {
      out += u"<tb>";
    } else if (c == kCR) {
      out += u"<br>";
    } else {
      out += c;
    }
  }
}

// ---- Reading a table back: the markup is scanned once per pass, ROW by ROW.

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

int isXMLFile(const WideString& text) {
  // The scan stops one character short: a "<?xml" that ends the text is not
  // seen. Callers rely on this bound.
  const Units units = text.Units();
  const std::size_t at = units.find(u"<?xml");
  return at != kNone && at + 5 < units.size() ? 1 : 0;
}

int CountElementDepth(const WideString& text, WideString& name) {
  const Pattern tag(Tag(u"<", name.Units(), u">"));
  Units units = text.Units();
  // Only tags that end before the last character count; callers rely on it.
  if (!units.empty()) units.remove_suffix(SplitsPair(units, units.size() - 1) ? 2 : 1);
  long count = 0;
  tag.ForEach(units, 0, [&count](std::size_t) { return ++count < INT_MAX; });
  name = WideString::FromUTF16(Tag(u"<", name.Units(), u">"));
  return static_cast<int>(count);
}

int CountRowDepth(const WideString& text) {
  const Units units = text.Units();
  int count = 0;
  for (std::size_t at = units.find(u"<ROW"); at != kNone && count < INT_MAX; at = units.find(u"<ROW", at + 4)) ++count;
  return count;
}

void GetElementNumber(WideString& out, const WideString& text, WideString& name, long n) {
  const Units units = text.Units();
  const Pattern opening(Tag(u"<", name.Units(), u">"));
  const Pattern closing(Tag(u"</", name.Units(), u">"));
  std::size_t hit = kNone;
  long seen = 0;
  if (n > 0) {
    opening.ForEach(units, 0, [&](std::size_t at) {
      if (++seen < n) return true;
      hit = at;
      return false;
    });
  }
  std::u16string content;
  if (hit != kNone) {
    const std::size_t from = hit + opening.Size();
    const std::size_t to = closing.Find(units, from);
    content = units.substr(from, to == kNone ? kNone : to - from);
  }
  // Built before any assignment, so out and name may be the text itself.
  name = WideString::FromUTF16(Tag(u"<", name.Units(), u">"));
  out = WideString(std::move(content));
}

void GetAbsoluteField(WideString& out, const WideString& element, const WideString& name) {
  const Units units = element.Units();
  const Pattern opening(Tag(u"<", name.Units(), u""));
  std::u16string content;
  const std::size_t at = opening.Find(units, 0);
  const std::size_t after = at == kNone ? units.size() : at + opening.Size();
  if (at != kNone && !(after < units.size() && units[after] == u'/')) {
    // The character after "<name" is the tag's ">".
    const std::size_t from = std::min(after + 1, units.size());
    const std::size_t to = Pattern(Tag(u"</", name.Units(), u"")).Find(units, from);
    AppendCell(content, units.substr(from, to == kNone ? kNone : to - from));
  }
  out = WideString(std::move(content));
}

void ExportXML(WideString& table) {
  const Units units = table.Units();
  const auto lines = static_cast<std::size_t>(std::count(units.begin(), units.end(), kCR));
  std::u16string out;
  out.reserve(kDeclaration.size() + 1 + (lines >= 3 ? units.size() * 3 : 0));
  out.append(kDeclaration) += kCR;

  if (lines >= 3) {
    ItemCursor lineCursor(units, kCR);
    Units header;
    lineCursor.Next(header);
    // Only fields followed by a TAB count; the text-file source writes one
    // after every field.
    std::vector<Units> names(static_cast<std::size_t>(std::count(header.begin(), header.end(), kTab)));
    ItemCursor headerCursor(header, kTab);
    for (Units& name : names) headerCursor.Next(name);

    // Only lines followed by a CR count, and an empty line ends the table.
    Units line;
    for (std::size_t k = 2; k < lines && lineCursor.Next(line) && !line.empty(); ++k) {
      out.append(u"<ROW>") += kCR;
      ItemCursor fieldCursor(line, kTab);
      for (const Units name : names) {
        Units value;
        if (!fieldCursor.Next(value)) value = {};
        out.append(u"<").append(name).append(u">").append(value);
        out.append(u"</").append(name).append(u">") += kCR;
      }
      out.append(u"</ROW>") += kCR;
    }
  }
  table = WideString(std::move(out));
}

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

void CorrectMarkersInXML(WideString& data) {
  static constexpr std::pair<Units, Units> kMarkers[] = {
      {u"~tb~", u"<tb>"}, {u"~br~", u"<br>"}, {u"~sr~", u"<sr>"}, {u"~end~", u"<end>"}};
  const Units units = data.Units();
  std::size_t at = units.find(u'~');
  if (at == kNone) return;
  std::u16string out;
  out.reserve(units.size());
  std::size_t copied = 0;
  // Every "~" is tried, so a stray one just before a marker hides nothing.
  for (; at != kNone; at = units.find(u'~', at)) {
    const Units rest = units.substr(at);
    const auto marker = std::find_if(std::begin(kMarkers), std::end(kMarkers),
                                     [rest](const auto& m) { return rest.starts_with(m.first); });
    if (marker == std::end(kMarkers)) {
      ++at;
      continue;
    }
    out.append(units.substr(copied, at - copied)).append(marker->second);
    at += marker->first.size();
    copied = at;
  }
  out.append(units.substr(copied));
  data = WideString(std::move(out));
}

void EscapeValueForXML(WideString& value) {
  static constexpr std::pair<Units, Units> kMarkers[] = {
      {u"<tb>", u"~tb~"}, {u"<br>", u"~br~"}, {u"<sr>", u"~sr~"}, {u"<end>", u"~end~"}};
  const Units units = value.Units();
  std::u16string out;
  out.reserve(units.size() + units.size() / 8);
  for (std::size_t i = 0; i < units.size();) {
    const char16_t c = units[i];
    if (c == u'<') {
      const Units rest = units.substr(i);
      const auto marker = std::find_if(std::begin(kMarkers), std::end(kMarkers),
                                       [rest](const auto& m) { return rest.starts_with(m.first); });
      if (marker != std::end(kMarkers)) {
        out.append(marker->second);
        i += marker->first.size();
        continue;
      }
    }
    switch (c) {
      case u'&': out.append(u"&amp;"); break;
      case u'<': out.append(u"&lt;"); break;
      case u'>': out.append(u"&gt;"); break;
      case u'"': out.append(u"&quot;"); break;
      case u'\'': out.append(u"&apos;"); break;
      default: out += c;
    }
    ++i;
  }
  value = WideString(std::move(out));
}

}  // namespace talp
