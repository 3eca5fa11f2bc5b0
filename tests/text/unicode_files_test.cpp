#include "text/unicode_files.h"

#include <gtest/gtest.h>
#include <sys/xattr.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "test_host.h"
#include "text/windows1252.h"

namespace talp {
namespace {

namespace fs = std::filesystem;
using namespace std::literals;

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (fs::temp_directory_path() / "talp-enc-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~TempFolder() { fs::remove_all(path_); }
  fs::path operator/(const std::string& name) const { return path_ / name; }
  std::size_t EntryCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(path_), fs::directory_iterator()));
  }

 private:
  fs::path path_;
};

std::string Slurp(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void Spit(const fs::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

PMString P(const fs::path& path) { return PMString(path.string()); }
std::u16string U(const WideString& text) { return std::u16string(text.Units()); }

std::string CodeText(std::uint32_t code) {
  return {static_cast<char>(code >> 24), static_cast<char>(code >> 16), static_cast<char>(code >> 8),
          static_cast<char>(code)};
}

// The extended attribute name of path, or "" when it has none.
std::string Attribute(const fs::path& path, const char* name) {
  char value[16];
  const ssize_t got = ::getxattr(path.c_str(), name, value, sizeof value);
  return got < 0 ? "" : std::string(value, static_cast<std::size_t>(got));
}

bool KeepsUserAttributes(const TempFolder& folder) {
  const fs::path probe = folder / "probe";
  Spit(probe, "");
  const bool kept = ::setxattr(probe.c_str(), "user.probe", "x", 1, 0) == 0;
  fs::remove(probe);
  return kept;
}

class UnicodeFilesTest : public testing::Test {
 protected:
  test::TestHost host;
  TempFolder folder;
};

using FileEncodingTest = UnicodeFilesTest;
using ReadMixedFileTest = UnicodeFilesTest;
using SaveUnicodeFileTest = UnicodeFilesTest;

struct EncodingCase {
  const char* name;
  std::string_view bytes;
  const char* want;
};

TEST_F(FileEncodingTest, OnlyTheUtf8MarkSaysUtf8) {
  const EncodingCase cases[] = {
      {"Utf8Mark", "\xEF\xBB\xBF" "abc", "UTF-8"},
      {"Utf8MarkOnly", "\xEF\xBB\xBF", "UTF-8"},
      {"Utf16LittleEndianSaysAnsi", "\xFF\xFE" "a\0"sv, "ANSI"},
      {"Utf16BigEndianSaysAnsi", "\xFE\xFF\0a"sv, "ANSI"},
      {"Plain", "abc", "ANSI"},
      {"MarkNotAtStart", "a\xEF\xBB\xBF", "ANSI"},
      {"EmptyFile", "", "ANSI"},
      {"OneByte", "\xEF", "ANSI"},
      {"TwoBytesOfMark", "\xEF\xBB", "ANSI"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Spit(folder / c.name, c.bytes);
    PMString encoding("unset");
    GetFileEncoding(P(folder / c.name), encoding);
    EXPECT_EQ(encoding, PMString(c.want));
  }
  EXPECT_TRUE(host.alerts.empty());
}

struct ReadCase {
  const char* name;
  std::string_view bytes;
  std::u16string_view want;
};

TEST_F(ReadMixedFileTest, DecodesByMarkAndMakesLineEndsCR) {
  const ReadCase cases[] = {
      {"Utf8MarkIsNotText", "\xEF\xBB\xBF" "abc", u"abc"},
      {"Utf8MarkOnly", "\xEF\xBB\xBF", u""},
      {"Utf8CrLf", "\xEF\xBB\xBF" "a\r\nb\r\n", u"a\rb\r"},
      {"Utf8LoneLf", "\xEF\xBB\xBF" "a\nb\n\n", u"a\rb\r\r"},
      {"Utf8LfRightAfterMark", "\xEF\xBB\xBF\n", u"\r"},
      {"Utf8LoneCrStays", "\xEF\xBB\xBF" "a\rb\r\r\n", u"a\rb\r\r"},
      {"Utf8LfCr", "\xEF\xBB\xBF\n\r", u"\r\r"},
      {"Utf8VerticalTabStays", "\xEF\xBB\xBF" "a\vb", u"a\vb"},
      {"Utf8MultiByte", "\xEF\xBB\xBF\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", u"\u00E9\u20AC\U0001F600"},
      {"Utf8Malformed", "\xEF\xBB\xBF" "a\xFF" "b\xE2\x82", u"a\uFFFDb\uFFFD"},
      {"Utf8TruncatedBeforeLf", "\xEF\xBB\xBF\xE2\x82\n", u"\uFFFD\r"},
      {"Utf16LittleEndian", "\xFF\xFE" "a\0\xE9\0\xAC\x20"sv, u"a\u00E9\u20AC"},
      {"Utf16LittleEndianCrLf", "\xFF\xFE" "a\0\r\0\n\0b\0"sv, u"a\rb"},
      {"Utf16LoneLfVanishes", "\xFF\xFE" "a\0\n\0b\0\n\0"sv, u"ab"},
      {"Utf16BigEndian", "\xFE\xFF\0a\0\r\0\n\0b\x20\xAC"sv, u"a\rb\u20AC"},
      {"Utf16BigEndianLoneLfVanishes", "\xFE\xFF\0\n\0a"sv, u"a"},
      {"Utf16LittleEndianLfByteHighIsKept", "\xFF\xFE\0\n"sv, u"\u0A00"},
      {"Utf16BigEndianLfByteHighIsKept", "\xFE\xFF\n\0"sv, u"\u0A00"},
      {"Utf16LittleEndianSurrogatePair", "\xFF\xFE\x3D\xD8\x00\xDE"sv, u"\U0001F600"},
      {"Utf16BigEndianSurrogatePair", "\xFE\xFF\xD8\x3D\xDE\x00"sv, u"\U0001F600"},
      {"Utf16LoneSurrogateKept", "\xFF\xFE\x3D\xD8" "a\0"sv, u"\xD83D" u"a"},
      {"Utf16NulUnitKept", "\xFF\xFE\0\0"sv, u"\0"sv},
      {"Utf16OddLastByteIgnored", "\xFF\xFE" "a\0b"sv, u"a"},
      {"Utf16MarkAndOneByte", "\xFF\xFE" "a", u""},
      {"AnsiCrLf", "a\r\nb\r\n", u"a\rb\r"},
      {"AnsiLoneLf", "\nab\n\n", u"\rab\r\r"},
      {"AnsiLoneCrStays", "a\rb\r", u"a\rb\r"},
      {"AnsiVerticalTabIsBr", "a\vb\v", u"a<br>b<br>"},
      {"AnsiVerticalTabThenLf", "a\v\nb", u"a<br>\rb"},
      {"AnsiCrVerticalTabLf", "a\r\v\n", u"a\r<br>\r"},
      {"AnsiWindows1252", "\x80\x8A\x9F\xA0\xE9\xFF", u"\u20AC\u0160\u0178\u00A0\u00E9\u00FF"},
      {"AnsiUndefinedBytesAreC1", "\x81\x8D\x8F\x90\x9D", u"\u0081\u008D\u008F\u0090\u009D"},
      {"AnsiNulKept", "a\0b"sv, u"a\0b"sv},
      {"AnsiFfWithoutFe", "\xFF" "ab", u"\u00FF" u"ab"},
      {"AnsiFeFe", "\xFE\xFE" "a", u"\u00FE\u00FE" u"a"},
      {"AnsiPartialUtf8Mark", "\xEF\xBB" "a", u"\u00EF\u00BB" u"a"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Spit(folder / c.name, c.bytes);
    WideString out("stale");
    ReadMixedFile(P(folder / c.name), out, PMString());
    EXPECT_EQ(U(out), c.want);
  }
  EXPECT_TRUE(host.alerts.empty());
}

TEST_F(ReadMixedFileTest, ManyLinesInEveryEncoding) {
  constexpr int kLines = 200000;
  std::string utf8("\xEF\xBB\xBF"), ansi, utf16("\xFF\xFE");
  std::u16string want;
  for (int i = 0; i < kLines; ++i) {
    utf8 += "\xC3\xA9\r\n";
    ansi += "\xE9\n";
    utf16 += "\xE9\0\r\0\n\0"sv;
    want += u"\u00E9\r";
  }
  const std::pair<const char*, const std::string&> files[] = {{"utf8", utf8}, {"ansi", ansi}, {"utf16", utf16}};
  for (const auto& [name, bytes] : files) {
    SCOPED_TRACE(name);
    Spit(folder / name, bytes);
    WideString out;
    ReadMixedFile(P(folder / name), out, PMString());
    EXPECT_TRUE(U(out) == want);
  }
}

TEST_F(ReadMixedFileTest, FilesShorterThanAMarkAlertAndLeaveOutAlone) {
  for (const std::string_view bytes : {""sv, "\xEF"sv, "\xFF\xFE"sv, "\r\n"sv}) {
    SCOPED_TRACE(testing::PrintToString(std::string(bytes)));
    host.alerts.clear();
    Spit(folder / "short", bytes);
    WideString out("before");
    ReadMixedFile(P(folder / "short"), out, PMString());
    EXPECT_EQ(U(out), u"before");
    EXPECT_EQ(host.alerts, std::vector<std::string>{"Size of file smaller than 3 bytes!"});
  }
}

// Missing files, missing folders and folders: nothing is reported, nothing changes.
TEST_F(ReadMixedFileTest, UnreadablePathsLeaveEverythingAlone) {
  fs::create_directory(folder / "sub");
  for (const fs::path& path : {folder / "missing", folder / "none" / "missing", folder / "sub"}) {
    SCOPED_TRACE(path.string());
    WideString out("before");
    ReadMixedFile(P(path), out, PMString());
    EXPECT_EQ(U(out), u"before");
    PMString encoding("before");
    GetFileEncoding(P(path), encoding);
    EXPECT_EQ(encoding, PMString("before"));
    EXPECT_EQ(SDKUtilities::FileExistsForRead(P(path)), 1);
    EXPECT_TRUE(SDKUtilities::CreateFileStreamRead(P(path)) == nullptr);
  }
  EXPECT_TRUE(host.alerts.empty());
  Spit(folder / "empty", "");
  EXPECT_EQ(SDKUtilities::FileExistsForRead(P(folder / "empty")), 0);
  EXPECT_TRUE(SDKUtilities::CreateFileStreamRead(P(folder / "empty")) != nullptr);
}

// A read stream over bytes in memory that reports the state and size it is
// told and hands out at most chunk bytes per read.
class MemoryReadStream : public host::FileReadStream {
 public:
  MemoryReadStream(std::string bytes, bool good, bool sizeKnown, std::size_t chunk)
      : bytes_(std::move(bytes)), good_(good), sizeKnown_(sizeKnown), chunk_(chunk) {}
  bool IsGood() const override { return good_; }
  std::int64_t Size() const override { return sizeKnown_ ? static_cast<std::int64_t>(bytes_.size()) : -1; }
  bool Seek(std::int64_t offset) override {
    at_ = std::min(bytes_.size(), static_cast<std::size_t>(offset));
    return true;
  }
  std::size_t Read(void* buffer, std::size_t n) override {
    const std::size_t got = bytes_.copy(static_cast<char*>(buffer), std::min(n, chunk_), at_);
    at_ += got;
    return got;
  }

 private:
  std::string bytes_;
  bool good_, sizeKnown_;
  std::size_t chunk_, at_ = 0;
};

class MemoryFileHost : public test::TestHost {
 public:
  std::unique_ptr<host::FileReadStream> OpenFileRead(const PMString&) override {
    return std::make_unique<MemoryReadStream>(bytes, good, sizeKnown, chunk);
  }
  std::string bytes;
  bool good = true, sizeKnown = true;
  std::size_t chunk = 1000;
};

TEST(ReadMixedFileStreamTest, BadStreamStateAlerts) {
  MemoryFileHost memory;
  memory.bytes = "abc";
  memory.good = false;
  WideString out("before");
  ReadMixedFile("any", out, PMString());
  EXPECT_EQ(U(out), u"before");
  EXPECT_EQ(memory.alerts, std::vector<std::string>{"StreamState error!"});
}

TEST(ReadMixedFileStreamTest, UnknownSizeAndShortReads) {
  MemoryFileHost memory;
  memory.sizeKnown = false;
  memory.bytes = "\xEF\xBB\xBF";
  std::u16string want;
  for (int i = 0; i < 50000; ++i) {
    memory.bytes += "ab\r\n";
    want += u"ab\r";
  }
  WideString out;
  ReadMixedFile("any", out, PMString());
  EXPECT_TRUE(U(out) == want);
  memory.bytes = "ab";
  ReadMixedFile("any", out, PMString());
  EXPECT_EQ(memory.alerts, std::vector<std::string>{"Size of file smaller than 3 bytes!"});
}

TEST(Windows1252Test, EveryByteRoundTrips) {
  std::string all;
  for (int b = 0; b < 256; ++b) all.push_back(static_cast<char>(b));
  std::u16string units;
  DecodeWindows1252(all, units);
  ASSERT_EQ(units.size(), 256u);
  EXPECT_EQ(units[0x41], u'A');
  EXPECT_EQ(units[0x80], u'\u20AC');
  EXPECT_EQ(units[0x81], u'\u0081');
  EXPECT_EQ(units[0x9F], u'\u0178');
  EXPECT_EQ(units[0xFF], u'\u00FF');
  EXPECT_EQ(EncodeWindows1252(WideString::FromUTF16(units)), all);
}

TEST(Windows1252Test, UnmappableCharactersBecomeQuestionMarks) {
  const struct {
    const char* name;
    std::u16string_view text;
    std::string_view want;
  } cases[] = {
      {"Empty", u"", ""},
      {"Latin1", u"a\u00E9\u00FF", "a\xE9\xFF"},
      {"Specials", u"\u20AC\u201C\u201D\u0153", "\x80\x93\x94\x9C"},
      {"HolesKeepTheirC1Control", u"\u0081\u008D\u008F\u0090\u009D", "\x81\x8D\x8F\x90\x9D"},
      {"OtherC1Controls", u"\u0080\u009F", "??"},
      {"BeyondLatin", u"\u0100\u4E2D", "??"},
      {"SurrogatePairIsOneCharacter", u"x\U0001F600y", "x?y"},
      {"LoneSurrogate", u"\xD83D", "?"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(EncodeWindows1252(WideString::FromUTF16(c.text)), c.want);
  }
}

struct SaveCase {
  const char* name;
  const char* kind;
  std::u16string_view content;
  std::string_view want;
  const char* type;
};

TEST_F(SaveUnicodeFileTest, WritesEachKindWithItsType) {
  const SaveCase cases[] = {
      {"Utf8", "UTF-8", u"a\r\nb\u20AC", "\xEF\xBB\xBF" "a\r\nb\xE2\x82\xAC", "xml1"},
      {"Utf8Supplementary", "UTF-8", u"\U0001F600", "\xEF\xBB\xBF\xF0\x9F\x98\x80", "xml1"},
      {"Utf8EmptyStillHasMark", "UTF-8", u"", "\xEF\xBB\xBF", "xml1"},
      {"Mti4", "MTI4", u"a\rb", "\xEF\xBB\xBF" "a\rb", "MTI4"},
      {"Snippet", "SNIPPET", u"<x/>", "\xEF\xBB\xBF<x/>", "xml1"},
      {"Ansi", "ANSI", u"a\r\nb\u00E9\u20AC", "a\r\nb\xE9\x80", "TEXT"},
      {"AnsiUnmappable", "ANSI", u"x\u0100\U0001F600y", "x??y", "TEXT"},
      {"Utf16", "UTF-16", u"a\r\n\u20AC", "a\0\r\0\n\0\xAC\x20"sv, "TEXT"},
      {"Utf16SupplementaryKeepsLow16Bits", "UTF-16", u"\U0001F600", "\x00\xF6"sv, "TEXT"},
      {"Utf16LoneSurrogate", "UTF-16", u"\xD83D", "\x3D\xD8", "TEXT"},
      {"Mtc4IsEmpty", "MTC4", u"text", "", "MTC4"},
      {"Mtp4IsEmpty", "MTP4", u"text", "", "MTP4"},
      {"Mcl4IsEmpty", "MCL4", u"text", "", "MCL4"},
      {"OtherKindIsEmpty", "TEXT", u"text", "", "TEXT"},
      {"KindIsCaseSensitive", "utf-8", u"text", "", "TEXT"},
      {"ByteOrderNamedIsNoKind", "UTF-16 Little Endian", u"text", "", "TEXT"},
      {"EmptyKind", "", u"text", "", "TEXT"},
  };
  const bool typed = KeepsUserAttributes(folder);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const fs::path target = folder / c.name;
    Spit(target, "old");
    EXPECT_TRUE(MorvelSaveUnicodeFile(P(target), WideString::FromUTF16(c.content), c.kind));
    EXPECT_EQ(Slurp(target), c.want);
    EXPECT_EQ(CodeText(FileTypeForKind(c.kind)), c.type);
    if (typed) {
      EXPECT_EQ(Attribute(target, "user.filetype"), c.type);
      EXPECT_EQ(Attribute(target, "user.creator"), c.type);
    }
  }
  EXPECT_TRUE(host.alerts.empty());
}

TEST_F(SaveUnicodeFileTest, AnsiAndUtf8RoundTripThroughFiles) {
  std::string bytes;  // every byte but LF and VT, which reading rewrites
  for (int b = 0; b < 256; ++b) {
    if (b != '\n' && b != '\v') bytes.push_back(static_cast<char>(b));
  }
  Spit(folder / "ansi", bytes);
  WideString text;
  ReadMixedFile(P(folder / "ansi"), text, PMString());
  ASSERT_TRUE(MorvelSaveUnicodeFile(P(folder / "ansi"), text, "ANSI"));
  EXPECT_EQ(Slurp(folder / "ansi"), bytes);

  const WideString content = WideString::FromUTF16(u"a\rb\u00E9\U0001F600\xD83D\r");
  ASSERT_TRUE(MorvelSaveUnicodeFile(P(folder / "utf8"), content, "UTF-8"));
  ReadMixedFile(P(folder / "utf8"), text, PMString());
  EXPECT_EQ(U(text), u"a\rb\u00E9\U0001F600\uFFFD\r");  // a lone surrogate has no UTF-8 form
}

TEST_F(SaveUnicodeFileTest, AStreamThatCannotBeOpenedIsSilent) {
  const fs::path target = folder / "none" / "file.txt";
  EXPECT_FALSE(MorvelSaveUnicodeFile(P(target), WideString("x"), "UTF-8"));
  EXPECT_FALSE(fs::exists(target));
  EXPECT_TRUE(host.alerts.empty());
}

// The platform's stream, except that one step fails the way a full disk makes it.
class FullDiskStream : public host::FileWriteStream {
 public:
  FullDiskStream(std::unique_ptr<host::FileWriteStream> real, bool failCommit)
      : real_(std::move(real)), failCommit_(failCommit) {}
  bool Write(const void* data, std::size_t n) override {
    if (failCommit_) return real_->Write(data, n);
    real_->Write(data, n / 2);
    return false;
  }
  bool Commit() override { return !failCommit_ && real_->Commit(); }

 private:
  std::unique_ptr<host::FileWriteStream> real_;
  bool failCommit_;
};

class FullDiskHost : public test::TestHost {
 public:
  explicit FullDiskHost(bool failCommit) : failCommit_(failCommit) {}
  std::unique_ptr<host::FileWriteStream> OpenFileWrite(const PMString& path, std::uint32_t fileType,
                                                       std::uint32_t creator) override {
    return std::make_unique<FullDiskStream>(TestHost::OpenFileWrite(path, fileType, creator), failCommit_);
  }

 private:
  bool failCommit_;
};

TEST(SaveUnicodeFileFailureTest, AFailedSaveKeepsTheOldFileAndAlerts) {
  for (const bool failCommit : {false, true}) {
    SCOPED_TRACE(failCommit ? "Commit" : "Write");
    TempFolder folder;
    FullDiskHost full(failCommit);
    const fs::path target = folder / "data.txt";
    Spit(target, "precious");
    EXPECT_FALSE(MorvelSaveUnicodeFile(P(target), WideString("new text"), "UTF-8"));
    EXPECT_EQ(Slurp(target), "precious");
    EXPECT_EQ(folder.EntryCount(), 1u);  // no temporary file left behind
    EXPECT_EQ(full.alerts, std::vector<std::string>{"Could not save the file " + target.string() + "."});
  }
}

}  // namespace
}  // namespace talp
