// PMString: the host's narrow platform string, used for descriptors, names,
// paths, SQL and HTTP text. It holds Unicode characters; its narrow form
// (GrabCString) is UTF-8. Positions count characters. A value type.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "talp/wide_string.h"

// One character of a PMString, compared as a number.
using PlatformChar = char32_t;

class PMString {
 public:
  PMString() = default;
  PMString(const char* utf8) : text_(utf8) {}  // NOLINT: implicit, as in the host
  explicit PMString(std::string_view utf8) : text_(utf8) {}
  explicit PMString(const std::string& utf8) : text_(std::string_view(utf8)) {}
  explicit PMString(WideString wide) : text_(std::move(wide)) {}

  std::size_t CharCount() const { return text_.CharCount(); }
  bool IsEmpty() const { return text_.IsEmpty(); }
  // The character at index, or 0 past the end.
  PlatformChar GetChar(std::size_t index) const { return text_.GetUTF32TextChar(index); }
  PlatformChar operator[](std::size_t index) const { return GetChar(index); }

  // A leading decimal integer, as atol reads it: blanks, an optional sign,
  // digits. Text without one gives 0; values beyond 32 bits are clamped.
  std::int32_t GetAsNumber() const;
  // A leading decimal number (sign, digits, point, exponent), read with "."
  // as the decimal point whatever the locale; text without one gives 0.
  double GetAsDouble() const;

  void Append(const PMString& text) { text_.Append(text.text_); }
  void Append(PlatformChar c) { text_.AppendUTF32TextChar(c); }
  void AppendNumber(std::int64_t number);
  void Clear() { text_.Clear(); }
  // Removes count characters from pos, clipped to the text.
  void Remove(std::size_t pos, std::size_t count = WideString::npos) { text_.Remove(pos, count); }
  // Character position of the first occurrence of what at or after from, or -1.
  std::int32_t IndexOfString(const PMString& what, std::size_t from = 0) const {
    return text_.IndexOf(what.text_, from);
  }

  // The narrow (UTF-8) form.
  std::string GrabCString() const { return text_.ToUTF8(); }
  const WideString& AsWide() const { return text_; }

  friend bool operator==(const PMString& a, const PMString& b) = default;
  friend std::strong_ordering operator<=>(const PMString& a, const PMString& b) { return a.text_ <=> b.text_; }

 private:
  WideString text_;
};
