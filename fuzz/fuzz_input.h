// Splitting one fuzz input into several texts.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

// The first N parts of data separated by NUL bytes; missing parts are empty.
template <std::size_t N>
std::array<std::string_view, N> SplitAtNul(const std::uint8_t* data, std::size_t size) {
  std::string_view input(reinterpret_cast<const char*>(data), size);
  std::array<std::string_view, N> parts;
  for (auto& part : parts) {
    const auto end = input.find('\0');
    part = input.substr(0, end);
    input = end == std::string_view::npos ? std::string_view() : input.substr(end + 1);
  }
  return parts;
}
