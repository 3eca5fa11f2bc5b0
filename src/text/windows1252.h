// Windows-1252, the one-byte encoding that "ANSI" files use here. The five
// bytes it leaves undefined (81 8D 8F 90 9D) read as the C1 controls of the
// same number, so every byte decodes and re-encodes to itself.
#pragma once

#include <string>
#include <string_view>

#include "talp/wide_string.h"

namespace talp {

// Appends the characters of bytes to out.
void DecodeWindows1252(std::string_view bytes, std::u16string& out);

// One byte per character of text; a character Windows-1252 cannot hold is "?".
std::string EncodeWindows1252(const WideString& text);

}  // namespace talp
