#include "text/value_memo.h"

#include <cstring>

namespace talp {

// Keys are short (a stock level, a category): four units are mixed at a
// time, inline, instead of a general byte hash behind a call.
std::uint64_t ValueMemo::HashOf(std::u16string_view key) {
  constexpr std::uint64_t kMultiplier = 0x9E3779B97F4A7C15u;
  const auto mix = [](std::uint64_t h, std::uint64_t word) {
    h = (h ^ word) * kMultiplier;
    return h ^ (h >> 29);
  };
  std::uint64_t hash = key.size() * kMultiplier;
  const char16_t* units = key.data();
  std::size_t left = key.size();
  for (; left >= 4; left -= 4, units += 4) {
    std::uint64_t word = 0;
    std::memcpy(&word, units, sizeof word);
    hash = mix(hash, word);
  }
  if (left > 0) {
    std::uint64_t word = 0;
    std::memcpy(&word, units, left * sizeof(char16_t));
    hash = mix(hash, word);
  }
  hash = mix(hash, 0);
  return hash == 0 ? 1 : hash;
}

// The slot that holds key, or the empty slot where it belongs.
std::size_t ValueMemo::SlotFor(std::u16string_view key, std::uint64_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
    const Slot& slot = slots_[i];
    if (slot.hash == 0) return i;
    if (slot.hash == hash && key == std::u16string_view(pool_).substr(slot.offset, slot.keyLength)) return i;
  }
}

std::optional<std::u16string_view> ValueMemo::Find(std::u16string_view key) const {
  if (size_ == 0) return std::nullopt;
  const Slot& slot = slots_[SlotFor(key, HashOf(key))];
  if (slot.hash == 0) return std::nullopt;
  return std::u16string_view(pool_).substr(slot.offset + slot.keyLength, slot.valueLength);
}

void ValueMemo::Forget(std::size_t slots) {
  slots_.assign(slots, Slot{});
  pool_.clear();
  size_ = 0;
}

std::u16string_view ValueMemo::Remember(std::u16string_view key, std::u16string_view value) {
  const std::size_t units = key.size() + value.size();
  if (units > kMaxPoolUnits) {
    // Too long to keep: handed back from a pool of its own.
    Forget(slots_.size());
    pool_.assign(value);
    return pool_;
  }
  if (slots_.empty() || size_ >= kMaxEntries || pool_.size() + units > kMaxPoolUnits) {
    Forget(slots_.empty() ? 64 : slots_.size());
  } else if (2 * (size_ + 1) > slots_.size()) {
    // Grown by putting every entry again into a table twice the size.
    std::vector<Slot> old(slots_.size() * 2);
    old.swap(slots_);
    for (const Slot& slot : old) {
      if (slot.hash == 0) continue;
      const std::size_t mask = slots_.size() - 1;
      std::size_t i = slot.hash & mask;
      while (slots_[i].hash != 0) i = (i + 1) & mask;
      slots_[i] = slot;
    }
  }
  const std::uint64_t hash = HashOf(key);
  Slot& slot = slots_[SlotFor(key, hash)];
  slot = {hash, static_cast<std::uint32_t>(pool_.size()), static_cast<std::uint32_t>(key.size()),
          static_cast<std::uint32_t>(value.size())};
  pool_.append(key).append(value);
  ++size_;
  return std::u16string_view(pool_).substr(slot.offset + slot.keyLength, slot.valueLength);
}

}  // namespace talp
