#include "text/group_runs.h"

#include "text/text_handlers.h"

namespace talp {

void GroupRuns::Add(std::u16string_view record, const std::vector<std::u16string_view>& fields,
                    std::u16string& out) {
  if (!grouping_) {
    out.append(record).push_back(kCR);
    started_ = true;
    return;
  }
  const std::u16string_view groupValue = groupField_ >= 0 && static_cast<std::size_t>(groupField_) < fields.size()
                                             ? fields[static_cast<std::size_t>(groupField_)]
                                             : std::u16string_view();
  // The style changes before it is used.
  light_ = !light_;
  const std::u16string_view style = light_ ? u"<pstyle:LineLight>" : u"<pstyle:LineDark>";
  if (groupValue == previous_) {
    out.append(u"<br>").append(style);
    ++runCount_;
  } else {
    if (started_) {
      CloseRun(out);
      out.push_back(kCR);
    }
    started_ = true;
    out.append(record).append(style);
    previous_ = groupValue;
    runCount_ = 0;
  }
  entry_.Fill(fields, out);
}

void GroupRuns::Finish(std::u16string& out) {
  if (grouping_) CloseRun(out);
}

void GroupRuns::CloseRun(std::u16string& out) {
  out.push_back(kTab);
  AppendNumber(runCount_ + 1, out);
}

}  // namespace talp
