#include "text/restyle_pipeline.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "test_host.h"
#include "text/word_styling.h"

namespace talp {
namespace {

const WideString kHeader("sku\rstock\rnote");
// A remembered conditional, a computed field that the next one reads, and a
// value whose decoded markers hold a CR (a new field) and a TAB (kept).
const WideString kStyling(
    "<?xml version=\"1.0\"?><Styling>"
    "<Process><OutputField>state</OutputField><ProcessType>Exif</ProcessType>"
    "<ProcessInfo><EXIF>'[stock]'=='0','out','in'</EXIF></ProcessInfo></Process>"
    "<Process><OutputField>label</OutputField><ProcessType>Concatenate</ProcessType>"
    "<ProcessInfo>[sku]-[note]</ProcessInfo></Process>"
    "</Styling>");

std::u16string RecordNumber(int n) {
  const std::string note = n % 7 == 0 ? "a&lt;br&gt;b&lt;tb&gt;c" : "plain";
  return std::u16string(WideString(std::to_string(n) + "\t" + std::to_string(n % 3) + "\t" + note + "\t").Units());
}

// Appends a record as its text, "#" and its fields, each followed by "|".
void Append(std::vector<std::u16string>& records, std::u16string_view text,
            const std::vector<std::u16string_view>& fields) {
  records.emplace_back(text).push_back(u'#');
  for (const std::u16string_view field : fields) records.back().append(field).append(u"|");
}

// The records in the order the assembler, which takes one at a time, is given them.
TEST(RestylePipeline, GivesEveryRecordInOrderAsOneStylingWould) {
  test::TestHost host;
  const struct { int count; unsigned threads; std::size_t batchSize; } cases[] = {
      {0, 4, 3}, {100, 1, 7}, {1000, 3, 16}, {5000, 0, 4096},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.count << " records, " << c.threads << " threads, batches of " << c.batchSize);
    WordStyling styling(kStyling);
    std::vector<std::u16string> want, got;
    for (int n = 0; n < c.count; ++n) {
      std::u16string record = RecordNumber(n);
      Append(want, record, styling.RestyleInLoop(kHeader, record));
    }
    RestylePipeline pipeline(kStyling, c.threads, c.batchSize);
    int n = 0;
    pipeline.Run(
        kHeader, [&](std::u16string& record) { return n < c.count && (record = RecordNumber(n++), true); },
        [&](const RestylePipeline::Record& record) { Append(got, record.text, record.fields); });
    EXPECT_EQ(got, want);
  }
}

// A failure in the assembler (on a worker) or in the reader (on the caller's
// thread) ends the run after the workers; the pipeline can run again.
TEST(RestylePipeline, AFailureEndsTheRunAfterTheWorkers) {
  test::TestHost host;
  for (const bool inAssembler : {true, false}) {
    RestylePipeline pipeline(kStyling, 4, 2);
    int read = 0, assembled = 0;
    const auto run = [&] {
      pipeline.Run(
          kHeader,
          [&](std::u16string& record) {
            if (read == 7 && !inAssembler) throw std::runtime_error("unreadable");
            record = RecordNumber(read);
            return ++read < 1000;
          },
          [&](const RestylePipeline::Record&) {
            if (++assembled == 5 && inAssembler) throw std::runtime_error("bad record");
          });
    };
    EXPECT_THROW(run(), std::runtime_error);
    // Nothing after a failed record; when reading fails, the batches still
    // in the pipeline may be dropped.
    if (inAssembler) {
      EXPECT_EQ(assembled, 5);
    }
    EXPECT_LE(assembled, 6);
    EXPECT_LT(read, 50);  // reading stopped after the batches in flight
    read = 990;
    EXPECT_NO_THROW(run());
  }
}

}  // namespace
}  // namespace talp
