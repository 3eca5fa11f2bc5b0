#include "text/number_format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/utf.h"
#include "talp/host_services.h"

namespace talp {
namespace {

using Units = std::u16string_view;

bool IsDigit(char32_t c) { return c >= '0' && c <= '9'; }

// Callers rely on "," being the only alternative to ".": a host that names
// anything else still gets "." numbers.
char16_t UserDecimal() { return host::Host().LocalizedDecimal() == PMString(",") ? u',' : u'.'; }

// Text editors turn typed apostrophes into typographic quotes.
char16_t Apostrophe(char16_t c) { return c == 0x2018 || c == 0x2019 ? u'\'' : c; }
bool IsLiteralQuote(char16_t c) { return c == '"' || c == 0x201C || c == 0x201D; }

// A value kept as its decimal digits, so that rounding works on what was
// typed and not on the nearest double ("1.005" is 1.00499... as a double).
struct DecimalText {
  bool negative = false;
  std::string integer, fraction;
};

void StripInto(Units text, char16_t decimal, std::string& out);

std::optional<DecimalText> ReadValue(Units value, char16_t decimal) {
  DecimalText d;
  for (char16_t c : value) {
    if (IsDigit(c)) break;
    d.negative = d.negative || c == '-';
  }
  // Only the leading number counts, the part GetAsDouble would read.
  std::string text;
  StripInto(value, decimal, text);
  std::size_t i = 0;
  while (i < text.size() && IsDigit(text[i])) d.integer += text[i++];
  if (i < text.size() && text[i] == '.') {
    while (++i < text.size() && IsDigit(text[i])) d.fraction += text[i];
  }
  if (d.integer.empty() && d.fraction.empty()) return std::nullopt;
  return d;
}

struct Pattern {
  std::u16string prefix, suffix;
  std::size_t minInteger = 0, minFraction = 0, decimals = 0, groupSize = 0;
};

// Literals may hold any unit; surrogate pairs never look like one of the
// ASCII placeholders, so working on units is safe.
std::optional<Pattern> ReadPattern(Units text) {
  std::u16string chars;
  std::vector<bool> quoted;
  bool inQuote = false;  // an unclosed quote runs to the end
  for (char16_t c : text) {
    if (IsLiteralQuote(c)) {
      inQuote = !inQuote;
    } else {
      chars += c;
      quoted.push_back(inQuote);
    }
  }
  const auto isPlaceholder = [&](std::size_t i) { return !quoted[i] && (chars[i] == '0' || chars[i] == '#'); };
  std::size_t first = 0;
  while (first < chars.size() && !isPlaceholder(first)) ++first;
  if (first == chars.size()) return std::nullopt;
  std::size_t last = chars.size() - 1;
  while (!isPlaceholder(last)) --last;

  Pattern p;
  p.prefix = chars.substr(0, first);
  p.suffix = chars.substr(last + 1);
  bool afterPoint = false, grouped = false;
  for (std::size_t i = first; i <= last; ++i) {
    const char16_t c = quoted[i] ? u'"' : chars[i];  // a quoted character is a literal
    if (c == '0' || c == '#') {
      const std::size_t mandatory = c == '0' ? 1 : 0;
      if (afterPoint) {
        ++p.decimals;
        p.minFraction += mandatory;
      } else {
        p.minInteger += mandatory;
        p.groupSize += grouped ? 1 : 0;
      }
    } else if (c == ',' && !afterPoint) {
      grouped = true;  // the placeholders after the last "," give the group size
      p.groupSize = 0;
    } else if (c == '.' && !afterPoint) {
      afterPoint = true;
    } else {
      return std::nullopt;  // a second point, grouping in decimals, or a literal
    }
  }
  return p;
}

std::u16string Format(const DecimalText& v, const Pattern& p, char16_t decimal) {
  std::string digits = v.integer + v.fraction.substr(0, std::min(p.decimals, v.fraction.size()));
  digits.append(v.integer.size() + p.decimals - digits.size(), '0');
  // Half away from zero: the sign is kept apart, so the magnitude rounds up.
  if (v.fraction.size() > p.decimals && v.fraction[p.decimals] >= '5') {
    std::size_t i = digits.size();
    while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
    if (i == 0) {
      digits.insert(digits.begin(), '1');
    } else {
      ++digits[i - 1];
    }
  }
  std::string integer = digits.substr(0, digits.size() - p.decimals);
  std::string fraction = digits.substr(integer.size());
  integer.erase(0, integer.find_first_not_of('0'));
  // "-0.00" reads as a different number to people; rounded to zero is zero.
  const bool zero = integer.empty() && fraction.find_first_not_of('0') == std::string::npos;
  while (fraction.size() > p.minFraction && fraction.back() == '0') fraction.pop_back();
  if (integer.size() < p.minInteger) integer.insert(0, p.minInteger - integer.size(), '0');
  if (integer.empty() && fraction.empty()) integer = "0";

  std::u16string out;
  if (v.negative && !zero) out += u'-';
  out += p.prefix;
  for (std::size_t i = 0; i < integer.size(); ++i) {
    if (p.groupSize > 0 && i > 0 && (integer.size() - i) % p.groupSize == 0) out += decimal == ',' ? u'.' : u',';
    out += static_cast<char16_t>(integer[i]);
  }
  if (!fraction.empty()) out += decimal;
  for (char c : fraction) out += static_cast<char16_t>(c);
  out += p.suffix;
  return out;
}

}  // namespace

namespace {

void StripInto(Units text, char16_t decimal, std::string& out) {
  for (char16_t c : text) {
    if (IsDigit(c)) {
      out += static_cast<char>(c);
    } else if (c == decimal) {
      out += '.';
    }
  }
}

// Powers of ten that are exact doubles.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// What from_chars reads from the stripped operand, for the common operands
// of at most 15 digits with a digit before the decimal separator: their
// digits and the power of ten are exact doubles, and one division rounds
// correctly, as from_chars does. Anything else gives nothing.
std::optional<double> ReadShortDecimal(Units operand, char16_t decimal) {
  std::uint64_t digits = 0;
  std::size_t count = 0, fraction = 0;
  bool point = false;
  for (const char16_t c : operand) {
    if (IsDigit(c)) {
      if (++count > 15) return std::nullopt;
      digits = digits * 10 + static_cast<std::uint64_t>(c - u'0');
      fraction += point ? 1 : 0;
    } else if (c == decimal) {
      if (point) break;  // a second separator ends the number
      if (count == 0) return std::nullopt;
      point = true;
    }
  }
  if (count == 0) return std::nullopt;
  return static_cast<double>(digits) / kExactPowersOfTen[fraction];
}

// "Calc" results keep 15 significant digits: every decimal of up to 15
// digits survives the trip through a double unchanged, so what people typed
// comes back as typed, and the binary noise of sums and products (digits 16
// and 17) never shows.
constexpr int kSignificantDigits = 15;

// The integer nearest to x, for 0 <= x < 2^52: adding 2^52 leaves no bits
// for a fraction, so the sum rounds to an integer (IEEE arithmetic keeps the
// two steps apart; this code is never built with -ffast-math). Unlike
// nearbyint, it needs no call on plain x86-64.
double NearestInteger(double x) {
  return (x + 0x1p52) - 0x1p52;
}

// Appends mantissa / 10^decimals in fixed form without the decimals' trailing
// zeros, with a "-" when negative.
void AppendFixed(std::uint64_t mantissa, std::size_t decimals, bool negative, std::u16string& out) {
  while (decimals > 0 && mantissa % 10 == 0) {
    mantissa /= 10;
    --decimals;
  }
  char16_t buffer[48];
  char16_t* const end = buffer + sizeof buffer / sizeof buffer[0];
  char16_t* first = end;
  for (std::size_t d = 0; d < decimals; ++d, mantissa /= 10) *--first = static_cast<char16_t>(u'0' + mantissa % 10);
  if (decimals > 0) *--first = u'.';
  do {
    *--first = static_cast<char16_t>(u'0' + mantissa % 10);
    mantissa /= 10;
  } while (mantissa != 0);
  if (negative) *--first = u'-';
  out.append(first, end);
}

// Appends value rounded to 15 significant digits for the magnitudes of
// prices, quantities and their products; false (and nothing appended) where
// the quick way cannot be sure. value times 10^d, with d chosen to give 15
// digits before the point, is one correctly rounded product below 2^50, so
// it is within 1/16 of the exact product; unless it lies that close to a
// half, its nearest integer is the exact product's.
bool AppendRoundedQuickly(double value, std::u16string& out) {
  const double magnitude = std::fabs(value);
  if (!(magnitude >= 1e-7 && magnitude < 1e15)) return false;
  const bool negative = value < 0;
  if (magnitude == NearestInteger(magnitude)) {
    AppendFixed(static_cast<std::uint64_t>(magnitude), 0, negative, out);
    return true;
  }
  std::size_t decimals = kSignificantDigits - 1;  // for 1 <= magnitude < 10
  while (decimals > 0 && magnitude >= kExactPowersOfTen[kSignificantDigits - decimals]) --decimals;
  if (magnitude < 1) {
    ++decimals;
    while (decimals < 22 && magnitude * kExactPowersOfTen[decimals - kSignificantDigits + 1] < 1) ++decimals;
  }
  const double scaled = magnitude * kExactPowersOfTen[decimals];
  if (scaled < 1e14 || scaled >= 1e15) return false;
  const double nearest = NearestInteger(scaled);
  if (std::fabs(scaled - nearest) > 0.4375) return false;
  AppendFixed(static_cast<std::uint64_t>(nearest), decimals, negative, out);
  return true;
}

// Appends the finite, non-zero value rounded to 15 significant digits, in
// fixed form without trailing zeros, whatever its size.
void AppendRounded(double value, std::u16string& out) {
  // d.dddddddddddddde-ddd
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value), std::chars_format::scientific,
                                    kSignificantDigits - 1);
  const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  const std::size_t e = text.find('e');
  std::string digits = std::string(text.substr(0, 1)).append(text.substr(2, e - 2));
  digits.erase(digits.find_last_not_of('0') + 1);
  int exponent = 0;
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(), exponent);

  std::string fixed = value < 0 ? "-" : "";
  if (exponent < 0) {
    fixed.append("0.").append(static_cast<std::size_t>(-exponent - 1), '0').append(digits);
  } else {
    const auto integerDigits = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= integerDigits) {
      fixed.append(digits).append(integerDigits - digits.size(), '0');
    } else {
      fixed.append(digits, 0, integerDigits).append(".").append(digits, integerDigits);
    }
  }
  utf::AppendAscii(fixed, out);
}

}  // namespace

char16_t UserDecimalSeparator() { return UserDecimal(); }

PMString StripUserDecimal(const WideString& text) {
  std::string out;
  StripInto(text.Units(), UserDecimal(), out);
  return PMString(out);
}

double ReadUserNumber(std::u16string_view operand, char16_t decimal) {
  if (const auto quick = ReadShortDecimal(operand, decimal)) return *quick;
  std::string digits;  // short operands stay in the string's own buffer
  StripInto(operand, decimal, digits);
  double value = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (result.ec == std::errc::invalid_argument) return 0;
  // Too many digits for a double: the slow way gives what it always gave.
  if (result.ec == std::errc::result_out_of_range) return PMString(digits).GetAsDouble();
  return value;
}

void AppendCalcNumber(double value, std::u16string& out) {
  const auto append = [&out](std::string_view ascii) { utf::AppendAscii(ascii, out); };
  if (std::isnan(value)) return append(std::signbit(value) ? "-nan" : "nan");
  if (std::isinf(value)) return append(value < 0 ? "-inf" : "inf");
  if (value == 0) return append("0");
  if (!AppendRoundedQuickly(value, out)) AppendRounded(value, out);
}

WideString FormatCalcNumber(double value) {
  std::u16string text;
  AppendCalcNumber(value, text);
  return WideString(std::move(text));
}

void CreateFormatString(WideString& text) { CreateFormatString(text, UserDecimal()); }

void CreateFormatString(WideString& text, char16_t decimal) {
  const Units units = text.Units();
  // Quotes are recognised with typographic ones made straight; the literals
  // of the pattern keep the characters as typed.
  std::u16string shape(units);
  std::transform(shape.begin(), shape.end(), shape.begin(), Apostrophe);
  if (shape.size() < 2 || shape.front() != '\'' || shape.back() != '\'') return;
  const Units inner = Units(shape).substr(1, shape.size() - 2);
  const std::size_t split = inner.find(u"','");
  if (split == Units::npos || inner.find(u"','", split + 3) != Units::npos) return;

  const auto value = ReadValue(units.substr(1, split), decimal);
  const auto pattern = ReadPattern(units.substr(split + 4, inner.size() - split - 3));
  if (!value || !pattern) return;
  text = WideString::FromUTF16(Format(*value, *pattern, decimal));
}

}  // namespace talp
