// Word styling: the caller's styling text either computes extra fields for
// each record (an XML document of "Process" elements, each with an
// "OutputField" name, a "ProcessType" and a "ProcessInfo" that may hold
// "[name]" placeholders) or is a find/replace table applied to the record.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "talp/wide_string.h"
#include "text/record_template.h"
#include "text/value_memo.h"

namespace talp {

// Appends the names of the computed fields, each followed by CR, to the
// CR-separated column list header; a styling text that is no XML document
// changes nothing.
void AppendHeaderFromWordStyling(const WideString& styling, WideString& header);

// Restyles one TAB-separated record in place. A find/replace table cleans it
// (its TABs stay); a styling document turns its TABs into CRs and appends
// each computed value followed by a CR. header is the CR-separated list of the
// record's field names that placeholders refer to.
void HandleWordStyling(const WideString& styling, const WideString& header, WideString& record);

// The same for many records: the styling document is read once, and its
// placeholders are resolved once per header. Not thread-safe; an instance
// made on an operation's thread (where the host's decimal separator is read)
// may be used on another.
class WordStyling {
 public:
  explicit WordStyling(const WideString& styling);
  WordStyling(const WideString& styling, char16_t decimal);
  ~WordStyling();
  WordStyling(const WordStyling&) = delete;
  WordStyling& operator=(const WordStyling&) = delete;

  bool IsDocument() const { return document_; }
  // Whether a process runs a script. Such styling restyles on one thread:
  // the runs of a script file in an operation share one engine, whose
  // globals see the records in record order; engines of separate workers
  // would each see some batches, and a script that keeps state (a counter,
  // a running total) would give results that depend on the split. Other
  // styling may restyle in separate instances on separate threads.
  bool RunsScripts() const;
  void AppendNames(WideString& header) const;
  void Apply(const WideString& header, WideString& record);
  // Apply for a styling document, on the record's units: TABs become CRs and
  // each computed value is appended with its CR. values, when given, receives
  // the computed values one by one (they may hold CRs of their own).
  void ApplyDocument(const WideString& header, std::u16string& record,
                     std::vector<std::u16string>* values = nullptr);
  // Restyles a TAB-separated record of a loop, which reads records by TAB: a
  // styling document's result is turned back into TAB-separated fields,
  // computed ones included. Returns the record's fields as views into it,
  // valid until it changes.
  const std::vector<std::u16string_view>& RestyleInLoop(const WideString& header, std::u16string& record);

  struct Process;

 private:
  void Bind(const WideString& header);
  // Restyles a record whose fields are separated by TABs or CRs into one
  // whose fields, computed ones included, are separated by separator, and
  // finds its fields.
  void Restyle(const WideString& header, std::u16string& record, char16_t separator,
               std::vector<std::u16string>* values);
  // Appends value and a separator to record, splitting it into fields at its
  // CRs unless it is known to hold none; keeps fields_ pointing into record.
  void AppendValue(std::u16string& record, std::u16string_view value, char16_t separator, bool withoutCR);
  // The value of process n for the record's fields; withoutCR tells whether
  // it is known to hold no CR.
  std::u16string_view Compute(std::size_t n, bool& withoutCR);

  bool document_;
  WideString table_;  // the find/replace table when styling is no document
  std::vector<Process> processes_;
  WideString boundHeader_;
  std::vector<RecordTemplate> infos_;  // each process's information, bound to boundHeader_
  bool bound_ = false;
  char16_t decimal_;  // the host's decimal separator
  // Reused from record to record.
  std::vector<std::u16string_view> fields_;
  std::vector<std::size_t> offsets_;  // of the fields, while the record moves
  std::u16string filled_;
  std::u16string key_;
  std::u16string value_;
  std::vector<ValueMemo> memos_;
};

}  // namespace talp
