// Lower-casing by the Unicode simple case mapping, one character to one
// character, so positions and lengths in characters never change. Lone
// surrogates stay as they are. Safe to call from several threads.
#pragma once

#include <string>
#include <string_view>

namespace talp::host {

char32_t LowerChar(char32_t c);

// Appends the lower-case form of units to out.
void AppendLower(std::u16string_view units, std::u16string& out);

}  // namespace talp::host
