// WideString: the host's UTF-16 text, used for every record and result.
//
// Positions and lengths count characters: a well-formed surrogate pair is one
// character, a lone surrogate unit is a character of its own. Character
// access is O(1) for text without surrogate pairs and O(log pairs) otherwise.
// A WideString is a value: copies are independent; const methods may be
// called from several threads at once.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using UTF32TextChar = char32_t;

class PMString;

class WideString {
 public:
  static constexpr std::size_t npos = static_cast<std::size_t>(-1);

  WideString() = default;
  // From UTF-8 text; malformed bytes become U+FFFD.
  WideString(const char* utf8);  // NOLINT: implicit, as the host's string is
  explicit WideString(std::string_view utf8);
  explicit WideString(std::u16string units);
  WideString(const PMString& narrow);  // NOLINT: implicit, as in the host

  static WideString FromUTF8(std::string_view bytes) { return WideString(bytes); }
  static WideString FromUTF16(std::u16string_view units) { return WideString(std::u16string(units)); }
  // From units that the caller has checked hold no high surrogate, so no
  // pair: the pass that looks for pairs, long on a large text, is skipped.
  static WideString FromUnitsWithoutHighSurrogates(std::u16string units);
  // Little-endian 16-bit units; an odd last byte is ignored.
  static WideString FromUTF16LE(std::string_view bytes);

  std::string ToUTF8() const;     // lone surrogates become U+FFFD
  std::string ToUTF16LE() const;  // the units as stored, no byte-order mark
  std::u16string_view Units() const { return units_; }
  std::size_t NumUTF16TextChars() const { return units_.size(); }

  std::size_t CharCount() const { return units_.size() - pairs_.size(); }
  bool IsEmpty() const { return units_.empty(); }
  bool HasSurrogatePairs() const { return !pairs_.empty(); }

  // The character at pos, or 0 when pos is past the end.
  UTF32TextChar GetUTF32TextChar(std::size_t pos) const;
  UTF32TextChar operator[](std::size_t pos) const { return GetUTF32TextChar(pos); }

  void AppendUTF32TextChar(UTF32TextChar c);
  void Append(const WideString& text) { AppendUnits(text.units_); }
  void AppendUnits(std::u16string_view units);
  void Reserve(std::size_t units) { units_.reserve(units); }
  void Clear();
  // Removes count characters from pos; both are clipped to the text.
  void Remove(std::size_t pos, std::size_t count = npos);

  // count characters from start, clipped to the text (empty when start is
  // past the end).
  WideString Substring(std::size_t start, std::size_t count = npos) const;
  // Character position of the first occurrence of what at or after from, or -1.
  // An empty what is found at from (when from is within the text).
  std::int32_t IndexOf(const WideString& what, std::size_t from = 0) const;
  std::int32_t IndexOf(UTF32TextChar c, std::size_t from = 0) const;
  bool Contains(const WideString& what) const { return IndexOf(what) >= 0; }

  // Lower-cases every character by the Unicode simple case mapping.
  void ToLower();

  // Converts between character positions and unit offsets.
  std::size_t UnitOffsetOf(std::size_t charPos) const;
  std::size_t CharPosOf(std::size_t unitOffset) const;

  friend bool operator==(const WideString& a, const WideString& b) { return a.units_ == b.units_; }
  // Ordinal order of code points (not of UTF-16 units).
  friend std::strong_ordering operator<=>(const WideString& a, const WideString& b);

 private:
  void IndexPairsFrom(std::size_t unitOffset);
  void Reindex();

  std::u16string units_;
  // Unit offsets of the first unit of every well-formed surrogate pair, ascending.
  std::vector<std::size_t> pairs_;
};
