// The small XML dialect of styling documents and data tables, handled by
// literal tag search, without a general parser: "<?xml" marks a document,
// "<name>" opens an element and "</name" closes it; attributes, comments and
// CDATA are not recognised (the table reader only skips comments and allows
// attributes on "ROW"). A data table is a declaration line followed by "ROW"
// elements whose children carry the values under the field names.
//
// Every function is linear in the length of its inputs (ParseXML in its input
// plus its output) and takes any text, however malformed. Stored values carry
// the markers as "~tb~", "~br~", "~sr~", "~end~" and the entities "&amp;",
// "&lt;", "&gt;", "&quot;", "&apos;". A value that itself holds a "~" next to
// such a text (or "~br~" literally) is read back with the marker.
#pragma once

#include "talp/wide_string.h"

namespace talp {

// 1 when "<?xml" occurs in text (exact case) followed by at least one more
// character, else 0: the scan stops one character short, as callers rely on.
int isXMLFile(const WideString& text);

// Number of occurrences of "<name>" that end before the last character of
// text. name is turned into "<name>" in place, as callers rely on.
int CountElementDepth(const WideString& text, WideString& name);

// Number of occurrences of "<ROW" ("<ROWS" counts too).
int CountRowDepth(const WideString& text);

// out = the text between the n-th (from 1) "<name>" and the following
// "</name>" (or the end of text); empty when there is no n-th element.
// Occurrences are counted as CountElementDepth counts them, overlapping ones
// included, but up to the end of text. name is turned into "<name>" in place.
void GetElementNumber(WideString& out, const WideString& text, WideString& name, long n);

// out = the content of the first child element name of element, with TAB
// written "<tb>" and CR "<br>"; empty for a self-closing "<name/>" or when
// there is none. The search is for "<name" alone, so "<nameX>" may be taken;
// the character after "<name" is taken as the tag's ">"; the content runs to
// the first "</name" after it, or to the end.
void GetAbsoluteField(WideString& out, const WideString& element, const WideString& name);

// Replaces the CR/TAB table (line 1 the header; a TAB after every field and a
// CR after every line expected) by its XML form: the declaration line, then
// per record "<ROW>", one "<name>value</name>" line per field, "</ROW>".
// Lines and fields not followed by a separator are not written.
void ExportXML(WideString& table);

// Replaces an XML table by its CR/TAB form: the header from the element names
// of the first "ROW", then one TAB-separated line per "ROW", every line with
// one field per header name, no CR after the last. The inverse of ExportXML
// for the tables it writes from escaped values (EscapeValueForXML); a text
// without "ROW" becomes empty, so a table without records loses its header.
//  - Values are left as stored (entities and "~br~" markers included), except
//    that a TAB or CR in a value or a name is written "<tb>" or "<br>".
//  - Children are placed by name: the k-th element of a name in a row goes to
//    the column of the k-th element of that name in the header; a missing one
//    is empty, "<name/>" is empty. A name (or a repetition of a name) that the
//    first ROW lacks gets a new column after the others, empty in the rows
//    without it, so that no value is lost when the table is written back.
//  - A name is all between "<" and ">", blanks included. A value is the raw
//    text up to the matching "</name>", nested markup included (a "<" not
//    closed by ">" before the next "<" is text); an unclosed element ends at
//    the next tag. A ROW ends at "</ROW>", at the next "<ROW>" or at the end;
//    "<ROW ...>" may carry attributes; "<ROW/>" is a line of empty fields.
//    Text and closing tags between children, and everything outside ROWs
//    ("<ROWS>" wrappers, comments, declarations), are ignored.
//  - Every line holds one field per column, so the output is rows × columns
//    even when the rows are short.
void ParseXML(WideString& data);

// Turns the stored markers "~tb~", "~br~", "~sr~", "~end~" into "<tb>",
// "<br>", "<sr>", "<end>", left to right, trying every "~" (so "~~br~" gives
// "~<br>").
void CorrectMarkersInXML(WideString& data);

// The reverse of CorrectMarkersInXML plus entity escaping of "&", "<", ">",
// '"' and "'", applied to every value before ExportXML writes it: "<tb>",
// "<br>", "<sr>", "<end>" become "~tb~"..., then "&" becomes "&amp;" and
// "<", ">", '"', "'" their entities. Reading a value back (CorrectMarkersInXML,
// then decoding "&lt;", "&gt;", "&quot;", "&apos;" and "&amp;" last) gives it
// unchanged unless it holds a "~" of its own.
void EscapeValueForXML(WideString& value);

}  // namespace talp
