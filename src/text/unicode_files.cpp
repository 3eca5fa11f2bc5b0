#include "text/unicode_files.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "host/utf.h"
#include "text/windows1252.h"

namespace talp {
namespace {

using host::FourCharCode;

constexpr std::string_view kUTF8Mark = "\xEF\xBB\xBF";
constexpr std::size_t kMarkBytes = 3;  // the most a mark can take, and all that is examined
constexpr std::size_t kUTF16MarkBytes = 2;

enum class MarkedEncoding { kUTF16LittleEndian, kUTF16BigEndian, kUTF8, kAnsi };

MarkedEncoding EncodingByMark(std::string_view head) {
  if (head.starts_with("\xFF\xFE")) return MarkedEncoding::kUTF16LittleEndian;
  if (head.starts_with("\xFE\xFF")) return MarkedEncoding::kUTF16BigEndian;
  if (head.starts_with(kUTF8Mark)) return MarkedEncoding::kUTF8;
  return MarkedEncoding::kAnsi;
}

// A whole file in one buffer that the decoders may rewrite in place.
struct FileBytes {
  std::unique_ptr<char[]> data;
  std::size_t size = 0;

  char* Begin() { return data.get(); }
  std::string_view View() const { return {data.get(), size}; }
};

// The rest of stream. Where its size is known the buffer is allocated once,
// one byte larger, so that a file read in full ends with a short read; a
// size that is unknown, or that grows while being read, doubles the buffer.
// Throws std::bad_alloc when the file does not fit in memory.
FileBytes ReadRest(host::FileReadStream& stream) {
  const std::int64_t known = stream.Size();
  std::size_t capacity = known >= 0 ? static_cast<std::size_t>(known) + 1 : std::size_t{1} << 16;
  FileBytes bytes{std::make_unique_for_overwrite<char[]>(capacity), 0};
  for (;;) {
    if (bytes.size == capacity) {
      if (capacity > SIZE_MAX / 2) throw std::bad_alloc();
      capacity *= 2;
      auto larger = std::make_unique_for_overwrite<char[]>(capacity);
      std::memcpy(larger.get(), bytes.data.get(), bytes.size);
      bytes.data = std::move(larger);
    }
    const std::size_t got = stream.Read(bytes.data.get() + bytes.size, capacity - bytes.size);
    if (got == 0) return bytes;
    bytes.size += got;
  }
}

// Rewrites text[from, size) in place so that a line feed after a carriage
// return goes and any other line feed becomes a carriage return; returns the
// new size. Only the byte before a line feed as it was in the file counts,
// and a line feed at from follows no carriage return. The text only shrinks.
std::size_t MakeLineEndsCR(char* text, std::size_t from, std::size_t size) {
  std::size_t read = from, write = from;
  while (read < size) {
    const void* found = std::memchr(text + read, '\n', size - read);
    const std::size_t end = found ? static_cast<std::size_t>(static_cast<const char*>(found) - text) : size;
    const bool afterCR = end > read && text[end - 1] == '\r';
    std::memmove(text + write, text + read, end - read);
    write += end - read;
    if (!found) break;
    if (!afterCR) text[write++] = '\r';
    read = end + 1;
  }
  return write;
}

std::u16string DecodeUTF8File(FileBytes bytes) {
  const std::size_t size = MakeLineEndsCR(bytes.Begin(), kMarkBytes, bytes.size);
  std::u16string units;
  utf::DecodeUTF8(bytes.View().substr(kMarkBytes, size - kMarkBytes), units);
  return units;
}

// Word processors write a vertical tab for a soft line break; in the text
// it stands as "<br>", the marker for a line break inside a value.
std::u16string DecodeAnsiFile(FileBytes bytes) {
  const std::string_view text = bytes.View().substr(0, MakeLineEndsCR(bytes.Begin(), 0, bytes.size));
  constexpr std::u16string_view kSoftBreak = u"<br>";
  const auto softBreaks = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\v'));
  std::u16string units;
  units.reserve(text.size() + softBreaks * (kSoftBreak.size() - 1));
  std::size_t start = 0;
  for (std::size_t tab = text.find('\v'); tab != std::string_view::npos; tab = text.find('\v', start)) {
    DecodeWindows1252(text.substr(start, tab - start), units);
    units.append(kSoftBreak);
    start = tab + 1;
  }
  DecodeWindows1252(text.substr(start), units);
  return units;
}

// Every line feed is dropped, so CR LF reads as CR but a lone LF as nothing,
// unlike in one-byte files; callers rely on that. An odd last byte is no unit
// and is ignored.
std::u16string DecodeUTF16File(const FileBytes& bytes, bool bigEndian) {
  const std::string_view text = bytes.View().substr(kUTF16MarkBytes);
  std::u16string units(text.size() / 2, u'\0');
  char16_t* kept = units.data();
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    const auto first = static_cast<unsigned char>(text[i]);
    const auto second = static_cast<unsigned char>(text[i + 1]);
    const auto unit = static_cast<char16_t>(bigEndian ? (first << 8) | second : (second << 8) | first);
    *kept = unit;
    kept += unit != u'\n';
  }
  units.resize(static_cast<std::size_t>(kept - units.data()));
  return units;
}

// Decodes a file of at least kMarkBytes bytes by its mark; bytes is consumed
// so that its memory is free again before the caller builds the text.
std::u16string DecodeFile(FileBytes bytes) {
  switch (EncodingByMark(bytes.View().substr(0, kMarkBytes))) {
    case MarkedEncoding::kUTF16LittleEndian:
      return DecodeUTF16File(bytes, false);
    case MarkedEncoding::kUTF16BigEndian:
      return DecodeUTF16File(bytes, true);
    case MarkedEncoding::kUTF8:
      return DecodeUTF8File(std::move(bytes));
    case MarkedEncoding::kAnsi:
      break;
  }
  return DecodeAnsiFile(std::move(bytes));
}

enum class Content { kUTF8WithMark, kOneByte, kUTF16, kNothing };

struct Kind {
  std::string_view name;
  std::uint32_t code;  // file type and creator alike
  Content content;
};

// Looked up top to bottom. "MTC4", "MTP4" and "MCL4" give an empty file of
// their type: that is what the sibling plug-ins have always received.
constexpr Kind kKinds[] = {
    {"MTI4", FourCharCode("MTI4"), Content::kUTF8WithMark},
    {"MTC4", FourCharCode("MTC4"), Content::kNothing},
    {"ANSI", FourCharCode("TEXT"), Content::kOneByte},
    {"MTP4", FourCharCode("MTP4"), Content::kNothing},
    {"MCL4", FourCharCode("MCL4"), Content::kNothing},
    {"UTF-8", FourCharCode("xml1"), Content::kUTF8WithMark},
    {"SNIPPET", FourCharCode("xml1"), Content::kUTF8WithMark},
    {"UTF-16", FourCharCode("TEXT"), Content::kUTF16},
};
constexpr Kind kOtherKind = {"", FourCharCode("TEXT"), Content::kNothing};

const Kind& KindNamed(const PMString& kind) {
  const std::string name = kind.GrabCString();
  const auto* row = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& k) { return k.name == name; });
  return row == std::end(kKinds) ? kOtherKind : *row;
}

// Little endian, no mark. One unit per character, as these files have always
// been written: a character above U+FFFF keeps the low 16 bits of its code point.
std::string EncodeUTF16Units(const WideString& content) {
  const std::u16string_view units = content.Units();
  std::string bytes;
  bytes.reserve(units.size() * 2);
  for (std::size_t i = 0; i < units.size();) {
    const auto unit = static_cast<char16_t>(utf::NextChar(units, i));
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

std::string Encode(const WideString& content, Content how) {
  switch (how) {
    case Content::kUTF8WithMark: {
      std::string bytes(kUTF8Mark);
      utf::EncodeUTF8(content.Units(), bytes);
      return bytes;
    }
    case Content::kOneByte:
      return EncodeWindows1252(content);
    case Content::kUTF16:
      return EncodeUTF16Units(content);
    case Content::kNothing:
      break;
  }
  return {};
}

}  // namespace

void GetFileEncoding(const PMString& path, PMString& encoding) {
  const auto stream = SDKUtilities::CreateFileStreamRead(path);
  if (!stream) return;
  char head[kMarkBytes];
  const std::size_t got = stream->Read(head, sizeof head);
  // Only the UTF-8 mark counts; a UTF-16 file says "ANSI" here, and the
  // callers rely on that.
  encoding = std::string_view(head, got) == kUTF8Mark ? "UTF-8" : "ANSI";
}

void ReadMixedFile(const PMString& path, WideString& out, const PMString&) {
  if (SDKUtilities::FileExistsForRead(path) != 0) return;
  const auto stream = SDKUtilities::CreateFileStreamRead(path);
  if (!stream) return;
  if (!stream->IsGood()) {
    CAlert::InformationAlert("StreamState error!");
    return;
  }
  bool tooShort = false;
  try {
    FileBytes bytes = ReadRest(*stream);
    tooShort = bytes.size < kMarkBytes;
    if (!tooShort) {
      std::u16string units = DecodeFile(std::move(bytes));  // the bytes are freed by now
      out = WideString(std::move(units));
    }
  } catch (const std::bad_alloc&) {
    // A file too large for memory cannot be read, and like any unreadable
    // file it leaves out as it was, without a message.
  }
  if (tooShort) CAlert::InformationAlert("Size of file smaller than 3 bytes!");
}

bool MorvelSaveUnicodeFile(const PMString& path, const WideString& content, const PMString& kind) {
  const Kind& chosen = KindNamed(kind);
  auto stream = host::Host().OpenFileWrite(path, chosen.code, chosen.code);
  if (!stream) return false;
  bool saved = false;
  try {
    const std::string bytes = Encode(content, chosen.content);
    saved = stream->Write(bytes.data(), bytes.size()) && stream->Commit();
  } catch (const std::bad_alloc&) {
    // Reported below like a full disk: the old file stays.
  }
  stream.reset();  // the half-written replacement is gone before the user is told
  if (!saved) {
    PMString message("Could not save the file ");
    message.Append(path);
    message.Append(U'.');
    CAlert::InformationAlert(message);
  }
  return saved;
}

std::uint32_t FileTypeForKind(const PMString& kind) { return KindNamed(kind).code; }

namespace SDKUtilities {

std::unique_ptr<host::FileReadStream> CreateFileStreamRead(const PMString& path, unsigned long, unsigned long,
                                                           unsigned long) {
  return host::Host().OpenFileRead(path);
}

int FileExistsForRead(const PMString& path) { return CreateFileStreamRead(path) ? 0 : 1; }

}  // namespace SDKUtilities
}  // namespace talp
