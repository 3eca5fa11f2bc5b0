// Word styling for the records of a loop, on every core. The caller's thread
// reads records in batches; worker threads restyle the batches read ahead,
// each with its own styling instance for the whole run (what it remembers
// stays warm on its core), and hand the records to the assembler, batch after
// batch in record order, mostly on the core that restyled them.
// Records come out exactly as WordStyling::RestyleInLoop makes them.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
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
  // Reads the next record into its argument, which is empty; false at the end.
  using Reader = std::function<bool(std::u16string&)>;
  // Takes each record: called for every record in record order, never for
  // two at once, on any thread (the pipeline orders the calls, so what it
  // touches needs no lock of its own, but must not be used by the caller
  // during the run).
  using Assembler = std::function<void(const Record&)>;

  // styling and header as for WordStyling::RestyleInLoop. threads: workers,
  // 0 for one per core; styling that runs scripts always stays on the
  // caller's thread, in record order (see WordStyling::RunsScripts), and so
  // does all styling when no thread can be started.
  // Batches are small, so that the records in flight stay in the cores'
  // caches between reading, restyling and assembling.
  explicit RestylePipeline(const WideString& styling, unsigned threads = 0, std::size_t batchSize = 1024);
  ~RestylePipeline();
  RestylePipeline(const RestylePipeline&) = delete;
  RestylePipeline& operator=(const RestylePipeline&) = delete;

  // Restyles every record that read gives and hands it to assemble. An
  // exception from either ends the run once the workers are done with its
  // batches, and propagates.
  void Run(const WideString& header, const Reader& read, const Assembler& assemble);

 private:
  struct Batch;
  bool Read(Batch& batch, const Reader& read) const;
  void Submit(Batch& batch, std::uint64_t sequence);
  void Process(WordStyling& styler, Batch& batch);
  void AwaitDone(Batch& batch);
  void WaitForWorkers();
  void Work(WordStyling& styler);

  std::size_t batchSize_;
  char16_t decimal_;
  std::unique_ptr<WordStyling> localStyler_;  // styles on the caller's thread when there are no workers
  std::vector<std::unique_ptr<WordStyling>> workerStylers_;
  std::vector<std::unique_ptr<Batch>> batches_;  // in turn

  std::mutex mutex_;
  std::condition_variable submitted_, done_;
  std::deque<Batch*> queue_;    // submitted, not yet taken by a worker
  std::size_t unfinished_ = 0;  // submitted, and a worker may still touch them
  std::uint64_t assembled_ = 0;  // batches of the run assembled so far
  bool assembling_ = false;      // a worker is assembling
  bool cancelled_ = false;       // the run ends early: no more assembling
  const WideString* header_ = nullptr;
  const Assembler* assemble_ = nullptr;
  bool stopping_ = false;
  std::vector<std::thread> workers_;
};

}  // namespace talp
