// One field update in a catalogue of a million records: the whole file is
// read, one record rebuilt, and the file written beside and renamed over the
// old one, under the file's update lock. Wall time, since most of it is I/O.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "sources/file/file_base.h"
#include "talp/wide_string.h"

namespace {

namespace fs = std::filesystem;

// A TAB catalogue of eight columns without a mark, made once per run.
class Catalogue {
 public:
  explicit Catalogue(int records) {
    std::string pattern = (fs::temp_directory_path() / "talp-bench-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
    std::ofstream out(Path(), std::ios::binary);
    out << "sku\tname\tcategory\tbrand\tprice\tstock\tdescription\tean\r\n";
    for (int i = 0; i < records; ++i) {
      out << 1000000 + i << "\tHammer " << i % 900 + 100 << " mm\ttools\tStahlwerk\t" << i % 20000 / 100.0
          << '\t' << i % 500 << "\tforged steel head, fibreglass handle, matt finish\t40" << 10000000000 + i
          << "\r\n";
    }
  }
  ~Catalogue() { fs::remove_all(folder_); }
  std::string Path() const { return (folder_ / "catalogue.txt").string(); }

 private:
  fs::path folder_;
};

void BM_UpdateOneRecord(benchmark::State& state) {
  static const Catalogue catalogue(1000000);
  const PMString path(catalogue.Path());
  int round = 0;
  for (auto _ : state) {
    const std::string value = "Claw hammer " + std::to_string(round++ % 10);
    talp::updateBaseFieldWithInfoFile(WideString(value), "name", "sku", "1500000", path);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(fs::file_size(catalogue.Path())));
}
BENCHMARK(BM_UpdateOneRecord)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(10);

}  // namespace
