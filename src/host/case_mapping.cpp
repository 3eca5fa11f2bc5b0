#include "host/case_mapping.h"

#include <cwctype>
#include <locale.h>
#include <memory>

#include "host/utf.h"

namespace talp::host {
namespace {

locale_t UnicodeCType() {
  static const locale_t loc = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr));
  return loc;
}

char32_t LowerFromLocale(char32_t c) {
  if (c >= 'A' && c <= 'Z') return c + ('a' - 'A');
  if (c < 0x80 || utf::IsSurrogate(c)) return c;
  const locale_t loc = UnicodeCType();
  if (loc == static_cast<locale_t>(nullptr)) return c;
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(c), loc));
}

// The mapping of every unit of the Basic Multilingual Plane, built once:
// record filters lower-case whole catalogues through it.
struct BmpTable {
  BmpTable() : lower(std::make_unique<char16_t[]>(0x10000)) {
    for (char32_t c = 0; c < 0x10000; ++c) {
      const char32_t low = LowerFromLocale(c);
      // A mapping that would leave the plane keeps the character, so that one
      // unit stays one unit.
      lower[c] = static_cast<char16_t>(low < 0x10000 && !utf::IsSurrogate(low) ? low : c);
    }
  }
  std::unique_ptr<char16_t[]> lower;
};

const BmpTable& Table() {
  static const BmpTable table;
  return table;
}

}  // namespace

const char16_t* LowerTable() { return Table().lower.get(); }

char32_t LowerChar(char32_t c) {
  if (c < 0x10000) return Table().lower[c];
  const char32_t low = LowerFromLocale(c);
  return low >= 0x10000 && low <= 0x10FFFF ? low : c;
}

void AppendLower(std::u16string_view units, std::u16string& out) {
  const char16_t* lower = Table().lower.get();
  out.reserve(out.size() + units.size());
  std::size_t i = 0;
  while (i < units.size()) {
    const char16_t unit = units[i];
    if (!utf::IsHighSurrogate(unit) || i + 1 >= units.size() || !utf::IsLowSurrogate(units[i + 1])) {
      out.push_back(lower[unit]);
      ++i;
      continue;
    }
    utf::AppendUTF16(out, LowerChar(utf::NextChar(units, i)));
  }
}

}  // namespace talp::host
