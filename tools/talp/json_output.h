// talp's --json output: an operation's result as one JSON document, in UTF-8
// without byte-order mark, so that jq, scripts and web pages can read it.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "talp/wide_string.h"

namespace talp::cli {

// How a result's text is laid out, and so what JSON it becomes.
enum class JsonLayout {
  kNames,    // names, each ended or separated by CR: an array of strings
  kEntries,  // "key TAB sort" lines: an array of {"key": ..., "sort": ...}
  kRecords,  // records separated by CR, fields by TAB: an array of objects
  kRecord,   // one record, fields separated by CR: an array of one object (none when empty)
  kFields,   // "name TAB value" lines: one object
  kTable,    // lines of TAB-separated fields: an array of arrays of strings
};

// What keys a record's values: the CR-separated column names, and whether a
// group field was given. A record's values go under the names in order;
// values beyond the names under "_N" (N counting values from 1), so none is
// lost. With a group field, the last two values of a record that has at
// least two more values than there are names (or only two values, the TAB
// "1" of a group loop that selected nothing) are its "group" entries and its
// "count". A record ended by a TAB that has more values than names loses the
// empty value after that TAB, which only ends the last field.
struct JsonKeys {
  WideString names;
  bool grouped = false;
};

// Writes result in layout as one JSON document and a line feed. Values are
// the result's texts exactly, markers such as "<br>" kept.
void WriteJson(const WideString& result, JsonLayout layout, const JsonKeys& keys, std::ostream& out);

// Appends text as a JSON string: quotes around it, '"' and '\' escaped,
// every control character below U+0020 escaped (\b \f \n \r \t, others as
// \u00XX), everything else in UTF-8; a lone surrogate becomes U+FFFD, as
// in the tool's other UTF-8 output.
void AppendJsonString(std::u16string_view text, std::string& out);

}  // namespace talp::cli
