// Drives the XML element access, the XML table reader and writer and the
// delimited import and export with arbitrary text, checks the element
// functions against plain position-by-position walks, and checks the two
// round trips the text-file source relies on: an XML table read and saved
// keeps every value, and import(export(T)) == T for delimited text.
//
// Input layout: byte 0 selects the encoding (odd: UTF-16LE, even: UTF-8) and,
// in bits 1 to 3, how many characters from the start of the text form the
// element name; byte 1 is the element number (signed); the text follows.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "text/delimited.h"
#include "text/search_replace.h"
#include "text/xml_table.h"

namespace talp {
namespace {

using Units = std::u16string_view;

void Check(bool ok) {
  if (!ok) std::abort();
}

std::vector<Units> Split(Units text, char16_t separator) {
  std::vector<Units> parts;
  for (std::size_t from = 0, to = 0; to != Units::npos; from = to + 1) {
    to = text.find(separator, from);
    parts.push_back(text.substr(from, to == Units::npos ? Units::npos : to - from));
  }
  return parts;
}

// Unit offsets at which what starts, overlapping ones included.
std::vector<std::size_t> Occurrences(Units text, Units what) {
  std::vector<std::size_t> at;
  for (std::size_t i = 0; what.size() <= text.size() && i <= text.size() - what.size(); ++i) {
    if (text.substr(i, what.size()) == what) at.push_back(i);
  }
  return at;
}

bool SplitsPair(Units text, std::size_t at) {
  return at > 0 && at < text.size() && text[at - 1] >= 0xD800 && text[at - 1] <= 0xDBFF && text[at] >= 0xDC00 &&
         text[at] <= 0xDFFF;
}

void CheckElementAccess(const WideString& text, Units name, long n) {
  const Units units = text.Units();
  const std::u16string tag = u"<" + std::u16string(name) + u">";
  const std::size_t declaration = units.find(u"<?xml");
  Check(isXMLFile(text) == (declaration != Units::npos && declaration + 5 < units.size() ? 1 : 0));

  std::size_t lastCharacter = units.size();
  if (lastCharacter > 0) lastCharacter -= SplitsPair(units, units.size() - 1) ? 2 : 1;
  int depth = 0;
  std::vector<std::size_t> hits;
  for (const std::size_t at : Occurrences(units, tag)) {
    if (SplitsPair(units, at + tag.size())) continue;
    hits.push_back(at);
    if (at + tag.size() <= lastCharacter) ++depth;
  }
  WideString extended = WideString::FromUTF16(name);
  Check(CountElementDepth(text, extended) == depth);
  Check(extended.Units() == tag);

  WideString out;
  extended = WideString::FromUTF16(name);
  GetElementNumber(out, text, extended, n);
  std::u16string want;
  if (n >= 1 && static_cast<std::size_t>(n) <= hits.size()) {
    const std::size_t from = hits[static_cast<std::size_t>(n) - 1] + tag.size();
    const std::size_t to = units.find(u"</" + std::u16string(name) + u">", from);
    want = units.substr(from, to == Units::npos ? Units::npos : to - from);
  }
  Check(out.Units() == want);

  GetAbsoluteField(out, text, WideString::FromUTF16(name));
  Check(out.Units().find_first_of(u"\t\r") == Units::npos);
  Check(CountRowDepth(text) == static_cast<int>(Occurrences(units, u"<ROW").size()));
}

// Every line of a table read from XML has one field per header name.
void CheckParsedTable(WideString data) {
  ParseXML(data);
  const std::vector<Units> lines = Split(data.Units(), u'\r');
  const auto fields = Split(lines[0], u'\t').size();
  for (const Units line : lines) Check(Split(line, u'\t').size() == fields);
  CorrectMarkersInXML(data);
  ExportXML(data);
}

// The table of text that the XML form can carry: header names without markup
// characters, "~", "&" or a leading "ROW", at least one record, one field per
// name in every record, values without "~".
std::u16string XmlSafeTable(Units text) {
  std::vector<Units> lines = Split(text, u'\r');
  if (lines.size() == 1) lines.push_back({});
  std::u16string table;
  std::size_t columns = 0;
  for (Units name : Split(lines[0], u'\t')) {
    std::u16string safe(name);
    for (char16_t& c : safe) {
      if (std::u16string_view(u"<>~&/!?").find(c) != Units::npos) c = u'x';
    }
    if (safe.starts_with(u"ROW")) safe[0] = u'x';
    table.append(columns++ ? u"\t" : u"").append(safe);
  }
  for (std::size_t l = 1; l < lines.size(); ++l) {
    std::vector<Units> values = Split(lines[l], u'\t');
    values.resize(columns);
    table += u'\r';
    for (std::size_t c = 0; c < columns; ++c) {
      std::u16string safe(values[c]);
      for (char16_t& u : safe) u = u == u'~' ? u'x' : u;
      table.append(c ? u"\t" : u"").append(safe);
    }
  }
  return table;
}

void CheckXmlRoundTrip(Units table) {
  std::u16string saved;
  bool header = true;
  for (const Units line : Split(table, u'\r')) {
    for (const Units field : Split(line, u'\t')) {
      WideString value = WideString::FromUTF16(field);
      if (!header) EscapeValueForXML(value);
      saved.append(value.Units()) += u'\t';
    }
    saved += u'\r';
    header = false;
  }
  WideString xml(saved + u"\r");
  ExportXML(xml);
  ParseXML(xml);
  CorrectMarkersInXML(xml);
  for (const auto& [entity, character] : {std::pair{"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""},
                                          {"&apos;", "'"}, {"&amp;", "&"}}) {
    SearchReplaceUnicode(xml, entity, character);
  }
  Check(xml.Units() == table);
}

void CheckDelimited(const WideString& text) {
  for (const char* delimiter : {",", ";"}) {
    WideString imported = text;
    UnicodeImportHandling(imported, PMString(delimiter));
    UnicodeExportHandling(imported, PMString(delimiter), PMString("\""));

    std::u16string table(text.Units());
    std::erase(table, u'\n');
    WideString converted(table);
    UnicodeExportHandling(converted, PMString(delimiter), PMString("\""));
    UnicodeImportHandling(converted, PMString(delimiter));
    Check(converted.Units() == table);
  }
}

}  // namespace
}  // namespace talp

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const std::string_view bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  const WideString text = data[0] & 1 ? WideString::FromUTF16LE(bytes) : WideString::FromUTF8(bytes);
  const std::u16string_view units = text.Units();
  std::u16string_view name = units.substr(0, (data[0] >> 1) & 7);
  if (!name.empty() && talp::SplitsPair(units, name.size())) name.remove_suffix(1);
  const long n = static_cast<std::int8_t>(data[1]);

  talp::CheckElementAccess(text, name, n);
  talp::CheckParsedTable(text);
  talp::CheckXmlRoundTrip(talp::XmlSafeTable(units));
  talp::CheckDelimited(text);
  return 0;
}
