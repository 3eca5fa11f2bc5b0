#include "text/word_styling.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <string_view>

#include "host/unit_search.h"
#include "host/utf.h"
#include "text/if_string.h"
#include "text/number_format.h"
#include "text/script_text.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"
#include "text/xml_table.h"

namespace talp {

struct WordStyling::Process {
  enum class Type {
    kCalc, kExif, kExfm, kLeft, kRight, kMid, kCharCount, kLineCount, kTabCount, kReplace, kSplit, kItem,
    kCountItems, kScript, kConcatenate, kUnknown
  };
  Type kind;
  WideString outputField, type, info;
  WideString stringLength, startPosition, endPosition, search, replace, splitter, part, itemNumber, scriptFile;
  // The numbers of the document, read once.
  std::int64_t length = 0, start = 0, end = 0, item = 0;
  // Where a CR in the value can come from: a number has none, and these
  // types give only units of their information.
  enum class Lines { kNone, kFromInfo, kAny };
  Lines lines = Lines::kAny;
};

namespace {

WideString Child(const WideString& element, const char* name) {
  WideString value;
  GetAbsoluteField(value, element, WideString(name));
  return value;
}

// Numbers in a styling document are whole numbers; no number reads as 0.
std::int64_t NumberOf(const WideString& text) { return PMString(text).GetAsNumber(); }

// Appends count units from start, or nothing when the range leaves the
// text: there is no clipping.
void AppendUnitRange(std::u16string_view text, std::int64_t start, std::int64_t count, std::u16string& out) {
  const auto length = static_cast<std::int64_t>(text.size());
  if (start < 0 || count < 0 || start > length || count > length - start) return;
  out.append(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(count)));
}

// The text between an opening "<EXIF>" and a closing "</EXIF>", which are
// skipped by their lengths and not checked.
WideString BetweenExifTags(const WideString& info) {
  const std::size_t length = info.CharCount();
  return length >= 13 ? info.Substring(6, length - 13) : WideString();
}

// Strictly left to right, without precedence: "2+3*4" is 20. A leading "-"
// is an operator, so "-5+2" is 0 - 5 + 2.
double Calculate(std::u16string_view info, char16_t decimal) {
  char16_t pending = 0;  // 0: assign
  double accumulator = 0;
  std::size_t operandStart = 0;
  const auto apply = [&](std::size_t operandEnd) {
    const double value = ReadUserNumber(info.substr(operandStart, operandEnd - operandStart), decimal);
    switch (pending) {
      case u'+': accumulator += value; break;
      case u'-': accumulator -= value; break;
      case u'*': accumulator *= value; break;
      case u'/': accumulator /= value; break;
      default: accumulator = value; break;
    }
  };
  // The operators are single units that never occur inside a surrogate pair.
  for (std::size_t i = 0; i < info.size(); ++i) {
    const char16_t c = info[i];
    if (c == u'+' || c == u'-' || c == u'*' || c == u'/') {
      apply(i);
      pending = c;
      operandStart = i + 1;
    }
  }
  apply(info.size());
  return accumulator;
}

// The items after the first separator: those before item number k (counted
// from 0 after the first) joined into one part, the rest into another; the
// last item is joined without its separator. Both quirks are kept.
void AppendSplit(std::u16string_view units, std::u16string_view sep, bool secondPart, std::int64_t k,
                 std::u16string& out) {
  // GetItemUnicode's items in one pass: split at non-overlapping occurrences,
  // and an item number past the end gives the last item.
  // Reused from call to call: records are split by the million.
  thread_local std::vector<std::u16string_view> items;
  items.clear();
  // Occurrences are counted overlapping, which only a separator of several
  // units can do. With one unit, the first part needs no item after k.
  const bool oneUnit = sep.size() == 1 && !utf::IsSurrogate(sep[0]);
  const std::size_t enough = oneUnit && !secondPart && k >= 0 ? static_cast<std::size_t>(k) + 1 : SIZE_MAX;
  std::size_t from = 0;
  for (std::size_t at; !sep.empty() && items.size() < enough &&
                       (at = utf::FindAtCharBoundaries(units, sep, from)) != std::u16string_view::npos;) {
    items.push_back(units.substr(from, at - from));
    from = at + sep.size();
  }
  int separators;
  if (items.size() == enough) {
    separators = static_cast<int>(std::min<std::int64_t>(k, INT_MAX));  // at least k + 1: only the first k count
  } else {
    items.push_back(units.substr(from));
    separators = oneUnit ? static_cast<int>(std::min<std::size_t>(items.size() - 1, INT_MAX)) : CountItemUnits(units, sep);
  }
  bool empty = true;
  for (int i = 0; i < separators; ++i) {
    if ((i < k) == secondPart) continue;
    const std::u16string_view item = items[std::min(static_cast<std::size_t>(i) + 1, items.size() - 1)];
    if (!empty && (!secondPart || i != separators - 1)) out.append(sep);
    out.append(item);
    empty = empty && item.empty();
  }
}

// The type words, compared exactly, in the order they are tested.
WordStyling::Process::Type TypeOf(const WideString& word) {
  using Type = WordStyling::Process::Type;
  static const std::pair<std::u16string_view, Type> kTypes[] = {
      {u"Calc", Type::kCalc},       {u"Exif", Type::kExif},           {u"Exfm", Type::kExfm},
      {u"Left", Type::kLeft},       {u"Right", Type::kRight},         {u"Mid", Type::kMid},
      {u"CharCount", Type::kCharCount}, {u"LineCount", Type::kLineCount}, {u"TabCount", Type::kTabCount},
      {u"Replace", Type::kReplace}, {u"Split", Type::kSplit},         {u"Item", Type::kItem},
      {u"CountItems", Type::kCountItems}, {u"Script", Type::kScript}, {u"Concatenate", Type::kConcatenate}};
  for (const auto& [name, type] : kTypes) {
    if (word.Units() == name) return type;
  }
  return Type::kUnknown;
}

WordStyling::Process::Lines LinesOf(const WordStyling::Process& p) {
  using Type = WordStyling::Process::Type;
  using Lines = WordStyling::Process::Lines;
  const auto noCR = [](const WideString& text) { return text.Units().find(kCR) == std::u16string_view::npos; };
  switch (p.kind) {
    case Type::kCalc: case Type::kCharCount: case Type::kLineCount: case Type::kTabCount: case Type::kCountItems:
      return Lines::kNone;
    case Type::kLeft: case Type::kRight: case Type::kMid: case Type::kItem: case Type::kConcatenate:
      return Lines::kFromInfo;
    case Type::kSplit:
      return noCR(p.splitter) ? Lines::kFromInfo : Lines::kAny;
    case Type::kReplace:
      return noCR(p.replace) ? Lines::kFromInfo : Lines::kAny;
    default:
      return Lines::kAny;
  }
}

std::size_t CharCount(std::u16string_view units) {
  std::size_t pairs = 0;
  for (std::size_t i = 0; i + 1 < units.size(); ++i) {
    if (utf::IsHighSurrogate(units[i]) && utf::IsLowSurrogate(units[i + 1])) {
      ++pairs;
      ++i;
    }
  }
  return units.size() - pairs;
}

void AppendCount(std::size_t n, std::u16string& out) {
  AppendNumber(static_cast<long>(std::min<std::size_t>(n, INT32_MAX)), out);
}

// Appends the value of process p for its filled information to out.
void ComputeValue(const WordStyling::Process& p, std::u16string_view filled, char16_t decimal, std::u16string& out) {
  using Type = WordStyling::Process::Type;
  switch (p.kind) {
    case Type::kCalc:
      AppendCalcNumber(Calculate(filled, decimal), out);
      return;
    case Type::kExif:
    case Type::kExfm: {
      WideString inner = BetweenExifTags(WideString::FromUTF16(filled));
      if (p.kind == Type::kExif) {
        CreateIfString(inner);
      } else {
        CreateFormatString(inner, decimal);
      }
      out.append(inner.Units());
      return;
    }
    case Type::kLeft:
      AppendUnitRange(filled, 0, p.length, out);
      return;
    case Type::kRight:
      AppendUnitRange(filled, static_cast<std::int64_t>(filled.size()) - p.length, p.length, out);
      return;
    case Type::kMid:
      // The end position is used as a count of characters, as it always was.
      AppendUnitRange(filled, p.start, p.end, out);
      return;
    case Type::kCharCount:
      AppendCount(CharCount(filled), out);
      return;
    case Type::kLineCount:
    case Type::kTabCount: {
      const bool lines = p.kind == Type::kLineCount;
      std::u16string expanded;
      SearchReplaceUnits(filled, lines ? u"<br>" : u"<tb>", lines ? u"\r" : u"\t", expanded);
      AppendCount(static_cast<std::size_t>(std::count(expanded.begin(), expanded.end(), lines ? kCR : kTab)), out);
      return;
    }
    case Type::kReplace:
      SearchReplaceUnits(filled, p.search.Units(), p.replace.Units(), out);
      return;
    case Type::kSplit:
      AppendSplit(filled, p.splitter.Units(), !p.part.IsEmpty(), p.item, out);
      return;
    case Type::kItem: {
      WideString item;
      out.append(GetItemUnicode(item, WideString::FromUTF16(filled), p.splitter, static_cast<long>(p.item)).Units());
      return;
    }
    case Type::kCountItems:
      AppendCount(static_cast<std::size_t>(CountItemUnits(filled, p.splitter.Units())), out);
      return;
    case Type::kScript: {
      WideString info = WideString::FromUTF16(filled);
      UseScriptToManipulate(PMString(p.scriptFile), info);
      out.append(info.Units());
      return;
    }
    case Type::kConcatenate:
      out.append(filled);
      return;
    case Type::kUnknown:
      return;  // an unknown type still gives its (empty) field
  }
}

}  // namespace

WordStyling::WordStyling(const WideString& styling) : WordStyling(styling, UserDecimalSeparator()) {}

WordStyling::WordStyling(const WideString& styling, char16_t decimal)
    : document_(isXMLFile(styling) == 1), decimal_(decimal) {
  if (!document_) {
    table_ = styling;
    return;
  }
  WideString name("Process");
  const int count = CountElementDepth(styling, name);
  for (int n = 1; n <= count; ++n) {
    WideString element;
    WideString processName("Process");
    GetElementNumber(element, styling, processName, n);
    const WideString type = Child(element, "ProcessType");
    processes_.push_back({TypeOf(type), Child(element, "OutputField"), type, Child(element, "ProcessInfo"),
                          Child(element, "StringLength"), Child(element, "StringStartPosition"),
                          Child(element, "StringEndPosition"), Child(element, "StringSearch"),
                          Child(element, "StringReplace"), Child(element, "StringSplitter"),
                          Child(element, "StringPart"), Child(element, "StringItemNumber"),
                          Child(element, "ScriptFile")});
    Process& added = processes_.back();
    added.length = NumberOf(added.stringLength);
    added.start = NumberOf(added.startPosition);
    added.end = NumberOf(added.endPosition);
    added.item = NumberOf(added.itemNumber);
    added.lines = LinesOf(added);
  }
}

WordStyling::~WordStyling() = default;

bool WordStyling::RunsScripts() const {
  return std::any_of(processes_.begin(), processes_.end(),
                     [](const Process& process) { return process.kind == Process::Type::kScript; });
}

void WordStyling::AppendNames(WideString& header) const {
  for (const Process& process : processes_) {
    header.Append(process.outputField);
    header.AppendUnits(u"\r");
  }
}

void WordStyling::Bind(const WideString& header) {
  infos_.clear();
  for (const Process& process : processes_) infos_.emplace_back(process.info.Units(), header.Units());
  boundHeader_ = header;
  memos_.assign(processes_.size(), {});
  bound_ = true;
}

void WordStyling::Apply(const WideString& header, WideString& record) {
  if (!document_) {
    UnicodeCleaning(record, table_);
    return;
  }
  std::u16string text(record.Units());
  ApplyDocument(header, text);
  record = WideString(std::move(text));
}

const std::vector<std::u16string_view>& WordStyling::RestyleInLoop(const WideString& header,
                                                                   std::u16string& record) {
  if (document_) {
    Restyle(header, record, kTab, nullptr);
    return fields_;
  }
  WideString cleaned(std::move(record));
  UnicodeCleaning(cleaned, table_);
  record.assign(cleaned.Units());
  SplitFieldsInto(record, kTab, fields_);
  return fields_;
}

// Conditionals and number formats are pure and costly, and catalogues repeat
// their inputs (a stock level, a category): their results are remembered, up
// to a bound on the memory that takes.
std::u16string_view WordStyling::Compute(std::size_t n, bool& withoutCR) {
  const Process& process = processes_[n];
  const bool remembered = process.kind == Process::Type::kExif || process.kind == Process::Type::kExfm;
  value_.clear();
  withoutCR = process.lines == Process::Lines::kNone;
  if (!remembered) {
    const std::u16string_view filled = infos_[n].Filled(fields_, filled_);
    // A field of the record holds no CR: the record was split at them.
    withoutCR = withoutCR || (process.lines == Process::Lines::kFromInfo && filled.data() != filled_.data());
    ComputeValue(process, filled, decimal_, value_);
    return value_;
  }
  // The key is the values the information refers to, far shorter than the
  // filled information, which is built only when the value is new.
  key_.clear();
  infos_[n].AppendKey(fields_, key_);
  ValueMemo& memo = memos_[n];
  if (const auto found = memo.Find(key_)) return *found;
  ComputeValue(process, infos_[n].Filled(fields_, filled_), decimal_, value_);
  return memo.Remember(key_, value_);
}

void WordStyling::ApplyDocument(const WideString& header, std::u16string& text,
                                std::vector<std::u16string>* values) {
  Restyle(header, text, kCR, values);
}

// The fields are found once and then followed as values are appended: TABs
// and CRs of the record, and CRs inside appended values, separate fields and
// are written as separator; TABs inside values are kept as they are.
void WordStyling::Restyle(const WideString& header, std::u16string& text, char16_t separator,
                          std::vector<std::u16string>* values) {
  fields_.clear();
  std::size_t start = 0;
  for (std::size_t at = 0; (at = host::FindUnit(text, at, kTab, kCR)) != host::kNotFound; start = ++at) {
    text[at] = separator;
    fields_.emplace_back(text.data() + start, at - start);
  }
  fields_.emplace_back(text.data() + start, text.size() - start);
  if (processes_.empty()) return;
  const std::u16string_view bound = boundHeader_.Units(), wanted = header.Units();
  if (!bound_ || bound.size() != wanted.size() ||
      std::memcmp(bound.data(), wanted.data(), wanted.size() * sizeof(char16_t)) != 0) {
    Bind(header);
  }
  // Each process sees the record with the values computed before it.
  for (std::size_t n = 0; n < processes_.size(); ++n) {
    bool withoutCR;
    const std::u16string_view value = Compute(n, withoutCR);
    if (values != nullptr) values->emplace_back(value);
    AppendValue(text, value, separator, withoutCR);
  }
}

void WordStyling::AppendValue(std::u16string& text, std::u16string_view value, char16_t separator, bool withoutCR) {
  // The value and its separator take exactly this much, CRs becoming
  // separators, so the text moves at most once: here, before the views are
  // taken again at their offsets.
  const std::size_t needed = text.size() + value.size() + 1;
  if (needed > text.capacity()) {
    offsets_.clear();
    for (const std::u16string_view field : fields_) {
      offsets_.push_back(static_cast<std::size_t>(field.data() - text.data()));
    }
    text.reserve(std::max(needed, 2 * text.capacity()));
    for (std::size_t i = 0; i < fields_.size(); ++i) fields_[i] = {text.data() + offsets_[i], fields_[i].size()};
  }
  // The last field runs to the end of the text and grows with the value.
  auto lastStart = static_cast<std::size_t>(fields_.back().data() - text.data());
  for (;;) {
    const std::size_t cr = withoutCR ? host::kNotFound : host::FindUnit(value, 0, kCR, kCR);
    text.append(value.substr(0, cr));
    fields_.back() = {text.data() + lastStart, text.size() - lastStart};
    text.push_back(separator);
    lastStart = text.size();
    fields_.emplace_back(text.data() + lastStart, 0);
    if (cr == host::kNotFound) return;
    value.remove_prefix(cr + 1);
  }
}

void AppendHeaderFromWordStyling(const WideString& styling, WideString& header) {
  WordStyling(styling).AppendNames(header);
}

void HandleWordStyling(const WideString& styling, const WideString& header, WideString& record) {
  WordStyling(styling).Apply(header, record);
}

}  // namespace talp
