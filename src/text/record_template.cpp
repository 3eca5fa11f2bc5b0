#include "text/record_template.h"

#include <cstdint>
#include <unordered_map>

#include "host/unit_search.h"
#include "text/item_cursor.h"
#include "text/text_handlers.h"

namespace talp {

void SplitFieldsInto(std::u16string_view text, char16_t separator, std::vector<std::u16string_view>& fields) {
  fields.clear();
  ItemCursor cursor(text, separator);
  for (std::u16string_view field; cursor.Next(field);) fields.push_back(field);
}

std::vector<std::u16string_view> SplitFields(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string_view> fields;
  SplitFieldsInto(text, separator, fields);
  return fields;
}

RecordTemplate::RecordTemplate(std::u16string_view pattern, std::u16string_view names) {
  std::unordered_map<std::u16string_view, long> positions;
  long position = 0;
  for (const std::u16string_view name : SplitFields(names, kCR)) positions.try_emplace(name, position++);

  Piece piece{{}, -1};
  bool closersLeft = true;
  std::size_t i = 0;
  while (i < pattern.size()) {
    const std::size_t open = pattern.find(u'[', i);
    if (open == std::u16string_view::npos) {
      piece.literal.append(pattern.substr(i));
      break;
    }
    piece.literal.append(pattern.substr(i, open - i));
    const std::size_t close = closersLeft ? pattern.find(u']', open + 1) : std::u16string_view::npos;
    if (close == std::u16string_view::npos) {
      closersLeft = false;
      i = open + 1;
      continue;
    }
    const auto found = positions.find(pattern.substr(open + 1, close - open - 1));
    if (found != positions.end()) {
      piece.field = found->second;
      pieces_.push_back(std::move(piece));
      piece = Piece{{}, -1};
    }
    i = close + 1;
  }
  if (!piece.literal.empty()) pieces_.push_back(std::move(piece));
}

namespace {

// Only "&" and "<" can start an entity or a marker.
bool NeedsDecoding(std::u16string_view value) { return host::FindUnit(value, 0, u'&', u'<') != host::kNotFound; }

}  // namespace

void RecordTemplate::Fill(const std::vector<std::u16string_view>& values, std::u16string& out) const {
  for (const Piece& piece : pieces_) {
    out.append(piece.literal);
    if (piece.field < 0 || static_cast<std::size_t>(piece.field) >= values.size()) continue;
    const std::u16string_view value = values[static_cast<std::size_t>(piece.field)];
    if (!NeedsDecoding(value)) {
      out.append(value);
    } else {
      WideString decoded = WideString::FromUTF16(value);
      DecodeRecordValue(decoded);
      out.append(decoded.Units());
    }
  }
}

std::u16string_view RecordTemplate::Filled(const std::vector<std::u16string_view>& values,
                                          std::u16string& scratch) const {
  if (pieces_.size() == 1 && pieces_[0].literal.empty() && pieces_[0].field >= 0) {
    const auto field = static_cast<std::size_t>(pieces_[0].field);
    if (field >= values.size()) return {};
    if (!NeedsDecoding(values[field])) return values[field];
  }
  scratch.clear();
  Fill(values, scratch);
  return scratch;
}

void RecordTemplate::AppendKey(const std::vector<std::u16string_view>& values, std::u16string& key) const {
  for (const Piece& piece : pieces_) {
    if (piece.field < 0) continue;
    const std::u16string_view value =
        static_cast<std::size_t>(piece.field) < values.size() ? values[static_cast<std::size_t>(piece.field)]
                                                              : std::u16string_view();
    // One unit for the length of a short value, 0xFFFF and four more for a
    // long one.
    if (value.size() < 0xFFFF) {
      key.push_back(static_cast<char16_t>(value.size()));
    } else {
      key.push_back(u'\xFFFF');
      for (std::uint64_t length = value.size(), i = 0; i < 4; ++i, length >>= 16) {
        key.push_back(static_cast<char16_t>(length & 0xFFFF));
      }
    }
    key.append(value);
  }
}

}  // namespace talp
