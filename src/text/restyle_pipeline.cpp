#include "text/restyle_pipeline.h"

#include <algorithm>
#include <future>
#include <system_error>
#include <thread>

namespace talp {

// Records read together and restyled together, by one worker at a time.
struct RestylePipeline::Batch {
  explicit Batch(const WideString& styling) : styler(styling) {}

  WordStyling styler;           // its remembered results stay with the batch
  std::vector<Record> records;  // kept from batch to batch; the first count are in use
  std::size_t count = 0;
  std::future<void> restyled;  // valid while a worker restyles the batch
};

namespace {

constexpr unsigned kMaxThreads = 8;

void Restyle(WordStyling& styler, const WideString& header, std::vector<RestylePipeline::Record>& records,
             std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    RestylePipeline::Record& record = records[i];
    const std::vector<std::u16string_view>& fields = styler.RestyleInLoop(header, record.text);
    record.fields.assign(fields.begin(), fields.end());
  }
}

}  // namespace

RestylePipeline::RestylePipeline(const WideString& styling, unsigned threads, std::size_t batchSize)
    : batchSize_(std::max<std::size_t>(batchSize, 1)) {
  batches_.push_back(std::make_unique<Batch>(styling));
  if (threads == 0) threads = std::thread::hardware_concurrency();
  threads = batches_.front()->styler.RunsScripts() ? 1 : std::clamp(threads, 1U, kMaxThreads);
  // One batch more than workers, so that this thread reads one while they
  // restyle the others.
  const std::size_t depth = threads == 1 ? 1 : threads + 1;
  while (batches_.size() < depth) batches_.push_back(std::make_unique<Batch>(styling));
}

RestylePipeline::~RestylePipeline() { WaitForWorkers(); }

void RestylePipeline::WaitForWorkers() {
  for (const auto& batch : batches_) {
    if (batch->restyled.valid()) batch->restyled.wait();
  }
}

bool RestylePipeline::Read(Batch& batch, const Reader& read) const {
  batch.count = 0;
  while (batch.count < batchSize_) {
    if (batch.records.size() == batch.count) batch.records.emplace_back();
    std::u16string& text = batch.records[batch.count].text;
    text.clear();
    if (!read(text)) return false;
    ++batch.count;
  }
  return true;
}

void RestylePipeline::StartStyling(Batch& batch, const WideString& header) {
  if (batches_.size() > 1) {
    try {
      batch.restyled = std::async(std::launch::async, Restyle, std::ref(batch.styler), std::cref(header),
                                 std::ref(batch.records), batch.count);
      return;
    } catch (const std::system_error&) {
      // No thread to be had: the batch is restyled here.
    }
  }
  Restyle(batch.styler, header, batch.records, batch.count);
}

void RestylePipeline::Run(const WideString& header, const Reader& read, const Consumer& consume) {
  // Whatever ends the run, no worker outlives it.
  struct WorkersDone {
    RestylePipeline& pipeline;
    ~WorkersDone() { pipeline.WaitForWorkers(); }
  } workersDone{*this};

  const std::size_t depth = batches_.size();
  std::size_t started = 0, handedOut = 0;
  bool more = true;
  for (;;) {
    while (more && started - handedOut < depth) {
      Batch& batch = *batches_[started % depth];
      more = Read(batch, read);
      if (batch.count == 0) break;
      StartStyling(batch, header);
      ++started;
    }
    if (handedOut == started) return;
    Batch& batch = *batches_[handedOut % depth];
    if (batch.restyled.valid()) batch.restyled.get();  // rethrows a worker's failure
    for (std::size_t i = 0; i < batch.count; ++i) consume(batch.records[i]);
    ++handedOut;
  }
}

}  // namespace talp
