// The lines of a data file in normalised form (header first), read piece by
// piece: TAB, comma and semicolon files stream through a small buffer, an
// XML table is read whole. The lines are exactly the records of GetFileData's
// text that CountUnicodeLines counts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "sources/file/file_data.h"
#include "talp/pm_string.h"
#include "text/delimited.h"
#include "text/text_file_reader.h"

namespace talp {

class FileLines {
 public:
  // A file that cannot be read has no lines (with ReadMixedFile's alerts).
  explicit FileLines(const PMString& path);

  // Whether the file could be read at all.
  bool Readable() const { return readable_; }
  // Whether the file exists but could not be read whole (it could not be
  // opened, or a read failed part way); a missing or too short file is no
  // such failure.
  bool ReadIncomplete() const;
  // How the file is stored, for writing it back: a file too short to read
  // counts as TAB text without mark, a missing one as a new file.
  StoredForm Stored() const;

  // Sets line to the next line and returns true; false after the last. The
  // view is valid until the next call of Next or HasNext.
  bool Next(std::u16string_view& line);

  // Whether the line last given was ended by a CR in the text (every line
  // but possibly the last).
  bool LastEndedWithCR() const { return lastEndedWithCR_; }

  // Whether another line follows the one last given. May read ahead, which
  // ends the validity of the last view.
  bool HasNext();

  // Bytes of the file read so far, and its size, for progress.
  std::uint64_t BytesRead() const { return reader_.BytesRead(); }
  std::uint64_t FileSize() const { return reader_.FileSize(); }

 private:
  // Moves one more piece of the file into text_; false at the end.
  bool Fill();
  // The offset of the next CR at or after offset_, or host::kNotFound.
  std::size_t NextCR() const;
  // Whether rest, the text after the last CR at the end of the file, is a line.
  bool FinalPieceCounts(std::u16string_view rest) const;

  TextFileReader reader_;
  DataForm form_;
  std::optional<DelimitedImporter> importer_;
  std::u16string raw_;   // a piece before conversion
  std::u16string text_;  // normalised text; what precedes offset_ was given out
  std::size_t offset_ = 0;
  std::size_t crFreeUpTo_ = 0;  // text_ before this holds no CR after offset_
  bool inputEnded_ = false;
  bool finalGiven_ = false;
  bool sawCR_ = false;
  bool lastEndedWithCR_ = false;
  bool readable_ = false;
};

}  // namespace talp
