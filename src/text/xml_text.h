// Literal-text helpers shared by the XML element access and the XML table
// reader: searches that stay linear whatever the name, and cell escaping.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/utf.h"
#include "text/text_handlers.h"

namespace talp::xml {

using Units = std::u16string_view;
constexpr std::size_t kNone = Units::npos;

constexpr Units kDeclaration = u"<?xml version=\"1.0\" encoding=\"UTF-8\" ?>";

inline bool SplitsPair(Units text, std::size_t at) {
  return at > 0 && at < text.size() && utf::IsHighSurrogate(text[at - 1]) && utf::IsLowSurrogate(text[at]);
}

// A fixed text searched for in time linear in the text (Knuth-Morris-Pratt),
// so that a long, self-overlapping name cannot make a search quadratic. Only
// occurrences on character boundaries count.
class Pattern {
 public:
  explicit Pattern(std::u16string text) : text_(std::move(text)), fallback_(text_.size(), 0) {
    for (std::size_t i = 1, k = 0; i < text_.size(); ++i) {
      while (k > 0 && text_[i] != text_[k]) k = fallback_[k - 1];
      if (text_[i] == text_[k]) ++k;
      fallback_[i] = k;
    }
  }

  std::size_t Size() const { return text_.size(); }

  // Calls found(offset) for every occurrence that starts at or after from,
  // left to right, overlapping ones included, until found returns false.
  template <typename Found>
  void ForEach(Units in, std::size_t from, Found found) const {
    if (text_.empty()) return;
    for (std::size_t i = from, k = 0; i < in.size(); ++i) {
      while (k > 0 && in[i] != text_[k]) k = fallback_[k - 1];
      if (in[i] == text_[k]) ++k;
      if (k < text_.size()) continue;
      const std::size_t start = i + 1 - k;
      if (!SplitsPair(in, start) && !SplitsPair(in, i + 1) && !found(start)) return;
      k = fallback_[k - 1];
    }
  }

  // Offset of the first occurrence at or after from, or kNone.
  std::size_t Find(Units in, std::size_t from) const {
    std::size_t at = kNone;
    ForEach(in, from, [&at](std::size_t start) {
      at = start;
      return false;
    });
    return at;
  }

 private:
  std::u16string text_;
  std::vector<std::size_t> fallback_;
};

inline std::u16string Tag(Units before, Units name, Units after) {
  std::u16string tag;
  tag.reserve(before.size() + name.size() + after.size());
  return tag.append(before).append(name).append(after);
}

// Appends value with TAB written "<tb>" and CR "<br>", so that it cannot split
// a CR/TAB table.
inline void AppendCell(std::u16string& out, Units value) {
  for (const char16_t c : value) {
    if (c == kTab) {
      out += u"<tb>";
    } else if (c == kCR) {
      out += u"<br>";
    } else {
      out += c;
    }
  }
}


}  // namespace talp::xml
