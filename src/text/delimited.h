// Conversion between comma- or semicolon-separated text with double-quoted
// fields and the system's TAB/CR form.
//
// Rules on import: records are separated by CR. A field that starts with the
// double quote is quoted: it runs to the next lone quote, a doubled quote
// inside stands for one quote, and delimiters, CRs, LFs and TABs inside belong
// to the field, written "<br>", "<sr>" and "<tb>" so that a value never splits
// a record or a field. What follows the closing quote up to the next delimiter
// is kept as it stands, quotes included; a quote that opens a field and is
// never closed runs to the end of the text. Other fields are taken as they
// stand, except that a TAB becomes "<tb>" (TAB is the output's field
// separator). A delimiter becomes a TAB; records stay CR-separated, a final CR
// included.
//
// Export writes the reverse and quotes exactly the fields that need it, so
// that import(export(T)) == T for every TAB/CR text T whose values hold no CR
// or LF of their own (markers are fine), when the quote is the double quote.
//
// Both functions are one pass over the text, linear in its length. An empty
// delimiter leaves the text unchanged.
#pragma once

#include <string>
#include <string_view>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// The conversion of UnicodeImportHandling, piece by piece: feeding a text in
// any number of pieces (none ending inside a character) gives the same
// result as converting it whole.
class DelimitedImporter {
 public:
  // kRuns copies runs of ordinary characters whole; kEachCharacter looks at
  // every character on its own, the plain rule that kRuns must agree with.
  enum class Scan { kRuns, kEachCharacter };
  explicit DelimitedImporter(char32_t delimiter, Scan scan = Scan::kRuns) : delimiter_(delimiter), scan_(scan) {}
  // Appends the conversion of piece to out.
  void Feed(std::u16string_view piece, std::u16string& out);

 private:
  enum class State { kFieldStart, kUnquoted, kQuoted, kQuoteInQuoted };
  State state_ = State::kFieldStart;
  char32_t delimiter_;
  Scan scan_;
};

// Converts delimited text in place: the field delimiter is the first
// character of delimiter, the quote the double quote. A delimiter that is CR
// separates nothing more than records; one that is the quote turns quoting off.
void UnicodeImportHandling(WideString& text, const PMString& delimiter);

// Converts TAB/CR text in place into text delimited by the first character of
// delimiter. In every record but the first, "<br>" becomes a CR and "<tb>" a
// TAB; "<sr>" stays as text, since a line feed does not survive reading a
// file. The first record, the header, keeps its markers so that delimiter
// detection on it keeps working. A field is quoted with the first character
// of quote (the double quote when quote is empty), the quote doubled inside,
// exactly when it then holds the delimiter, the quote, CR, LF or TAB.
void UnicodeExportHandling(WideString& text, const PMString& delimiter, const PMString& quote);

}  // namespace talp
