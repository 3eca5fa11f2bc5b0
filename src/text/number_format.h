// Numbers in word styling: reading what people type ("Calc" operands, "Exfm"
// values), printing "Calc" results, and "Exfm" number format patterns.
//
// The user's decimal separator is the host setting "localizedDecimal" ("." or
// ","; any other setting counts as "."). Functions that take no separator
// read it from the host, so they belong on an operation's own thread; those
// that take one keep no state and may run on any thread.
#pragma once

#include <string>
#include <string_view>

#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// The number text in text: only ASCII digits, "." and "," are kept; then the
// host's decimal separator becomes "." and the other of "." and "," (a
// grouping separator) is dropped, so the result reads with
// PMString::GetAsDouble. A "-" is dropped too: in "Calc" it is an operator.
PMString StripUserDecimal(const WideString& text);

// The host's decimal separator as one unit: "," when "localizedDecimal" is
// ",", "." otherwise.
char16_t UserDecimalSeparator();

// What StripUserDecimal(operand) reads as with PMString::GetAsDouble, for a
// host whose decimal separator is decimal; made for loops over many records.
double ReadUserNumber(std::u16string_view operand, char16_t decimal);

// value as people write it: rounded to 15 significant digits (half to
// even), without trailing zeros, so that 0.1 + 0.2 gives "0.3" and integers
// have no decimal point ("20"); never with an exponent, whatever the size
// (1e21 gives "1000000000000000000000", 1e-7 "0.0000001"); negative zero
// as "0"; "inf", "-inf", "nan", "-nan" as the C library's printf spells them. Always "." as decimal point, independent of
// any locale.
WideString FormatCalcNumber(double value);
// The same, appended to out.
void AppendCalcNumber(double value, std::u16string& out);

// Formats in place the text 'value','pattern' (straight or typographic single
// quotes around both, split on "','"). value is read as StripUserDecimal
// reads it, as decimal text (never through a double, so "1.005" rounds to
// "1.01"); a "-" before its first digit makes it negative. pattern is a
// number format such as "€ #,##0.00" or "0.0# kg": "0" a mandatory digit,
// "#" an optional one, "," grouping, "." the decimal point, rounding half away
// from zero; text before the first and after the last digit placeholder is a
// literal prefix and suffix, where double quotes (straight or typographic)
// protect placeholder characters. The result uses the host's decimal
// separator and the other of "." and "," for grouping, with any "-" before
// the prefix. A text that is not a single quoted value and pattern, a value
// without digits, or a pattern that is not a number format (empty, without
// placeholders, or with anything else between them) is left unchanged.
void CreateFormatString(WideString& text);
// The same for a host whose decimal separator is decimal.
void CreateFormatString(WideString& text, char16_t decimal);

}  // namespace talp
