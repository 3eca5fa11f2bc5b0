// What both example hosts print for a "File" catalogue: its column list and
// its first records, one line each, the fields joined by " | ".
#pragma once

#include <cstddef>
#include <iostream>
#include <string>
#include <vector>

#include "talp/talp.h"

namespace example {

// text cut at separator; a separator at the very end ends the last piece.
inline std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> pieces;
  std::size_t start = 0;
  while (start < text.size()) {
    std::size_t end = text.find(separator, start);
    if (end == std::string::npos) end = text.size();
    pieces.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return pieces;
}

inline std::string Joined(const std::vector<std::string>& pieces) {
  std::string line;
  for (const std::string& piece : pieces) line += (line.empty() ? "" : " | ") + piece;
  return line;
}

// Prints the catalogue at path through remote; returns the first status
// that is not 0 (the program's exit status).
inline int PrintCatalogue(ITALPRemote& remote, const std::string& path, std::size_t records = 3) {
  // Field 7 is the key column, 10 the source type, 12 the data file.
  const PMString descriptor(";;;;;;sku;;;File;;" + path);
  WideString columns, loop;
  if (const int status = remote.GetColumnList(descriptor, WideString(), columns); status != 0) return status;
  if (const int status = remote.GetRecordLoop(descriptor, loop, PMString()); status != 0) return status;
  // Results are UTF-16: column names separated by CR, records by CR, fields by TAB.
  std::cout << "columns: " << Joined(Split(columns.ToUTF8(), '\r')) << '\n';
  const std::vector<std::string> lines = Split(loop.ToUTF8(), '\r');
  for (std::size_t i = 0; i < lines.size() && i < records; ++i) std::cout << Joined(Split(lines[i], '\t')) << '\n';
  return 0;
}

}  // namespace example
