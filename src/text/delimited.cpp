#include "text/delimited.h"

#include <string>
#include <string_view>
#include <utility>

#include "host/unit_search.h"
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

void DelimitedImporter::Feed(std::u16string_view piece, std::u16string& out) {
  // Runs of ordinary characters are copied whole; the scan stops at the
  // first unit of any character that may be special in the current state,
  // which is then looked at as a whole character.
  std::u16string delimiterUnits;
  utf::AppendUTF16(delimiterUnits, delimiter_);
  const char16_t delimiterUnit = delimiterUnits[0];
  const char16_t quotedStops[4] = {u'"', kCR, kLF, kTab};
  const char16_t unquotedStops[4] = {kCR, delimiterUnit, kTab, kTab};
  // A delimiter of one unit outside the surrogates is converted inside the
  // runs: outside quotes only a quote or a TAB needs a closer look. A CR
  // delimiter ends records, not fields, so it is left to the closer look.
  const bool plainDelimiter = delimiterUnits.size() == 1 && !utf::IsSurrogate(delimiterUnit) &&
                              delimiterUnit != kCR;
  const char16_t plainStops[4] = {u'"', kTab, kTab, kTab};
  const bool runs = scan_ == Scan::kRuns;
  std::size_t i = 0;
  while (i < piece.size()) {
    if (runs && plainDelimiter && (state_ == State::kUnquoted || state_ == State::kFieldStart)) {
      std::size_t stop = host::FindAnyUnit(piece, i, plainStops);
      if (stop == host::kNotFound) stop = piece.size();
      if (stop > i) {
        const std::size_t base = out.size();
        out.append(piece.substr(i, stop - i));
        host::ReplaceUnit(out, delimiterUnit, kTab, base);
        const char16_t last = piece[stop - 1];
        state_ = last == kCR || last == delimiterUnit ? State::kFieldStart : State::kUnquoted;
        i = stop;
      }
      if (i == piece.size()) break;
    } else if (runs && (state_ == State::kQuoted || state_ == State::kUnquoted)) {
      const bool quoted = state_ == State::kQuoted;
      std::size_t stop = host::FindAnyUnit(piece, i, quoted ? quotedStops : unquotedStops);
      if (stop == host::kNotFound) stop = piece.size();
      out.append(piece.substr(i, stop - i));
      i = stop;
      if (i == piece.size()) break;
    }
    const std::size_t at = i;
    const char32_t c = utf::NextChar(piece, i);
    if (state_ == State::kQuoteInQuoted) {
      if (c == kQuote) {
        out += u'"';
        state_ = State::kQuoted;
        continue;
      }
      // What follows the closing quote up to the next delimiter is kept as
      // it stands.
      state_ = State::kUnquoted;
    }
    if (state_ == State::kQuoted) {
      if (c == kQuote) {
        state_ = State::kQuoteInQuoted;
      } else if (c == kCR) {
        out += kBreakMarker;
      } else if (c == kLF) {
        out += kLineFeedMarker;
      } else if (c == kTab) {
        out += kTabMarker;
      } else {
        out.append(piece.substr(at, i - at));
      }
      continue;
    }
    // A record end and the delimiter win over the quote, so a delimiter that
    // is the quote character itself simply turns quoting off.
    if (c == kCR) {
      out += kCR;
      state_ = State::kFieldStart;
    } else if (c == delimiter_) {
      out += kTab;
      state_ = State::kFieldStart;
    } else if (c == kQuote && state_ == State::kFieldStart) {
      state_ = State::kQuoted;
    } else {
      // A TAB would split the field in the output.
      if (c == kTab) {
        out += kTabMarker;
      } else {
        out.append(piece.substr(at, i - at));
      }
      state_ = State::kUnquoted;
    }
  }
}

void UnicodeImportHandling(WideString& text, const PMString& delimiter) {
  if (delimiter.IsEmpty()) return;
  const std::u16string_view units = text.Units();
  std::u16string out;
  out.reserve(units.size() + units.size() / 16);
  DelimitedImporter importer(delimiter.GetChar(0));
  importer.Feed(units, out);
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
