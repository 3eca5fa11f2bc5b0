#include "output.h"

#include <algorithm>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "host/utf.h"
#include "text/item_cursor.h"

namespace talp::cli {
namespace {

using Record = std::vector<std::u16string_view>;

std::vector<std::u16string_view> Split(std::u16string_view text, char16_t separator) {
  std::vector<std::u16string_view> pieces;
  ItemCursor cursor(text, separator);
  for (std::u16string_view piece; cursor.Next(piece);) pieces.push_back(piece);
  return pieces;
}

void WritePretty(const WideString& result, std::ostream& out) {
  if (result.IsEmpty()) return;
  std::vector<std::u16string_view> lines = Split(result.Units(), u'\r');
  if (lines.back().empty()) lines.pop_back();  // the CR that ends the last record
  std::vector<Record> records;
  std::vector<std::size_t> widths;
  for (const auto line : lines) {
    Record fields = Split(line, u'\t');
    if (fields.size() > widths.size()) widths.resize(fields.size(), 0);
    for (std::size_t i = 0; i < fields.size(); ++i) {
      widths[i] = std::max(widths[i], WideString::FromUTF16(fields[i]).CharCount());
    }
    records.push_back(std::move(fields));
  }
  for (const Record& fields : records) {
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const WideString field = WideString::FromUTF16(fields[i]);
      line += field.ToUTF8();
      if (i + 1 < fields.size()) line.append(widths[i] - field.CharCount() + 2, ' ');
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    out << line << '\n';
  }
}

// Encodes a mebibyte of text at a time, never splitting a pair, and writes
// each piece while the next one is encoded.
constexpr std::size_t kPiece = std::size_t{1} << 20;

void WriteUTF8(std::u16string_view units, std::ostream& out) {
  constexpr std::size_t kBufferBytes = kPiece * talp::utf::kMaxUTF8PerUnit;
  // Left uninitialised: every byte written out is encoded first.
  std::unique_ptr<char[]> buffers[2] = {std::make_unique_for_overwrite<char[]>(kBufferBytes),
                                        std::make_unique_for_overwrite<char[]>(kBufferBytes)};
  const auto encodeNext = [&units](char* bytes) {
    std::size_t take = std::min(kPiece, units.size());
    if (take < units.size() && take > 0 && (units[take - 1] & 0xFC00) == 0xD800) --take;
    const std::size_t written = talp::utf::EncodeUTF8To(units.substr(0, take), bytes);
    units.remove_prefix(take);
    return written;
  };
  std::size_t ready = encodeNext(buffers[0].get());
  for (int current = 0;; current = 1 - current) {
    std::future<std::size_t> next;
    if (!units.empty()) {
      char* const other = buffers[1 - current].get();
      try {
        next = std::async(std::launch::async, encodeNext, other);
      } catch (const std::system_error&) {
        next = std::async(std::launch::deferred, encodeNext, other);
      }
    }
    out.write(buffers[current].get(), static_cast<std::streamsize>(ready));
    if (!next.valid()) return;
    ready = next.get();
  }
}

}  // namespace

void WriteResult(const WideString& result, OutputMode mode, std::ostream& out) {
  switch (mode) {
    case OutputMode::kUtf16:
      out << result.ToUTF16LE();
      break;
    case OutputMode::kPretty:
      WritePretty(result, out);
      break;
    case OutputMode::kRaw:
    case OutputMode::kAuto:
    case OutputMode::kJson:  // written by WriteJson, which needs more than the result
      WriteUTF8(result.Units(), out);
      break;
  }
  out.flush();
}

}  // namespace talp::cli
