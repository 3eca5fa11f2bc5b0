// Remembered results of a pure computation on text, for loops that meet the
// same inputs again and again. Keys and values sit side by side in one pool
// and the table is flat, so that a look-up touches memory in two places. The
// memory it takes is bounded: when full, it forgets everything and starts
// over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace talp {

class ValueMemo {
 public:
  // The value remembered for key. The view stays valid until the next
  // Remember.
  std::optional<std::u16string_view> Find(std::u16string_view key) const;
  // Remembers value for key (which must not be remembered yet) and returns
  // the remembered copy, valid until the next Remember.
  std::u16string_view Remember(std::u16string_view key, std::u16string_view value);
  std::size_t Size() const { return size_; }

  static constexpr std::size_t kMaxEntries = std::size_t{1} << 14;
  static constexpr std::size_t kMaxPoolUnits = std::size_t{1} << 22;

 private:
  struct Slot {
    std::uint64_t hash = 0;  // 0: empty
    std::uint32_t offset = 0;
    std::uint32_t keyLength = 0;
    std::uint32_t valueLength = 0;
  };
  static std::uint64_t HashOf(std::u16string_view key);
  std::size_t SlotFor(std::u16string_view key, std::uint64_t hash) const;
  void Forget(std::size_t slots);

  std::vector<Slot> slots_;  // a power of two, at most half of them in use
  std::u16string pool_;
  std::size_t size_ = 0;
};

}  // namespace talp
