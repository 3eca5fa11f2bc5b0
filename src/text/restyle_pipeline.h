// Word styling for the records of a loop, on every core: the caller's thread
// reads records in batches and hands them out in order, while worker threads
// restyle the batches read ahead, one worker and one styling instance per
// batch. Records come out exactly as WordStyling::RestyleInLoop makes them.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "talp/wide_string.h"
#include "text/word_styling.h"

namespace talp {

class RestylePipeline {
 public:
  struct Record {
    std::u16string text;                      // TAB-separated, restyled
    std::vector<std::u16string_view> fields;  // views into text, computed fields included
  };
  // Reads the next record into its argument (cleared first); false at the end.
  using Reader = std::function<bool(std::u16string&)>;
  using Consumer = std::function<void(const Record&)>;

  // styling and header as for WordStyling::RestyleInLoop. threads: workers,
  // 0 for one per core; styling that runs scripts always stays on the
  // caller's thread.
  explicit RestylePipeline(const WideString& styling, unsigned threads = 0, std::size_t batchSize = 4096);
  ~RestylePipeline();
  RestylePipeline(const RestylePipeline&) = delete;
  RestylePipeline& operator=(const RestylePipeline&) = delete;

  // Restyles every record that read gives and hands each to consume, on the
  // caller's thread. An exception from read, consume or a worker ends the
  // run once the workers are done and propagates.
  void Run(const WideString& header, const Reader& read, const Consumer& consume);

 private:
  struct Batch;
  bool Read(Batch& batch, const Reader& read) const;
  void StartStyling(Batch& batch, const WideString& header);
  void WaitForWorkers();

  std::vector<std::unique_ptr<Batch>> batches_;  // in turn; one when styling stays on this thread
  std::size_t batchSize_;
};

}  // namespace talp
