// Reads a text file piece by piece, decoded by its mark and with its line
// ends made CR, exactly as ReadMixedFile reads it whole: loops over large
// catalogues go through it without holding the whole file.
//
// A file without a mark is read as the host's "ANSI" setting says: as
// Windows-1252, or as UTF-8 when every byte of it is valid UTF-8 (which
// Open checks by reading the file once). When Windows-1252 was used although
// what was read is valid UTF-8 beyond ASCII, the host hears of it once
// (HostServices::RemarkOnFile), when the reading ends.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/utf.h"
#include "talp/host_services.h"
#include "talp/pm_string.h"
#include "text/unicode_files.h"

namespace talp {

class TextFileReader {
 public:
  enum class Failure { kNone, kMissing, kUnreadable, kTooShort };

  TextFileReader() = default;
  ~TextFileReader();
  TextFileReader(const TextFileReader&) = delete;
  TextFileReader& operator=(const TextFileReader&) = delete;

  // Opens path and reads its mark. False where ReadMixedFile leaves its output
  // untouched, with the same alerts ("StreamState error!", "Size of file
  // smaller than 3 bytes!"); OpenFailure() then says why.
  bool Open(const PMString& path);

  // Appends the next piece of the text (from about a mebibyte of the file) to
  // out; false once the whole file has been given, or a read failed. A piece
  // never ends inside a character.
  bool Read(std::u16string& out);

  // Reads pieces into out until they hold a CR or the file ends; returns the
  // offset in out of that first CR, or npos.
  std::size_t ReadThroughFirstCR(std::u16string& out);

  // How the file stores its text; decided by Open, also for a file too short
  // to read (such a file has no mark).
  TextEncoding Encoding() const { return encoding_; }
  Failure OpenFailure() const { return failure_; }
  // Whether a read failed part way, so that the text given is not the file's.
  bool ReadFailed() const { return readFailed_; }
  // For progress: bytes read so far, and the file's size (0 when unknown).
  std::uint64_t BytesRead() const { return bytesRead_; }
  std::uint64_t FileSize() const { return fileSize_; }

 private:
  // Decides the encoding of a file without mark whose first bytes are head,
  // and leaves the stream just after them.
  bool ChooseEncodingWithoutMark(std::string_view head);
  void DecodeTextWithoutMark(std::u16string& out, bool last);
  void DecodeUTF16Text(std::u16string& out, bool last);
  void RemarkOnEncoding();

  PMString path_;
  std::unique_ptr<host::FileReadStream> stream_;
  TextEncoding encoding_ = TextEncoding::kWindows1252;
  Failure failure_ = Failure::kNone;
  std::string bytes_;     // read, not yet decoded
  bool afterCR_ = false;  // the file's byte before bytes_ was a CR
  bool finished_ = false;
  bool readFailed_ = false;
  utf::UTF8Validator readAsWindows1252_;  // what was read, for the remark
  bool remarked_ = true;                  // until a file is open
  std::uint64_t bytesRead_ = 0;
  std::uint64_t fileSize_ = 0;
};

}  // namespace talp
