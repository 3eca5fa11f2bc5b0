#include "talp/wide_string.h"

#include <algorithm>

#include "host/case_mapping.h"
#include "host/unit_search.h"
#include "host/utf.h"
#include "talp/pm_string.h"

using talp::utf::IsHighSurrogate;
using talp::utf::IsLowSurrogate;

WideString::WideString(const char* utf8) : WideString(std::string_view(utf8 ? utf8 : "")) {}

WideString::WideString(std::string_view utf8) {
  talp::utf::DecodeUTF8(utf8, units_);
  Reindex();
}

WideString::WideString(std::u16string units) : units_(std::move(units)) { Reindex(); }

WideString WideString::FromUnitsWithoutHighSurrogates(std::u16string units) {
  WideString text;
  text.units_ = std::move(units);
  return text;
}

WideString::WideString(const PMString& narrow) : WideString(narrow.AsWide()) {}

WideString WideString::FromUTF16LE(std::string_view bytes) {
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    units.push_back(static_cast<char16_t>(static_cast<unsigned char>(bytes[i]) |
                                          (static_cast<unsigned char>(bytes[i + 1]) << 8)));
  }
  return WideString(std::move(units));
}

std::string WideString::ToUTF8() const {
  std::string out;
  talp::utf::EncodeUTF8(units_, out);
  return out;
}

std::string WideString::ToUTF16LE() const {
  std::string out;
  out.reserve(units_.size() * 2);
  for (char16_t u : units_) {
    out.push_back(static_cast<char>(u & 0xFF));
    out.push_back(static_cast<char>(u >> 8));
  }
  return out;
}

std::size_t WideString::UnitOffsetOf(std::size_t charPos) const {
  if (pairs_.empty()) return std::min(charPos, units_.size());
  // Pair k starts at character pairs_[k] - k; those values strictly increase.
  std::size_t lo = 0, hi = pairs_.size();
  while (lo < hi) {
    const std::size_t mid = lo + (hi - lo) / 2;
    if (pairs_[mid] - mid < charPos) lo = mid + 1; else hi = mid;
  }
  return std::min(charPos + lo, units_.size());
}

std::size_t WideString::CharPosOf(std::size_t unitOffset) const {
  const auto before = std::lower_bound(pairs_.begin(), pairs_.end(), unitOffset) - pairs_.begin();
  std::size_t pos = unitOffset - static_cast<std::size_t>(before);
  // An offset that points at the second unit of a pair belongs to that pair.
  if (before > 0 && pairs_[before - 1] + 1 == unitOffset) --pos;
  return pos;
}

UTF32TextChar WideString::GetUTF32TextChar(std::size_t pos) const {
  if (pos >= CharCount()) return 0;
  std::size_t i = UnitOffsetOf(pos);
  return talp::utf::NextChar(units_, i);
}

void WideString::AppendUTF32TextChar(UTF32TextChar c) {
  std::u16string encoded;
  talp::utf::AppendUTF16(encoded, c);
  AppendUnits(encoded);
}

void WideString::AppendUnits(std::u16string_view units) {
  if (units.empty()) return;
  const std::size_t old = units_.size();
  units_.append(units);
  // A lone high surrogate at the old end may pair with the first new unit.
  std::size_t from = old;
  if (old > 0 && IsHighSurrogate(units_[old - 1]) && (pairs_.empty() || pairs_.back() != old - 1)) {
    from = old - 1;
  }
  IndexPairsFrom(from);
}

void WideString::Clear() {
  units_.clear();
  pairs_.clear();
}

void WideString::Remove(std::size_t pos, std::size_t count) {
  const std::size_t chars = CharCount();
  if (pos >= chars) return;
  count = std::min(count, chars - pos);
  const std::size_t begin = UnitOffsetOf(pos);
  const std::size_t end = UnitOffsetOf(pos + count);
  units_.erase(begin, end - begin);
  Reindex();
}

WideString WideString::Substring(std::size_t start, std::size_t count) const {
  const std::size_t chars = CharCount();
  if (start >= chars) return {};
  count = std::min(count, chars - start);
  const std::size_t begin = UnitOffsetOf(start);
  const std::size_t end = UnitOffsetOf(start + count);
  return FromUTF16(std::u16string_view(units_).substr(begin, end - begin));
}

std::int32_t WideString::IndexOf(const WideString& what, std::size_t from) const {
  if (from > CharCount()) return -1;
  const std::size_t at = talp::utf::FindAtCharBoundaries(units_, what.units_, UnitOffsetOf(from));
  return at == std::u16string_view::npos ? -1 : static_cast<std::int32_t>(CharPosOf(at));
}

std::int32_t WideString::IndexOf(UTF32TextChar c, std::size_t from) const {
  WideString one;
  one.AppendUTF32TextChar(c);
  return IndexOf(one, from);
}

void WideString::ToLower() {
  std::u16string lowered;
  talp::host::AppendLower(units_, lowered);
  units_ = std::move(lowered);
}

std::strong_ordering operator<=>(const WideString& a, const WideString& b) {
  std::size_t i = 0, j = 0;
  while (i < a.units_.size() && j < b.units_.size()) {
    const char32_t ca = talp::utf::NextChar(a.units_, i);
    const char32_t cb = talp::utf::NextChar(b.units_, j);
    if (ca != cb) return ca <=> cb;
  }
  return (a.units_.size() - i == 0 ? 0 : 1) <=> (b.units_.size() - j == 0 ? 0 : 1);
}

void WideString::IndexPairsFrom(std::size_t unitOffset) {
  const std::size_t size = units_.size();
  // Most text has no surrogate at all; find that out quickly first.
  if (unitOffset >= size || !talp::host::HasHighSurrogate(std::u16string_view(units_).substr(unitOffset))) return;
  for (std::size_t i = unitOffset; i + 1 < size; ++i) {
    if (IsHighSurrogate(units_[i]) && IsLowSurrogate(units_[i + 1])) {
      pairs_.push_back(i);
      ++i;
    }
  }
}

void WideString::Reindex() {
  pairs_.clear();
  IndexPairsFrom(0);
}
