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
#include "text/text_file_reader.h"
#include "text/windows1252.h"

namespace talp {
namespace {

using host::FourCharCode;

constexpr std::string_view kUTF8Mark = "\xEF\xBB\xBF";
constexpr std::size_t kMarkBytes = 3;  // the most a mark can take, and all that is examined

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

// The mark, then every unit as it is: pairs stay pairs.
std::string EncodeUTF16WithMark(const WideString& content, bool bigEndian) {
  const std::u16string_view units = content.Units();
  std::string bytes;
  bytes.reserve(2 + units.size() * 2);
  const auto append = [&](char16_t unit) {
    const auto high = static_cast<char>(unit >> 8), low = static_cast<char>(unit & 0xFF);
    bytes.push_back(bigEndian ? high : low);
    bytes.push_back(bigEndian ? low : high);
  };
  append(0xFEFF);
  for (const char16_t unit : units) append(unit);
  return bytes;
}

std::string EncodeUTF8(const WideString& content, bool withMark) {
  std::string bytes(withMark ? kUTF8Mark : "");
  bytes.reserve(bytes.size() + content.NumUTF16TextChars() + content.NumUTF16TextChars() / 4);
  utf::EncodeUTF8(content.Units(), bytes);
  return bytes;
}

std::string Encode(const WideString& content, Content how) {
  switch (how) {
    case Content::kUTF8WithMark:
      return EncodeUTF8(content, true);
    case Content::kOneByte:
      return EncodeWindows1252(content);
    case Content::kUTF16:
      return EncodeUTF16Units(content);
    case Content::kNothing:
      break;
  }
  return {};
}

std::string Encode(const WideString& content, TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::kUTF16LittleEndian:
    case TextEncoding::kUTF16BigEndian:
      return EncodeUTF16WithMark(content, encoding == TextEncoding::kUTF16BigEndian);
    case TextEncoding::kUTF8WithMark:
    case TextEncoding::kUTF8:
      return EncodeUTF8(content, encoding == TextEncoding::kUTF8WithMark);
    case TextEncoding::kWindows1252:
      break;
  }
  return EncodeWindows1252(content);
}

// Writes what encode gives to path, typed code. A failure after the file was
// opened keeps the old file and tells the user.
template <typename Encoder>
bool WriteEncoded(const PMString& path, std::uint32_t code, const Encoder& encode) {
  auto stream = host::Host().OpenFileWrite(path, code, code);
  if (!stream) return false;
  bool saved = false;
  try {
    const std::string bytes = encode();
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
  TextFileReader reader;
  if (!reader.Open(path)) return;
  try {
    std::u16string units;
    units.reserve(static_cast<std::size_t>(reader.FileSize()));
    while (reader.Read(units)) {
    }
    if (reader.ReadFailed()) return;  // a part of a file is no file
    out = WideString(std::move(units));
  } catch (const std::bad_alloc&) {
    // A file too large for memory cannot be read, and like any unreadable
    // file it leaves out as it was, without a message.
  }
}

bool MorvelSaveUnicodeFile(const PMString& path, const WideString& content, const PMString& kind) {
  const Kind& chosen = KindNamed(kind);
  return WriteEncoded(path, chosen.code, [&] { return Encode(content, chosen.content); });
}

bool SaveTextFile(const PMString& path, const WideString& content, TextEncoding encoding) {
  const std::uint32_t code = encoding == TextEncoding::kUTF8WithMark ? FourCharCode("xml1") : FourCharCode("TEXT");
  return WriteEncoded(path, code, [&] { return Encode(content, encoding); });
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
