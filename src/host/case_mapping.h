// Lower-casing by the Unicode simple case mapping, one character to one
// character, so positions and lengths in characters never change. Lone
// surrogates stay as they are. Safe to call from several threads.
#pragma once

#include <string>
#include <string_view>

namespace talp::host {

char32_t LowerChar(char32_t c);

// The lower-case unit of every unit of the Basic Multilingual Plane (65536
// entries; surrogate units map to themselves). Valid for the whole program.
const char16_t* LowerTable();

// Appends the lower-case form of units to out.
void AppendLower(std::u16string_view units, std::u16string& out);

}  // namespace talp::host
