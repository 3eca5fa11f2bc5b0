#include "text/restyle_pipeline.h"

#include <algorithm>
#include <exception>
#include <system_error>

#include "text/number_format.h"

namespace talp {

// Records read together and restyled together by one worker.
struct RestylePipeline::Batch {
  std::vector<Record> records;  // kept from batch to batch; the first count are in use
  std::size_t count = 0;
  // Guarded by the pipeline's mutex:
  std::uint64_t sequence = 0;  // its place in the run, from 0
  bool restyled = false;
  bool done = false;           // assembled, or dropped after a failure
  std::exception_ptr failure;  // rethrown when the batch is handed out
};

namespace {

constexpr unsigned kMaxThreads = 8;

// Records were written by the reading thread, on another core: asking for
// one a little ahead hides most of the wait for it.
void Prefetch(std::u16string_view text) {
  const char* bytes = reinterpret_cast<const char*>(text.data());
  for (std::size_t offset = 0; offset < text.size() * sizeof(char16_t); offset += 64) __builtin_prefetch(bytes + offset);
}

void Restyle(WordStyling& styler, const WideString& header, std::vector<RestylePipeline::Record>& records,
             std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    if (i + 2 < count) Prefetch(records[i + 2].text);
    RestylePipeline::Record& record = records[i];
    const std::vector<std::u16string_view>& fields = styler.RestyleInLoop(header, record.text);
    record.fields.assign(fields.begin(), fields.end());
  }
}

}  // namespace

RestylePipeline::RestylePipeline(const WideString& styling, unsigned threads, std::size_t batchSize)
    : batchSize_(std::max<std::size_t>(batchSize, 1)),
      // The host's setting is read here, on the caller's thread: workers call no host service.
      decimal_(UserDecimalSeparator()),
      localStyler_(std::make_unique<WordStyling>(styling, decimal_)) {
  if (threads == 0) threads = std::thread::hardware_concurrency();
  threads = localStyler_->RunsScripts() ? 0 : std::min(threads, kMaxThreads);
  if (threads > 1) {
    for (unsigned i = 0; i < threads; ++i) workerStylers_.push_back(std::make_unique<WordStyling>(styling, decimal_));
    for (unsigned i = 0; i < threads; ++i) {
      try {
        workers_.emplace_back(&RestylePipeline::Work, this, std::ref(*workerStylers_[i]));
      } catch (const std::system_error&) {
        break;  // the workers started so far do the work
      }
    }
  }
  // Two batches a worker, one it restyles and one waiting for it, and one
  // more that this thread reads meanwhile.
  const std::size_t depth = workers_.empty() ? 1 : 2 * workers_.size() + 1;
  while (batches_.size() < depth) batches_.push_back(std::make_unique<Batch>());
}

RestylePipeline::~RestylePipeline() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  submitted_.notify_all();
  for (std::thread& worker : workers_) worker.join();
}

// Restyles the batch. Then, unless another worker is assembling (it comes to
// this batch when it is done), assembles every batch that is next in record
// order and restyled: no worker waits for its turn, and a batch is mostly
// assembled on the core that restyled it.
void RestylePipeline::Process(WordStyling& styler, Batch& batch) {
  try {
    Restyle(styler, *header_, batch.records, batch.count);
  } catch (...) {
    batch.failure = std::current_exception();
  }
  std::unique_lock lock(mutex_);
  batch.restyled = true;
  if (assembling_) return;
  assembling_ = true;
  for (;;) {
    Batch& next = *batches_[assembled_ % batches_.size()];
    if (next.sequence != assembled_ || !next.restyled || next.done) break;
    if (!cancelled_ && !next.failure) {
      lock.unlock();
      try {
        for (std::size_t i = 0; i < next.count; ++i) (*assemble_)(next.records[i]);
      } catch (...) {
        next.failure = std::current_exception();
      }
      lock.lock();
    }
    // Nothing after a failed batch is assembled: the run ends when it is
    // handed out.
    if (next.failure) cancelled_ = true;
    next.done = true;
    ++assembled_;
    done_.notify_all();
  }
  assembling_ = false;
}

void RestylePipeline::Work(WordStyling& styler) {
  std::unique_lock lock(mutex_);
  for (;;) {
    submitted_.wait(lock, [this] { return stopping_ || !queue_.empty(); });
    if (queue_.empty()) return;
    Batch& batch = *queue_.front();
    queue_.pop_front();
    lock.unlock();
    Process(styler, batch);
    lock.lock();
    --unfinished_;
    done_.notify_all();
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

void RestylePipeline::Submit(Batch& batch, std::uint64_t sequence) {
  batch.failure = nullptr;
  {
    const std::lock_guard lock(mutex_);
    batch.sequence = sequence;
    batch.restyled = false;
    batch.done = false;
  }
  if (workers_.empty()) {
    Process(*localStyler_, batch);
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    queue_.push_back(&batch);
    ++unfinished_;
  }
  submitted_.notify_one();
}

void RestylePipeline::AwaitDone(Batch& batch) {
  if (!workers_.empty()) {
    std::unique_lock lock(mutex_);
    done_.wait(lock, [&batch] { return batch.done; });
  }
  if (batch.failure) std::rethrow_exception(batch.failure);
}

void RestylePipeline::WaitForWorkers() {
  std::unique_lock lock(mutex_);
  unfinished_ -= queue_.size();
  queue_.clear();
  cancelled_ = true;
  done_.wait(lock, [this] { return unfinished_ == 0; });
}

void RestylePipeline::Run(const WideString& header, const Reader& read, const Assembler& assemble) {
  {
    const std::lock_guard lock(mutex_);
    header_ = &header;
    assemble_ = &assemble;
    assembled_ = 0;
    cancelled_ = false;
  }
  // Whatever ends the run, no worker is left with one of its batches.
  struct WorkersDone {
    RestylePipeline& pipeline;
    ~WorkersDone() { pipeline.WaitForWorkers(); }
  } workersDone{*this};

  const std::size_t depth = batches_.size();
  std::uint64_t started = 0, handedOut = 0;
  bool more = true;
  for (;;) {
    while (more && started - handedOut < depth) {
      Batch& batch = *batches_[started % depth];
      more = Read(batch, read);
      if (batch.count == 0) break;
      Submit(batch, started);
      ++started;
    }
    if (handedOut == started) return;
    Batch& batch = *batches_[handedOut % depth];
    AwaitDone(batch);
    ++handedOut;
  }
}

}  // namespace talp
