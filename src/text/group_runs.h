// The tagged text of a group loop. Without grouping every record follows the
// last, ended by CR. With grouping, runs of consecutive records that share a
// group value become one line (the run's first record, then for each record
// of the run a paragraph style and its entry, joined by "<br>"), closed by a
// TAB and the number of records in the run. Styles alternate light and dark
// from record to record, across runs too; the first record is dark. The
// script source lays its runs out a little differently (see Form).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "talp/wide_string.h"
#include "text/record_template.h"

namespace talp {

class GroupRuns {
 public:
  enum class Form {
    kCounted,  // runs closed by TAB and their count
    kScript,   // no counts; a TAB between a run's first record and its style
  };
  // Appends to out, which may already hold text: then the first run is
  // preceded by a closing TAB "1" and CR, as if a run had been open (in the
  // script form, by a CR alone). groupField: the position (from 0) of the
  // field that groups; a record without it has an empty group value. entry
  // fills each record's entry. Both must outlive the runs.
  GroupRuns(std::u16string& out, bool grouping, long groupField, const RecordTemplate& entry,
            Form form = Form::kCounted);

  void Add(std::u16string_view record, const std::vector<std::u16string_view>& fields);
  // Closes the last run (with grouping and no record added at all the
  // counted form still gives TAB "1") and hands out the text, taken from out. The runs look at
  // what they add for high surrogates right after adding it, while it is in
  // the cache, so that a large text needs no pass of its own to find its
  // pairs.
  WideString Finish();

 private:
  void AddTo(std::u16string_view record, const std::vector<std::u16string_view>& fields);
  void CloseRun();

  std::u16string& out_;
  const bool grouping_;
  const long groupField_;
  const RecordTemplate& entry_;
  const Form form_;
  bool light_ = true;
  // No real record holds it, so the first record always opens a run.
  std::u16string previous_ = u"zzzzzzzzzzzzzzzzzzzzzzzzzzzzh";
  long runCount_ = 0;
  bool highSurrogates_;
};

}  // namespace talp
