// Reads a text file piece by piece, decoded by its mark and with its line
// ends made CR, exactly as ReadMixedFile reads it whole: loops over large
// catalogues go through it without holding the whole file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "talp/host_services.h"
#include "talp/pm_string.h"

namespace talp {

class TextFileReader {
 public:
  enum class Encoding { kUTF16LittleEndian, kUTF16BigEndian, kUTF8, kAnsi };

  // Opens path and reads its mark. False where ReadMixedFile leaves its output
  // untouched, with the same alerts ("StreamState error!", "Size of file
  // smaller than 3 bytes!").
  bool Open(const PMString& path);

  // Appends the next piece of the text (from about a mebibyte of the file) to
  // out; false once the whole file has been given. A piece never ends inside
  // a character.
  bool Read(std::u16string& out);

  // Reads pieces into out until they hold a CR or the file ends; returns the
  // offset in out of that first CR, or npos.
  std::size_t ReadThroughFirstCR(std::u16string& out);

  Encoding FileEncoding() const { return encoding_; }
  // For progress: bytes read so far, and the file's size (0 when unknown).
  std::uint64_t BytesRead() const { return bytesRead_; }
  std::uint64_t FileSize() const { return fileSize_; }

 private:
  void DecodeOneByteText(std::u16string& out);
  void DecodeUTF16Text(std::u16string& out, bool last);

  std::unique_ptr<host::FileReadStream> stream_;
  Encoding encoding_ = Encoding::kAnsi;
  std::string bytes_;     // read, not yet decoded
  bool afterCR_ = false;  // the file's byte before bytes_ was a CR
  bool finished_ = false;
  std::uint64_t bytesRead_ = 0;
  std::uint64_t fileSize_ = 0;
};

}  // namespace talp
