#include "text/unicode_files.h"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <string>
#include <string_view>
#include <vector>

#include "temp_folder.h"
#include "test_host.h"
#include "text_cases.h"

namespace talp {
namespace {

namespace fs = std::filesystem;
using namespace std::literals;
using test::Slurp;

void Spit(const fs::path& path, std::string_view bytes) { test::Spit(path, std::string(bytes)); }

class UnicodeFilesTest : public testing::Test {
 protected:
  test::TestHost host;
  test::TempFolder folder;
};

// Each file is read whole from disk and in pieces of a few bytes. Its
// encoding is "UTF-8" for the Utf8 cases only: a UTF-16 file says "ANSI".
TEST_F(UnicodeFilesTest, ReadMixedFileDecodesByMarkAndMakesLineEndsCR) {
  const struct { const char* name; std::string_view bytes; std::u16string_view want; } cases[] = {
      {"Utf8MarkOnly", "\xEF\xBB\xBF", u""}, {"Utf8VerticalTabStays", "\xEF\xBB\xBF" "a\vb", u"a\vb"},
      {"Utf8LineEnds", "\xEF\xBB\xBF\na\r\nb\rc\n\r\n", u"\ra\rb\rc\r\r"},
      {"Utf8Malformed", "\xEF\xBB\xBF" "a\xFF" "b\xE2\x82\n\xE2\x82", u"a\uFFFDb\uFFFD\r\uFFFD"},
      // Every LF is dropped, a lone one too; an odd last byte is ignored.
      {"Utf16LittleEndian", "\xFF\xFE" "a\0\xAC\x20\r\0\n\0b\0\n\0\x3D\xD8\x00\xDE" "c"sv, u"a\u20AC\rb\U0001F600"},
      {"Utf16BigEndian", "\xFE\xFF\0a\0\r\0\n\xD8\x3D\xDE\x00\n\0"sv, u"a\r\U0001F600\u0A00"},
      {"Utf16LoneSurrogateAndNulKept", "\xFF\xFE\x3D\xD8" "a\0\0\0\0\n"sv, u"\xD83D" u"a\0\u0A00"sv},
      {"AnsiVerticalTabIsBr", "a\vb\v\n\r\v\n", u"a<br>b<br>\r\r<br>\r"},
      {"AnsiWindows1252", "\x80\x8A\x9F\xA0\xE9\xFF\x81\x8D\x8F\x90\x9D" "a\0b"sv,
       u"\u20AC\u0160\u0178\u00A0\u00E9\u00FF\u0081\u008D\u008F\u0090\u009D" u"a\0b"sv},
      {"AnsiPartialUtf8Mark", "\xEF\xBB" "a", u"\u00EF\u00BB" u"a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Spit(folder / c.name, c.bytes);
    WideString out("stale");
    ReadMixedFile(folder.Path(c.name), out, PMString());
    EXPECT_EQ(U(out), c.want);
    PMString encoding("unset");
    GetFileEncoding(folder.Path(c.name), encoding);
    EXPECT_EQ(encoding, PMString(std::string_view(c.name).starts_with("Utf8") ? "UTF-8" : "ANSI"));
    for (const std::size_t chunk : {3, 4, 5}) {
      test::MemoryFileHost memory(c.bytes, chunk);
      out = WideString("stale");
      ReadMixedFile("any", out, PMString());
      EXPECT_EQ(U(out), c.want) << "in pieces of " << chunk;
    }
  }
  EXPECT_TRUE(host.alerts.empty());
}

// Files shorter than 3 bytes alert; missing files, missing folders and folders
// do not. Either way out stays as it was, and so does the encoding of a file
// that cannot be opened.
TEST_F(UnicodeFilesTest, WhatCannotBeReadLeavesOutAlone) {
  Spit(folder / "empty", "");
  Spit(folder / "mark", "\xFF\xFE");
  fs::create_directory(folder / "sub");
  const std::vector<std::string> tooShort = {"Size of file smaller than 3 bytes!"};
  const struct { const char* name; std::vector<std::string> alerts; } cases[] = {
      {"empty", tooShort}, {"mark", tooShort}, {"missing", {}}, {"none/missing", {}}, {"sub", {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host.alerts.clear();
    WideString out("before");
    ReadMixedFile(folder.Path(c.name), out, PMString());
    EXPECT_EQ(U(out), u"before");
    EXPECT_EQ(host.alerts, c.alerts);
  }
  PMString encoding("before");
  GetFileEncoding(folder.Path("missing"), encoding);
  EXPECT_EQ(encoding, PMString("before"));
  test::MemoryFileHost bad("abc", 1000, false);
  WideString out("before");
  ReadMixedFile("any", out, PMString());
  EXPECT_EQ(U(out), u"before");
  EXPECT_EQ(bad.alerts, std::vector<std::string>{"StreamState error!"});
}

TEST_F(UnicodeFilesTest, SaveWritesEachKindWithItsType) {
  const struct {
    const char* name;
    const char* kind;
    std::u16string_view content;
    std::string_view want;
    const char type[5];
  } cases[] = {
      // A lone surrogate has no UTF-8 form.
      {"Utf8", "UTF-8", u"a\r\nb\u20AC\U0001F600\xD83D",
       "\xEF\xBB\xBF" "a\r\nb\xE2\x82\xAC\xF0\x9F\x98\x80\xEF\xBF\xBD", "xml1"},
      {"Utf8EmptyStillHasMark", "UTF-8", u"", "\xEF\xBB\xBF", "xml1"},
      {"Mti4", "MTI4", u"a\rb", "\xEF\xBB\xBF" "a\rb", "MTI4"},
      // Only C1 controls at Windows-1252's holes keep a byte; a pair is one character.
      {"AnsiUnmappable", "ANSI", u"x\u0080\u009F\u0100\U0001F600\xD83D", "x?????", "TEXT"},
      {"Utf16KeepsLow16Bits", "UTF-16", u"a\r\n\u20AC\U0001F600\xD83D", "a\0\r\0\n\0\xAC\x20\x00\xF6\x3D\xD8"sv,
       "TEXT"},
      {"Mtc4IsEmpty", "MTC4", u"text", "", "MTC4"}, {"KindIsCaseSensitive", "utf-8", u"text", "", "TEXT"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Spit(folder / c.name, "old");
    EXPECT_TRUE(MorvelSaveUnicodeFile(folder.Path(c.name), WideString::FromUTF16(c.content), c.kind));
    EXPECT_EQ(Slurp(folder / c.name), c.want);
    EXPECT_EQ(FileTypeForKind(c.kind), host::FourCharCode(c.type));
  }
  // The file carries its type and creator where the file system keeps attributes.
  if (::setxattr((folder / "Mti4").c_str(), "user.probe", "x", 1, 0) == 0) {
    char type[4] = {}, creator[4] = {};
    ::getxattr((folder / "Mti4").c_str(), "user.filetype", type, sizeof type);
    ::getxattr((folder / "Mti4").c_str(), "user.creator", creator, sizeof creator);
    EXPECT_EQ(std::string(type, 4) + std::string(creator, 4), "MTI4MTI4");
  }
  // A stream that cannot be opened is no alert either.
  EXPECT_FALSE(MorvelSaveUnicodeFile(folder.Path("none/file.txt"), WideString("x"), "UTF-8"));
  EXPECT_FALSE(fs::exists(folder / "none"));
  EXPECT_TRUE(host.alerts.empty());
}

TEST_F(UnicodeFilesTest, AnsiRoundTripsThroughFiles) {
  std::string bytes;  // every byte but LF and VT, which reading rewrites
  for (int b = 0; b < 256; ++b) {
    if (b != '\n' && b != '\v') bytes.push_back(static_cast<char>(b));
  }
  Spit(folder / "ansi", bytes);
  WideString text;
  ReadMixedFile(folder.Path("ansi"), text, PMString());
  ASSERT_TRUE(MorvelSaveUnicodeFile(folder.Path("ansi"), text, "ANSI"));
  EXPECT_EQ(Slurp(folder / "ansi"), bytes);
}

// Files written through this host fail the way a full disk makes them: at Write, or at Commit when atCommit.
struct FullDiskHost : test::TestHost {
  struct Stream : host::FileWriteStream {
    Stream(std::unique_ptr<host::FileWriteStream> file, bool failAtCommit)
        : real(std::move(file)), atCommit(failAtCommit) {}
    bool Write(const void* data, std::size_t n) override { return real->Write(data, atCommit ? n : n / 2) && atCommit; }
    bool Commit() override { return !atCommit && real->Commit(); }
    std::unique_ptr<host::FileWriteStream> real;
    bool atCommit;
  };
  std::unique_ptr<host::FileWriteStream> OpenFileWrite(const PMString& path, std::uint32_t type,
                                                       std::uint32_t creator) override {
    return std::make_unique<Stream>(TestHost::OpenFileWrite(path, type, creator), atCommit);
  }
  bool atCommit = false;
};

TEST(SaveUnicodeFileFailureTest, AFailedSaveKeepsTheOldFileAndAlerts) {
  for (const bool atCommit : {false, true}) {
    SCOPED_TRACE(atCommit ? "Commit" : "Write");
    test::TempFolder folder;
    FullDiskHost full;
    full.atCommit = atCommit;
    Spit(folder / "data.txt", "precious");
    EXPECT_FALSE(MorvelSaveUnicodeFile(folder.Path("data.txt"), WideString("new text"), "UTF-8"));
    EXPECT_EQ(Slurp(folder / "data.txt"), "precious");
    EXPECT_EQ(folder.EntryCount(), 1u);  // no temporary file left behind
    EXPECT_EQ(full.alerts, std::vector<std::string>{"Could not save the file " + (folder / "data.txt").string() + "."});
  }
}

}  // namespace
}  // namespace talp
