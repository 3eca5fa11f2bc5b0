#include "host/large_text.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <stdexcept>

namespace talp::host {
namespace {

constexpr std::uintptr_t kLargePage = std::uintptr_t{2} << 20;

// Advice only: where the system has no large pages, nothing changes.
void AdviseLargePages(const void* data, std::size_t bytes) {
  const auto begin = reinterpret_cast<std::uintptr_t>(data);
  const std::uintptr_t first = (begin + kLargePage - 1) & ~(kLargePage - 1);
  const std::uintptr_t last = (begin + bytes) & ~(kLargePage - 1);
  if (last <= first) return;
#if defined(MADV_HUGEPAGE)
  ::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}

// Room beyond the machine's memory could never be filled.
std::size_t MemoryInUnits() {
  const long pages = ::sysconf(_SC_PHYS_PAGES), pageSize = ::sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return static_cast<std::size_t>(-1);
  return static_cast<std::size_t>(pages) / sizeof(char16_t) * static_cast<std::size_t>(pageSize);
}

}  // namespace

void ReserveLargeText(std::u16string& text, std::size_t units) {
  std::size_t extra = units > text.size() ? std::min(units - text.size(), MemoryInUnits()) : 0;
  for (; extra > 0; extra /= 4) {
    try {
      text.reserve(text.size() + extra);
      break;
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
  }
  AdviseLargePages(text.data(), text.capacity() * sizeof(char16_t));
}

}  // namespace talp::host
