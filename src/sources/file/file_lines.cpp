#include "sources/file/file_lines.h"

#include <algorithm>

#include "host/unit_search.h"
#include "sources/file/file_data.h"
#include "talp/wide_string.h"
#include "text/text_handlers.h"

namespace talp {

FileLines::FileLines(const PMString& path) {
  readable_ = reader_.Open(path);
  if (!readable_) {
    inputEnded_ = true;
    finalGiven_ = true;
    return;
  }
  // The form is decided on the first line, as GetFileData decides it.
  const std::size_t firstCR = reader_.ReadThroughFirstCR(raw_);
  form_ = FormOfFirstLine(WideString::FromUTF16(std::u16string_view(raw_).substr(0, firstCR)));
  if (form_.xml) {
    while (reader_.Read(raw_)) {
    }
    WideString table(std::move(raw_));
    NormaliseXMLTable(table);
    text_ = std::u16string(table.Units());
    inputEnded_ = true;
  } else if (form_.delimiter != PMString("\t")) {
    importer_.emplace(form_.delimiter.GetChar(0));
    importer_->Feed(raw_, text_);
  } else {
    text_ = std::move(raw_);
  }
  raw_.clear();
}

bool FileLines::ReadIncomplete() const {
  return reader_.ReadFailed() || reader_.OpenFailure() == TextFileReader::Failure::kUnreadable;
}

StoredForm FileLines::Stored() const {
  StoredForm stored;
  if (readable_) stored.form = form_;
  if (readable_ || reader_.OpenFailure() == TextFileReader::Failure::kTooShort) stored.encoding = reader_.Encoding();
  return stored;
}

bool FileLines::Fill() {
  if (inputEnded_) return false;
  // What was given out goes, so the buffer stays about one piece large.
  text_.erase(0, offset_);
  offset_ = 0;
  // The partial line kept holds no CR: only the new piece is searched.
  crFreeUpTo_ = text_.size();
  if (importer_) {
    raw_.clear();
    inputEnded_ = !reader_.Read(raw_);
    importer_->Feed(raw_, text_);
  } else {
    inputEnded_ = !reader_.Read(text_);
  }
  return true;
}

bool FileLines::FinalPieceCounts(std::u16string_view rest) const {
  // Text after the last CR is a line when it is not empty; a text without any
  // CR must hold more than one character.
  if (sawCR_) return !rest.empty();
  return WideString::FromUTF16(rest).CharCount() > 1;
}

std::size_t FileLines::NextCR() const {
  return host::FindUnit(text_, std::max(offset_, crFreeUpTo_), kCR, kCR);
}

bool FileLines::Next(std::u16string_view& line) {
  for (;;) {
    const std::size_t cr = NextCR();
    if (cr != host::kNotFound) {
      line = std::u16string_view(text_).substr(offset_, cr - offset_);
      offset_ = cr + 1;
      sawCR_ = true;
      lastEndedWithCR_ = true;
      return true;
    }
    if (Fill()) continue;
    if (finalGiven_) return false;
    finalGiven_ = true;
    const std::u16string_view rest = std::u16string_view(text_).substr(offset_);
    if (!FinalPieceCounts(rest)) return false;
    line = rest;
    offset_ = text_.size();
    lastEndedWithCR_ = false;
    return true;
  }
}

bool FileLines::HasNext() {
  for (;;) {
    if (NextCR() != host::kNotFound) return true;
    if (Fill()) continue;
    return !finalGiven_ && FinalPieceCounts(std::u16string_view(text_).substr(offset_));
  }
}

}  // namespace talp
