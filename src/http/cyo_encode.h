// The Base64 encoder used for file uploads: the standard alphabet with "="
// padding, one unbroken run of output without line breaks or a closing NUL.
// Stateless and thread-safe.
#pragma once

#include <cstdint>

namespace CyoEncode {

inline constexpr std::uint32_t BASE64_INPUT = 3;   // input bytes per group
inline constexpr std::uint32_t BASE64_OUTPUT = 4;  // output characters per group
// The alphabet; entry 64 is the padding character.
inline constexpr char BASE64_TABLE[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=";
inline constexpr char c_pszErrorInvalidParameter[] = "Invalid parameter";

// Encodes size bytes at src into dest and returns the number of characters
// written, 4 for every group of up to 3 bytes. dest must hold at least
// 4 * ceil(size / 3) bytes. Throws std::runtime_error("Invalid parameter")
// when dest or src is null, whatever the size.
unsigned long Base64Encode(void* dest, const void* src, unsigned long size);

}  // namespace CyoEncode
