// Loading and saving the data files of the "File" source in one normalised
// form: records separated by CR, fields by TAB, record 1 the header.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "talp/pm_string.h"
#include "talp/wide_string.h"
#include "text/unicode_files.h"

namespace talp {

// How a data file is laid out, decided on its first line as read.
struct DataForm {
  bool xml = false;
  PMString delimiter{"\t"};  // "\t", "," or ";"; for XML files not used
};
DataForm FormOfFirstLine(const WideString& firstLine);

// How a data file is stored on disk; a new file is UTF-8 TAB text with mark.
struct StoredForm {
  TextEncoding encoding = TextEncoding::kUTF8WithMark;
  DataForm form;
};
// The stored form of the file at path, read from it (a delimited file's first
// piece, an XML table whole).
StoredForm StoredFormOf(const PMString& path);

// Turns the text of an XML table, as read, into the normalised form: rows to
// lines, stored markers to "<br>" and friends, entities decoded ("&amp;" last).
void NormaliseXMLTable(WideString& data);

// data = the file at path in normalised form, whatever its encoding and
// whether it is delimited by TAB, comma or semicolon (detected on the first
// line) or an XML table. A file that cannot be read leaves data as it was.
void GetFileData(const PMString& path, WideString& data);

// Rewrites the file at path with content (normalised form), keeping the
// file's delimiter, XML form and encoding as found on disk; a new file is
// written as UTF-8 TAB text. The file is replaced atomically.
void SaveFileData(const PMString& path, WideString content);
// The same in the stored form given, as read before; false when nothing was
// written (the user has been told).
bool SaveFileData(const PMString& path, WideString content, const StoredForm& stored);

// Sets delimiter to "\t", "," or ";" when that character is strictly the most
// frequent of the three in line; leaves it as it was on a tie.
void GetMergeDelimiter(const WideString& line, PMString& delimiter);

// 1-based column of name in the TAB-separated header. Only the columns before
// the last TAB are compared: any other name, the last column's own included,
// gives the last column, a fallback callers rely on.
std::int32_t FindIndexInHeader(const WideString& header, const PMString& name);

// The same look-up in a CR-separated list of names.
std::uint32_t FindIndexInLineHeader(const WideString& list, const PMString& name);

}  // namespace talp
