// A "[name]" template compiled once against a list of field names, so that
// filling it for many records costs one pass over its pieces. Filling gives
// exactly what MergeContentToString gives: "[name]" becomes the decoded value
// at the position of the first equal name (nothing for an unknown name), a
// "[" without a following "]" is dropped, and once no "]" is left every later
// "[" is dropped too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "talp/wide_string.h"

namespace talp {

class RecordTemplate {
 public:
  // names: the CR-separated field names the placeholders refer to.
  RecordTemplate(std::u16string_view pattern, std::u16string_view names);

  // Appends the template filled from values, the record's fields in the
  // order of the names (missing ones are empty).
  void Fill(const std::vector<std::u16string_view>& values, std::u16string& out) const;
  // The filled template: the value itself when the template is one
  // placeholder and the value needs no decoding, else scratch (cleared and
  // filled). Valid while the value and scratch are.
  std::u16string_view Filled(const std::vector<std::u16string_view>& values, std::u16string& scratch) const;
  // Appends to key the values the template refers to, each with its length:
  // equal keys give equal fills.
  void AppendKey(const std::vector<std::u16string_view>& values, std::u16string& key) const;

 private:
  struct Piece {
    std::u16string literal;
    long field;  // the value to append after the literal; -1 for none
  };
  std::vector<Piece> pieces_;
};

// The fields of text split on separator, as views into text.
std::vector<std::u16string_view> SplitFields(std::u16string_view text, char16_t separator);
// The same into fields, which is cleared first (its memory is reused).
void SplitFieldsInto(std::u16string_view text, char16_t separator, std::vector<std::u16string_view>& fields);

}  // namespace talp
