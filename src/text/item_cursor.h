// One-pass walking of the fields of UTF-16 text split on one separator
// character, without copying. Record loops go through every line and field of
// a whole file with it in time linear in the text.
//
// Fields are counted as GetUnicodeItem counts them: a text with k separators
// has k + 1 fields, the first before the first separator and the last after
// the last separator (empty when the text ends with one); the empty text has
// one empty field. The separator is compared as a whole character: a surrogate
// pair is one character, and a separator that is a surrogate code point
// matches only a lone surrogate unit, never half of a pair.
//
// The views handed out point into the walked text and live as long as it does.
#pragma once

#include <cstddef>
#include <string_view>

#include "host/unit_search.h"
#include "host/utf.h"

namespace talp {

// Unit offset of the first character at or after from that equals c, or npos.
// from must be a character boundary (not the second unit of a pair).
inline std::size_t FindCharacter(std::u16string_view units, std::size_t from, char32_t c) {
  // A unit outside the surrogate range is always a character of its own.
  if (c < 0xD800 || (c >= 0xE000 && c <= 0xFFFF)) {
    const std::size_t at = host::FindUnit(units, from, static_cast<char16_t>(c), static_cast<char16_t>(c));
    return at == host::kNotFound ? std::u16string_view::npos : at;
  }
  if (c > 0x10FFFF) return std::u16string_view::npos;
  while (from < units.size()) {
    const std::size_t at = from;
    if (utf::NextChar(units, from) == c) return at;
  }
  return std::u16string_view::npos;
}

class ItemCursor {
 public:
  ItemCursor(std::u16string_view text, char32_t separator)
      : text_(text), separator_(separator), separatorUnits_(separator > 0xFFFF ? 2 : 1) {}

  // Sets item to the next field and returns true; returns false once every
  // field has been given.
  bool Next(std::u16string_view& item) {
    if (done_) return false;
    itemOffset_ = next_;
    const std::size_t end = FindCharacter(text_, next_, separator_);
    endedBySeparator_ = end != std::u16string_view::npos;
    if (endedBySeparator_) {
      item = text_.substr(next_, end - next_);
      next_ = end + separatorUnits_;
    } else {
      item = text_.substr(next_);
      next_ = text_.size();
      done_ = true;
    }
    return true;
  }

  // Whether the field last given was followed by a separator; false for the
  // last field of the text.
  bool EndedBySeparator() const { return endedBySeparator_; }

  // Unit offset in the text at which the field last given starts.
  std::size_t ItemOffset() const { return itemOffset_; }

 private:
  std::u16string_view text_;
  char32_t separator_;
  std::size_t separatorUnits_;
  std::size_t next_ = 0;
  std::size_t itemOffset_ = 0;
  bool endedBySeparator_ = false;
  bool done_ = false;
};

// Field n (from 1) of text split on separator, as a view into text; empty
// when n < 1 or past the last field.
inline std::u16string_view FieldOf(std::u16string_view text, char32_t separator, long n) {
  if (n < 1) return {};
  ItemCursor cursor(text, separator);
  std::u16string_view field;
  for (long k = 0; k < n; ++k) {
    if (!cursor.Next(field)) return {};
  }
  return field;
}

}  // namespace talp
