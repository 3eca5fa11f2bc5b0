#include "talp/pm_string.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <limits>
#include <locale.h>

namespace {

bool IsBlank(PlatformChar c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool IsDigit(PlatformChar c) { return c >= '0' && c <= '9'; }

}  // namespace

std::int32_t PMString::GetAsNumber() const {
  const std::size_t n = CharCount();
  std::size_t i = 0;
  while (i < n && IsBlank(GetChar(i))) ++i;
  bool negative = false;
  if (i < n && (GetChar(i) == '+' || GetChar(i) == '-')) negative = GetChar(i++) == '-';
  std::int64_t value = 0;
  constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  for (; i < n && IsDigit(GetChar(i)); ++i) {
    value = std::min(kLimit, value * 10 + static_cast<std::int64_t>(GetChar(i) - '0'));
  }
  if (negative) value = -value;
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, std::numeric_limits<std::int32_t>::min(),
                                                            std::numeric_limits<std::int32_t>::max()));
}

double PMString::GetAsDouble() const {
  const std::string text = GrabCString();
  std::size_t i = 0;
  while (i < text.size() && IsBlank(static_cast<unsigned char>(text[i]))) ++i;
  std::size_t start = i;
  bool negative = false;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) {
    negative = text[i] == '-';
    start = ++i;
  }
  double value = 0;
  // from_chars accepts neither a leading "+" nor hexadecimal without a flag,
  // and stops at the first character that cannot continue the number.
  const auto result = std::from_chars(text.data() + start, text.data() + text.size(), value,
                                      std::chars_format::general);
  if (result.ec == std::errc::invalid_argument) return 0;
  if (result.ec == std::errc::result_out_of_range) {
    // from_chars leaves value alone here; strtod gives HUGE_VAL or 0.
    static const locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(nullptr));
    const std::string digits(text.data() + start, result.ptr);
    value = strtod_l(digits.c_str(), nullptr, cLocale);
  }
  // "inf" and "nan" are not decimal numbers.
  if (start < text.size() && !IsDigit(static_cast<unsigned char>(text[start])) && text[start] != '.') return 0;
  return negative ? -value : value;
}

void PMString::AppendNumber(std::int64_t number) {
  char digits[24];
  const auto result = std::to_chars(digits, digits + sizeof digits, number);
  Append(PMString(std::string_view(digits, static_cast<std::size_t>(result.ptr - digits))));
}
