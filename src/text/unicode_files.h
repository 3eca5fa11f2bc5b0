// Text files of unknown encoding: detection, whole-file reading into
// WideString with CR line ends, and typed writing in a chosen encoding.
//
// Encoding names, exactly as callers pass and compare them: "UTF-16 Little
// Endian", "UTF-16 Big Endian", "UTF-8", "ANSI" (a file without mark: read as
// Windows-1252, or as UTF-8 where valid, as the host's "ANSI" setting says). Files go
// through the host's streams, so writes replace their target atomically.
// UTF-16 is written little endian without a mark; programs that read these
// files must assume that byte order.
#pragma once

#include <cstdint>
#include <memory>

#include "talp/host_services.h"
#include "talp/pm_string.h"
#include "talp/wide_string.h"

namespace talp {

// How a text file stores its characters. TextFileReader decides it by the
// byte-order mark, and for a file without one by the host's "ANSI" setting;
// SaveTextFile writes it back the same way.
enum class TextEncoding {
  kUTF16LittleEndian,  // mark FF FE
  kUTF16BigEndian,     // mark FE FF
  kUTF8WithMark,       // mark EF BB BF
  kUTF8,               // no mark, read as UTF-8 because every byte was valid UTF-8
  kWindows1252,        // no mark
};

// Sets encoding from the first three bytes of the file: "UTF-8" after the
// mark EF BB BF, "ANSI" in every other case (UTF-16 marks included, which only
// ReadMixedFile recognises). Leaves encoding untouched when the file cannot
// be opened.
void GetFileEncoding(const PMString& path, PMString& encoding);

// Replaces out by the whole file, decoded by its mark (FF FE: UTF-16 little
// endian, FE FF: big endian, EF BB BF: UTF-8, else ANSI, see above), with
// line ends made CR: in UTF-8 and ANSI files a lone LF becomes CR and CR LF
// becomes CR (and ANSI's vertical tab "<br>"); in UTF-16 files every LF is
// dropped, and an odd last byte is ignored. Malformed UTF-8 reads as U+FFFD.
// out is untouched when the file cannot be read (also when a read fails part
// way, or it does not fit in memory); a file shorter than 3 bytes gives the
// alert "Size of file smaller than 3 bytes!", a bad stream "StreamState
// error!". The third argument is not used.
void ReadMixedFile(const PMString& path, WideString& out, const PMString& unused);

// Writes content to path as kind says ("UTF-8", "MTI4", "SNIPPET": UTF-8
// with mark; "ANSI": one Windows-1252 byte per character, "?" for what it
// cannot hold; "UTF-16": one little-endian unit per character without mark,
// the low 16 bits of a code point above U+FFFF; "MTC4", "MTP4", "MCL4" and
// any other kind: an empty file), typed with the kind's four-character code.
// No line-end conversion. Returns false silently, writing nothing, when the
// file cannot be opened for writing; a write that fails later leaves the old
// file as it was and shows the alert "Could not save the file PATH.".
// Returns whether the file was written.
bool MorvelSaveUnicodeFile(const PMString& path, const WideString& content, const PMString& kind);

// Writes content to path in encoding, with the mark it has: UTF-16 with
// surrogate pairs for characters beyond the Basic Multilingual Plane, UTF-8,
// or Windows-1252 ("?" for what it cannot hold). Typed 'xml1' for UTF-8 with
// mark, 'TEXT' otherwise. Fails like MorvelSaveUnicodeFile.
bool SaveTextFile(const PMString& path, const WideString& content, TextEncoding encoding);

// The four-character file type (and creator) code MorvelSaveUnicodeFile gives kind.
std::uint32_t FileTypeForKind(const PMString& kind);

namespace SDKUtilities {

// The host's read stream for path, or null when it cannot be opened. mode,
// fileType and creator are accepted as the host takes them ('????' = any).
std::unique_ptr<host::FileReadStream> CreateFileStreamRead(const PMString& path, unsigned long mode = 1,
                                                           unsigned long fileType = 0x3F3F3F3F,
                                                           unsigned long creator = 0x3F3F3F3F);

// 0 when path can be opened for reading, 1 otherwise.
int FileExistsForRead(const PMString& path);

}  // namespace SDKUtilities
}  // namespace talp
