// Feeds arbitrary styling documents, headers and records to word styling.
// Input: styling NUL header NUL record, each as UTF-8.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_input.h"
#include "text/word_styling.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto parts = SplitAtNul<3>(data, size);
  const WideString styling(parts[0]), header(parts[1]);
  WideString record(parts[2]);
  talp::HandleWordStyling(styling, header, record);
  WideString columns(parts[1]);
  talp::AppendHeaderFromWordStyling(styling, columns);
  return 0;
}
