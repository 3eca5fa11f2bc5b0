#include "text/delimited.h"

#include <string>
#include <string_view>
#include <utility>

#include "host/utf.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {
namespace {

using Units = std::u16string_view;

constexpr char32_t kQuote = U'"';
constexpr Units kBreakMarker = u"<br>";
constexpr Units kTabMarker = u"<tb>";
constexpr Units kLineFeedMarker = u"<sr>";

// Appends value to out, quoted when it holds a character that would
// otherwise end the field or the record, or the quote itself.
void AppendField(std::u16string& out, Units value, char32_t delimiter, char32_t quote) {
  bool needsQuotes = false;
  for (std::size_t i = 0; i < value.size() && !needsQuotes;) {
    const char32_t c = utf::NextChar(value, i);
    needsQuotes = c == delimiter || c == quote || c == kCR || c == kLF || c == kTab;
  }
  if (!needsQuotes) {
    out.append(value);
    return;
  }
  utf::AppendUTF16(out, quote);
  for (std::size_t i = 0; i < value.size();) {
    const std::size_t at = i;
    if (utf::NextChar(value, i) == quote) utf::AppendUTF16(out, quote);
    out.append(value.substr(at, i - at));
  }
  utf::AppendUTF16(out, quote);
}

// value = field with its "<br>" and "<tb>" markers turned back into the
// characters they stand for.
void RestoreBreaksAndTabs(Units field, std::u16string& value) {
  value.clear();
  for (std::size_t i = 0; i < field.size();) {
    const Units rest = field.substr(i);
    if (rest.starts_with(kBreakMarker)) {
      value += kCR;
      i += kBreakMarker.size();
    } else if (rest.starts_with(kTabMarker)) {
      value += kTab;
      i += kTabMarker.size();
    } else {
      value += field[i++];
    }
  }
}

}  // namespace

void UnicodeImportHandling(WideString& text, const PMString& delimiter) {
  if (delimiter.IsEmpty()) return;
  const char32_t separator = delimiter.GetChar(0);
  const Units units = text.Units();
  std::u16string out;
  out.reserve(units.size() + units.size() / 16);

  enum class State { kFieldStart, kUnquoted, kQuoted } state = State::kFieldStart;
  for (std::size_t i = 0; i < units.size();) {
    const std::size_t at = i;
    const char32_t c = utf::NextChar(units, i);
    if (state == State::kQuoted) {
      if (c == kQuote) {
        if (i < units.size() && units[i] == kQuote) {
          out += u'"';
          ++i;
        } else {
          // What follows the closing quote up to the next delimiter is kept
          // as it stands.
          state = State::kUnquoted;
        }
      } else if (c == kCR) {
        out += kBreakMarker;
      } else if (c == kLF) {
        out += kLineFeedMarker;
      } else if (c == kTab) {
        out += kTabMarker;
      } else {
        out.append(units.substr(at, i - at));
      }
      continue;
    }
    // A record end and the delimiter win over the quote, so a delimiter that
    // is the quote character itself simply turns quoting off.
    if (c == kCR) {
      out += kCR;
      state = State::kFieldStart;
    } else if (c == separator) {
      out += kTab;
      state = State::kFieldStart;
    } else if (c == kQuote && state == State::kFieldStart) {
      state = State::kQuoted;
    } else {
      // A TAB would split the field in the output.
      if (c == kTab) {
        out += kTabMarker;
      } else {
        out.append(units.substr(at, i - at));
      }
      state = State::kUnquoted;
    }
  }
  text = WideString(std::move(out));
}

void UnicodeExportHandling(WideString& text, const PMString& delimiter, const PMString& quote) {
  if (delimiter.IsEmpty()) return;
  const char32_t separator = delimiter.GetChar(0);
  const char32_t quoteChar = quote.IsEmpty() ? kQuote : quote.GetChar(0);
  const Units units = text.Units();
  std::u16string out;
  out.reserve(units.size() + units.size() / 16);

  std::u16string restored;
  bool header = true;
  ItemCursor records(units, kCR);
  Units record;
  while (records.Next(record)) {
    ItemCursor fields(record, kTab);
    Units field;
    bool firstField = true;
    while (fields.Next(field)) {
      if (!firstField) utf::AppendUTF16(out, separator);
      firstField = false;
      // The header keeps its markers: the delimiter is detected on the first
      // line when the file is read again, and a real line break there would
      // cut the header in two for that test.
      if (header) {
        AppendField(out, field, separator, quoteChar);
      } else {
        RestoreBreaksAndTabs(field, restored);
        AppendField(out, restored, separator, quoteChar);
      }
    }
    if (records.EndedBySeparator()) out += kCR;
    header = false;
  }
  text = WideString(std::move(out));
}

}  // namespace talp
