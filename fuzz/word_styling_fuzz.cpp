// Feeds arbitrary styling documents, headers and records to word styling,
// one record at a time and as a loop does.
// Input: styling NUL header NUL record, each as UTF-8.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_input.h"
#include "text/word_styling.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto parts = SplitAtNul<3>(data, size);
  const WideString styling(parts[0]), header(parts[1]);
  WideString record(parts[2]);
  talp::HandleWordStyling(styling, header, record);
  // A loop's restyling, which keeps the record in TAB form, over two records
  // so that the remembered values and the bound header are used again.
  talp::WordStyling loop(styling);
  for (int pass = 0; pass < 2; ++pass) {
    std::u16string units(WideString(parts[2]).Units());
    loop.RestyleInLoop(header, units);
  }
  WideString columns(parts[1]);
  talp::AppendHeaderFromWordStyling(styling, columns);
  return 0;
}
