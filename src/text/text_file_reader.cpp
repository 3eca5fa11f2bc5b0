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

// The encoding a mark announces; Windows-1252 stands for "no mark".
TextEncoding EncodingByMark(std::string_view head) {
  if (head.starts_with("\xFF\xFE")) return TextEncoding::kUTF16LittleEndian;
  if (head.starts_with("\xFE\xFF")) return TextEncoding::kUTF16BigEndian;
  if (head.starts_with("\xEF\xBB\xBF")) return TextEncoding::kUTF8WithMark;
  return TextEncoding::kWindows1252;
}

bool IsUTF16(TextEncoding encoding) {
  return encoding == TextEncoding::kUTF16LittleEndian || encoding == TextEncoding::kUTF16BigEndian;
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

TextFileReader::~TextFileReader() { RemarkOnEncoding(); }

bool TextFileReader::Open(const PMString& path) {
  path_ = path;
  if (SDKUtilities::FileExistsForRead(path) != 0) {
    failure_ = host::Host().FileExists(path) ? Failure::kUnreadable : Failure::kMissing;
    return false;
  }
  stream_ = SDKUtilities::CreateFileStreamRead(path);
  failure_ = Failure::kUnreadable;
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
  if (!stream_->IsGood()) {
    CAlert::InformationAlert("StreamState error!");
    return false;
  }
  const std::string_view headBytes(head, got);
  encoding_ = EncodingByMark(headBytes);
  if (got < kMarkBytes) {
    // No mark fits: the file counts as one without.
    encoding_ = TextEncoding::kWindows1252;
    if (host::Host().Ansi() == host::AnsiText::kUTF8WhereValid) {
      utf::UTF8Validator validator;
      validator.Feed(headBytes);
      if (validator.Valid()) encoding_ = TextEncoding::kUTF8;
    }
    CAlert::InformationAlert("Size of file smaller than 3 bytes!");
    failure_ = Failure::kTooShort;
    return false;
  }
  switch (encoding_) {
    case TextEncoding::kUTF16LittleEndian:
    case TextEncoding::kUTF16BigEndian:
      bytes_.push_back(head[2]);
      break;
    case TextEncoding::kUTF8WithMark:
      break;
    case TextEncoding::kUTF8:
    case TextEncoding::kWindows1252: {
      if (!ChooseEncodingWithoutMark(headBytes)) return false;
      bytes_.insert(bytes_.end(), head, head + got);
      const std::size_t kept = MakeLineEndsCR(bytes_.data(), 0, bytes_.size(), afterCR_);
      bytes_.resize(kept);
      remarked_ = encoding_ != TextEncoding::kWindows1252;
      break;
    }
  }
  failure_ = Failure::kNone;
  return true;
}

// Whether the whole file is valid UTF-8 is known only at its end, yet the
// encoding is needed for its first piece: the file is read once to decide,
// then read again from just after head.
bool TextFileReader::ChooseEncodingWithoutMark(std::string_view head) {
  encoding_ = TextEncoding::kWindows1252;
  if (host::Host().Ansi() != host::AnsiText::kUTF8WhereValid) return true;
  utf::UTF8Validator validator;
  validator.Feed(head);
  std::string piece(kPieceBytes, '\0');
  while (validator.ValidSoFar()) {
    const std::size_t got = stream_->Read(piece.data(), piece.size());
    if (got == 0) break;
    validator.Feed(std::string_view(piece).substr(0, got));
  }
  if (!stream_->IsGood()) {
    readFailed_ = true;
    return false;
  }
  if (validator.Valid()) encoding_ = TextEncoding::kUTF8;
  if (stream_->Seek(static_cast<std::int64_t>(head.size()))) return true;
  // A stream that cannot go back is opened anew.
  stream_ = SDKUtilities::CreateFileStreamRead(path_);
  std::string skipped(head.size(), '\0');
  return stream_ && stream_->Read(skipped.data(), skipped.size()) == head.size() && stream_->IsGood();
}

bool TextFileReader::Read(std::u16string& out) {
  if (finished_) return false;
  const std::size_t carried = bytes_.size();
  bytes_.resize(carried + kPieceBytes);
  const std::size_t got = stream_->Read(bytes_.data() + carried, kPieceBytes);
  bytes_.resize(carried + got);
  bytesRead_ += got;
  finished_ = got == 0;
  if (!stream_->IsGood()) {
    // What the failed read gave is not used: the text ends before it.
    readFailed_ = finished_ = true;
    bytes_.clear();
    return false;
  }
  if (IsUTF16(encoding_)) {
    DecodeUTF16Text(out, finished_);
  } else {
    const std::size_t size = MakeLineEndsCR(bytes_.data(), carried, bytes_.size(), afterCR_);
    bytes_.resize(size);
    if (encoding_ == TextEncoding::kUTF8WithMark) {
      const std::size_t tail = finished_ ? 0 : utf::IncompleteUTF8Tail(bytes_);
      utf::DecodeUTF8(std::string_view(bytes_).substr(0, size - tail), out);
      bytes_.erase(0, size - tail);
    } else {
      DecodeTextWithoutMark(out, finished_);
    }
  }
  if (finished_) RemarkOnEncoding();
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
void TextFileReader::DecodeTextWithoutMark(std::u16string& out, bool last) {
  const bool utf8 = encoding_ == TextEncoding::kUTF8;
  std::string_view text = bytes_;
  if (!utf8 && readAsWindows1252_.ValidSoFar()) readAsWindows1252_.Feed(text);
  const std::size_t waiting = utf8 && !last ? utf::IncompleteUTF8Tail(text) : 0;
  text.remove_suffix(waiting);
  const auto decode = [&](std::string_view run) {
    if (utf8) {
      utf::DecodeUTF8(run, out);
    } else {
      DecodeWindows1252(run, out);
    }
  };
  std::size_t start = 0;
  for (std::size_t tab = text.find('\v'); tab != std::string_view::npos; tab = text.find('\v', start)) {
    decode(text.substr(start, tab - start));
    out.append(u"<br>");
    start = tab + 1;
  }
  decode(text.substr(start));
  bytes_.erase(0, text.size());
}

// Every line feed is dropped, so CR LF reads as CR but a lone LF as nothing,
// unlike in one-byte files; callers rely on that. An odd last byte is no unit
// and is ignored. A high surrogate at the end of a piece waits for its pair.
void TextFileReader::DecodeUTF16Text(std::u16string& out, bool last) {
  const bool bigEndian = encoding_ == TextEncoding::kUTF16BigEndian;
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

void TextFileReader::RemarkOnEncoding() {
  if (remarked_) return;
  remarked_ = true;
  if (readAsWindows1252_.Valid() && readAsWindows1252_.SawBeyondAscii()) {
    host::Host().RemarkOnFile(path_, host::FileRemark::kValidUTF8ReadAsWindows1252);
  }
}

}  // namespace talp
