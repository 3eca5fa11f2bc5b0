// The tagged text of a group loop: runs of consecutive records that share a
// group value become one line (the run's first record, then for each record
// of the run a paragraph style and its entry, joined by "<br>"), closed by a
// TAB and the number of records in the run. Styles alternate light and dark
// from record to record, across runs too; the first record is dark.
#pragma once

#include <string>
#include <string_view>

namespace talp {

class GroupRuns {
 public:
  // Appends to out, which may already hold text: then the first run is
  // preceded by a closing TAB "1" and CR, as if a run had been open.
  explicit GroupRuns(std::u16string& out) : out_(out) {}

  void Add(std::u16string_view record, std::u16string_view groupValue, std::u16string_view entry);
  // Closes the last run; with no record added at all this still gives TAB "1".
  void Finish();

 private:
  void CloseRun();

  std::u16string& out_;
  bool light_ = true;
  // No real record holds it, so the first record always opens a run.
  std::u16string previous_ = u"zzzzzzzzzzzzzzzzzzzzzzzzzzzzh";
  long runCount_ = 0;
};

}  // namespace talp
