#include "sources/file/file_data.h"

#include <string>
#include <string_view>

#include "host/unit_search.h"
#include "sources/file/file_base.h"
#include "sources/file/file_lines.h"
#include "text/delimited.h"
#include "text/item_cursor.h"
#include "text/search_replace.h"
#include "text/text_handlers.h"
#include "text/unicode_files.h"
#include "text/xml_table.h"

namespace talp {
namespace {

std::u16string_view FirstLine(const WideString& data) { return FieldOf(data.Units(), kCR, 1); }

// Position (from 1) of name among the items of list split on separator,
// comparing only items followed by a separator; otherwise the last position.
std::uint32_t IndexAmongItems(const WideString& list, char16_t separator, const PMString& name) {
  const std::u16string_view wanted = name.AsWide().Units();
  ItemCursor items(list.Units(), separator);
  std::u16string_view item;
  std::uint32_t position = 0;
  while (items.Next(item)) {
    ++position;
    if (items.EndedBySeparator() && item == wanted) return position;
  }
  return position;
}

// Gives every line a TAB after its last field, every line a CR, and adds one
// empty line, so that ExportXML, which counts separators, writes every record
// and every column. Values are escaped for XML; the header's names are not.
WideString PrepareForXML(const WideString& content) {
  std::u16string prepared;
  prepared.reserve(content.NumUTF16TextChars() + content.NumUTF16TextChars() / 8);
  ItemCursor lines(content.Units(), kCR);
  std::u16string_view line;
  bool header = true;
  while (lines.Next(line)) {
    if (!lines.EndedBySeparator() && line.empty()) break;  // after the final CR
    if (header) {
      prepared.append(line);
    } else {
      ItemCursor fields(line, kTab);
      std::u16string_view field;
      bool first = true;
      while (fields.Next(field)) {
        if (!first) prepared.push_back(kTab);
        first = false;
        WideString value = WideString::FromUTF16(field);
        EscapeValueForXML(value);
        prepared.append(value.Units());
      }
    }
    header = false;
    prepared.push_back(kTab);
    prepared.push_back(kCR);
  }
  prepared.push_back(kCR);
  return WideString(std::move(prepared));
}

}  // namespace

StoredForm StoredFormOf(const PMString& path) { return FileLines(path).Stored(); }

DataForm FormOfFirstLine(const WideString& firstLine) {
  DataForm form;
  form.xml = isXMLFile(firstLine) == 1;
  GetMergeDelimiter(firstLine, form.delimiter);  // for XML files too, then unused
  return form;
}

void NormaliseXMLTable(WideString& data) {
  ParseXML(data);
  CorrectMarkersInXML(data);
  DecodeXMLEntities(data);
}

void GetFileData(const PMString& path, WideString& data) {
  ReadMixedFile(path, data, PMString());
  const DataForm form = FormOfFirstLine(WideString::FromUTF16(FirstLine(data)));
  if (form.xml) {
    NormaliseXMLTable(data);
  } else if (form.delimiter != PMString("\t")) {
    UnicodeImportHandling(data, form.delimiter);
  }
}

void SaveFileData(const PMString& path, WideString content) {
  SaveFileData(path, std::move(content), StoredFormOf(path));
}

// A file is written back in the encoding it was read in: UTF-16 in its byte
// order and UTF-8 with or without mark, as found; a file read as
// Windows-1252 stays Windows-1252.
bool SaveFileData(const PMString& path, WideString content, const StoredForm& stored) {
  const PMString quote("\"");
  if (stored.form.xml) {
    content = PrepareForXML(content);
    ExportXML(content);
  } else if (stored.form.delimiter != PMString("\t")) {
    UnicodeExportHandling(content, stored.form.delimiter, quote);
  }
  return SaveTextFile(path, content, stored.encoding);
}

void GetMergeDelimiter(const WideString& line, PMString& delimiter) {
  std::size_t tabs = 0, commas = 0, semicolons = 0;
  for (const char16_t unit : line.Units()) {
    tabs += unit == u'\t';
    commas += unit == u',';
    semicolons += unit == u';';
  }
  if (tabs > semicolons && tabs > commas) {
    delimiter = PMString("\t");
  } else if (commas > semicolons && commas > tabs) {
    delimiter = PMString(",");
  } else if (semicolons > commas && semicolons > tabs) {
    delimiter = PMString(";");
  }
}

std::int32_t FindIndexInHeader(const WideString& header, const PMString& name) {
  return static_cast<std::int32_t>(IndexAmongItems(header, kTab, name));
}

std::uint32_t FindIndexInLineHeader(const WideString& list, const PMString& name) {
  return IndexAmongItems(list, kCR, name);
}

int fetchColumnListFile(const PMString& path, WideString& result) {
  // Only the header is needed: read no further than its line.
  std::u16string names;
  FileLines lines(path);
  std::u16string_view header;
  if (lines.Next(header)) {
    names = header;
  } else if (lines.Readable()) {
    // A text of one character has no counted line, yet its record 1 is that
    // character; the whole (tiny) file tells.
    WideString data;
    GetFileData(path, data);
    names = FirstLine(data);
  }
  host::ReplaceUnit(names, kTab, kCR);
  result = WideString(std::move(names));
  return 0;
}

}  // namespace talp
