// Feeds arbitrary conditions, headers and records to the record filter.
// Input: condition NUL header NUL record, each as UTF-8.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "sources/file/record_filter.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::string_view parts[3];
  for (auto& part : parts) {
    const auto end = input.find('\0');
    part = input.substr(0, end);
    input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
  }
  const WideString condition(parts[0]), header(parts[1]), record(parts[2]);
  talp::SearchIncludedInLine(record, condition, header);
  WideString op, field, value;
  talp::FindFieldAndValueFromWhere(op, field, value, condition);
  return 0;
}
