// Feeds arbitrary styling documents, headers and records to word styling.
// Input: styling NUL header NUL record, each as UTF-8.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "text/word_styling.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::string_view parts[3];
  for (auto& part : parts) {
    const auto end = input.find('\0');
    part = input.substr(0, end);
    input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
  }
  const WideString styling(parts[0]), header(parts[1]);
  WideString record(parts[2]);
  talp::HandleWordStyling(styling, header, record);
  WideString columns(parts[1]);
  talp::AppendHeaderFromWordStyling(styling, columns);
  return 0;
}
