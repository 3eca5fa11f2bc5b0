#include "text/group_runs.h"

#include <utility>

#include "host/unit_search.h"
#include "text/text_handlers.h"

namespace talp {

GroupRuns::GroupRuns(std::u16string& out, bool grouping, long groupField, const RecordTemplate& entry, Form form)
    : out_(out), grouping_(grouping), groupField_(groupField), entry_(entry), form_(form),
      highSurrogates_(host::HasHighSurrogate(out)) {}

void GroupRuns::Add(std::u16string_view record, const std::vector<std::u16string_view>& fields) {
  const std::size_t start = out_.size();
  AddTo(record, fields);
  highSurrogates_ = highSurrogates_ || host::HasHighSurrogate(std::u16string_view(out_).substr(start));
}

void GroupRuns::AddTo(std::u16string_view record, const std::vector<std::u16string_view>& fields) {
  if (!grouping_) {
    out_.append(record).push_back(kCR);
    return;
  }
  const std::u16string_view groupValue = groupField_ >= 0 && static_cast<std::size_t>(groupField_) < fields.size()
                                             ? fields[static_cast<std::size_t>(groupField_)]
                                             : std::u16string_view();
  // The style changes before it is used.
  light_ = !light_;
  const std::u16string_view style = light_ ? u"<pstyle:LineLight>" : u"<pstyle:LineDark>";
  if (groupValue == previous_) {
    out_.append(u"<br>").append(style);
    ++runCount_;
  } else {
    if (!out_.empty()) {
      CloseRun();
      out_.push_back(kCR);
    }
    out_.append(record);
    if (form_ == Form::kScript) out_.push_back(kTab);
    out_.append(style);
    previous_ = groupValue;
    runCount_ = 0;
  }
  entry_.Fill(fields, out_);
}

WideString GroupRuns::Finish() {
  if (grouping_) CloseRun();
  return highSurrogates_ ? WideString(std::move(out_)) : WideString::FromUnitsWithoutHighSurrogates(std::move(out_));
}

void GroupRuns::CloseRun() {
  if (form_ == Form::kScript) return;
  out_.push_back(kTab);
  AppendNumber(runCount_ + 1, out_);
}

}  // namespace talp
