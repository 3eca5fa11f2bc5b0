#include "text/text_file_reader.h"

#include <cstring>
#include <string_view>

#include "host/utf.h"
#include "text/unicode_files.h"
#include "text/windows1252.h"

namespace talp {
namespace {

constexpr std::size_t kMarkBytes = 3;  // the most a mark takes, and all that is examined
constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

TextFileReader::Encoding EncodingByMark(std::string_view head) {
  if (head.starts_with("\xFF\xFE")) return TextFileReader::Encoding::kUTF16LittleEndian;
  if (head.starts_with("\xFE\xFF")) return TextFileReader::Encoding::kUTF16BigEndian;
  if (head.starts_with("\xEF\xBB\xBF")) return TextFileReader::Encoding::kUTF8;
  return TextFileReader::Encoding::kAnsi;
}

// Rewrites bytes[from, size) in place: a line feed that follows a carriage
// return in the file goes, any other becomes a carriage return. afterCR says
// whether the byte before from was a carriage return, and is updated.
std::size_t MakeLineEndsCR(char* bytes, std::size_t from, std::size_t size, bool& afterCR) {
  std::size_t write = from;
  for (std::size_t read = from; read < size;) {
    const void* found = std::memchr(bytes + read, '\n', size - read);
    const std::size_t end = found ? static_cast<std::size_t>(static_cast<const char*>(found) - bytes) : size;
    if (end > read) {
      std::memmove(bytes + write, bytes + read, end - read);
      write += end - read;
      afterCR = bytes[end - 1] == '\r';
    }
    if (!found) break;
    if (!afterCR) bytes[write++] = '\r';
    afterCR = false;
    read = end + 1;
  }
  return write;
}

}  // namespace

bool TextFileReader::Open(const PMString& path) {
  if (SDKUtilities::FileExistsForRead(path) != 0) return false;
  stream_ = SDKUtilities::CreateFileStreamRead(path);
  if (!stream_) return false;
  if (!stream_->IsGood()) {
    CAlert::InformationAlert("StreamState error!");
    return false;
  }
  const std::int64_t size = stream_->Size();
  fileSize_ = size > 0 ? static_cast<std::uint64_t>(size) : 0;
  char head[kMarkBytes];
  const std::size_t got = stream_->Read(head, sizeof head);
  bytesRead_ = got;
  if (got < kMarkBytes) {
    CAlert::InformationAlert("Size of file smaller than 3 bytes!");
    return false;
  }
  encoding_ = EncodingByMark(std::string_view(head, got));
  switch (encoding_) {
    case Encoding::kUTF16LittleEndian:
    case Encoding::kUTF16BigEndian:
      bytes_.push_back(head[2]);
      break;
    case Encoding::kUTF8:
      break;
    case Encoding::kAnsi: {
      bytes_.insert(bytes_.end(), head, head + got);
      const std::size_t kept = MakeLineEndsCR(bytes_.data(), 0, bytes_.size(), afterCR_);
      bytes_.resize(kept);
      break;
    }
  }
  return true;
}

bool TextFileReader::Read(std::u16string& out) {
  if (finished_) return false;
  const std::size_t carried = bytes_.size();
  bytes_.resize(carried + kPieceBytes);
  const std::size_t got = stream_->Read(bytes_.data() + carried, kPieceBytes);
  bytes_.resize(carried + got);
  bytesRead_ += got;
  finished_ = got == 0;
  if (encoding_ == Encoding::kUTF16LittleEndian || encoding_ == Encoding::kUTF16BigEndian) {
    DecodeUTF16Text(out, finished_);
    return !finished_ || carried > 0;
  }
  const std::size_t size = MakeLineEndsCR(bytes_.data(), carried, bytes_.size(), afterCR_);
  bytes_.resize(size);
  if (encoding_ == Encoding::kUTF8) {
    const std::size_t tail = finished_ ? 0 : utf::IncompleteUTF8Tail(bytes_);
    utf::DecodeUTF8(std::string_view(bytes_).substr(0, size - tail), out);
    bytes_.erase(0, size - tail);
  } else {
    DecodeOneByteText(out);
  }
  return !finished_ || carried > 0;
}

std::size_t TextFileReader::ReadThroughFirstCR(std::u16string& out) {
  std::size_t searched = 0;
  for (;;) {
    const std::size_t cr = out.find(u'\r', searched);
    if (cr != std::u16string::npos) return cr;
    searched = out.size();  // each piece is searched once
    if (!Read(out)) return std::u16string::npos;
  }
}

// Word processors write a vertical tab for a soft line break; in the text it
// stands as "<br>", the marker for a line break inside a value.
void TextFileReader::DecodeOneByteText(std::u16string& out) {
  const std::string_view text = bytes_;
  std::size_t start = 0;
  for (std::size_t tab = text.find('\v'); tab != std::string_view::npos; tab = text.find('\v', start)) {
    DecodeWindows1252(text.substr(start, tab - start), out);
    out.append(u"<br>");
    start = tab + 1;
  }
  DecodeWindows1252(text.substr(start), out);
  bytes_.clear();
}

// Every line feed is dropped, so CR LF reads as CR but a lone LF as nothing,
// unlike in one-byte files; callers rely on that. An odd last byte is no unit
// and is ignored. A high surrogate at the end of a piece waits for its pair.
void TextFileReader::DecodeUTF16Text(std::u16string& out, bool last) {
  const bool bigEndian = encoding_ == Encoding::kUTF16BigEndian;
  const auto* bytes = reinterpret_cast<const unsigned char*>(bytes_.data());
  std::size_t whole = bytes_.size() / 2 * 2;
  const auto unitAt = [&](std::size_t i) {
    return static_cast<char16_t>(bigEndian ? (bytes[i] << 8) | bytes[i + 1] : (bytes[i + 1] << 8) | bytes[i]);
  };
  if (!last && whole >= 2 && utf::IsHighSurrogate(unitAt(whole - 2))) whole -= 2;
  const std::size_t start = out.size();
  out.resize(start + whole / 2);
  char16_t* kept = out.data() + start;
  for (std::size_t i = 0; i < whole; i += 2) {
    const char16_t unit = unitAt(i);
    *kept = unit;
    kept += unit != u'\n';
  }
  out.resize(static_cast<std::size_t>(kept - out.data()));
  bytes_.erase(0, last ? bytes_.size() : whole);
}

}  // namespace talp
