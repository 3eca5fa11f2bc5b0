#include "text/group_runs.h"

#include "text/text_handlers.h"

namespace talp {

void GroupRuns::Add(std::u16string_view record, std::u16string_view groupValue, std::u16string_view entry) {
  // The style changes before it is used.
  light_ = !light_;
  const std::u16string_view style = light_ ? u"<pstyle:LineLight>" : u"<pstyle:LineDark>";
  if (groupValue == previous_) {
    out_.append(u"<br>").append(style).append(entry);
    ++runCount_;
    return;
  }
  if (!out_.empty()) {
    CloseRun();
    out_.push_back(kCR);
  }
  out_.append(record).append(style).append(entry);
  previous_ = groupValue;
  runCount_ = 0;
}

void GroupRuns::Finish() { CloseRun(); }

void GroupRuns::CloseRun() {
  out_.push_back(kTab);
  AppendNumber(runCount_ + 1, out_);
}

}  // namespace talp
