// Feeds arbitrary conditions, headers and records to the record filter.
// Input: condition NUL header NUL record, each as UTF-8.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz_input.h"
#include "sources/file/record_filter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto parts = SplitAtNul<3>(data, size);
  const WideString condition(parts[0]), header(parts[1]), record(parts[2]);
  talp::SearchIncludedInLine(record, condition, header);
  WideString op, field, value;
  talp::FindFieldAndValueFromWhere(op, field, value, condition);
  return 0;
}
