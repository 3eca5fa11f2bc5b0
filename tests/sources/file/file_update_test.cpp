// Field updates of the "File" source on real files: the records written,
// the encodings kept, files that cannot be read, and updates at once.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "temp_folder.h"
#include "test_host.h"

namespace talp {
namespace {

using host::AnsiText;
using test::Slurp;
using test::Spit;
using namespace std::string_literals;

// Characters of two, three and four bytes in UTF-8; Windows-1252 has the first.
#define VALUE "\xC3\x84\xE6\xBC\xA2\xF0\x9F\x98\x80"

class FileUpdateTest : public testing::Test {
 protected:
  test::TestHost host;
  test::TempFolder folder;
};

// Every record whose key field holds the key value is rebuilt with the
// value, escaped, in its field; the other records stay as they were.
TEST_F(FileUpdateTest, RewritesEveryMatchingRecord) {
  const struct { const char *name, *before, *field, *value, *after; } cases[] = {
      {"EscapesTheValue", "k\tv\tq\r7\tn\t5", "v", "b\tM\r\nx", "k\tv\tq\r7\tb<tb>M<br><sr>x\t\r"},
      // The rebuilt record loses its last field; aimed at it, nothing is written.
      {"LastFieldIsDropped", "k\tv\tq\r7\tn\t5\r", "q", "9", "k\tv\tq\r7\tn\t\r"},
      {"EveryMatchAndNoMatchStillRewrites", "k\tv\tx\n7\ta\t.\n2\tb\t.\n7\tc\t.\n", "v", "z",
       "k\tv\tx\r7\tz\t\r2\tb\t.\r7\tz\t\r"},
      {"CommaFileStaysComma", "k,v,q\n7,n,5\n", "v", "n, M4", "k,v,q\r7,\"n, M4\",\r"},
      {"MissingFileBecomesEmptyUtf8", "", "v", "x", "\xEF\xBB\xBF"},
      {"TooShortFileBecomesEmpty", "k", "v", "x", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    if (*c.before) Spit(folder / c.name, c.before);
    EXPECT_EQ(updateBaseFieldWithInfoFile(c.value, c.field, "k", "7", folder.Path(c.name)), 0);
    EXPECT_EQ(Slurp(folder / c.name), c.after);
  }
}

// A file is written back in the encoding it was read in: UTF-16 in its byte
// order with pairs kept, and a file without a mark as the "ANSI" setting
// read it (as file_lines_test.cpp reads them). The host hears once when
// Windows-1252 was used on valid UTF-8.
TEST_F(FileUpdateTest, KeepsTheEncodingTheFileWasReadIn) {
  const struct { const char* name; AnsiText ansi; std::string before, after; bool remark = false; } cases[] = {
      {"UTF16LittleEndian", AnsiText::kWindows1252, "\xFF\xFEk\0\t\0v\0\t\0q\0\r\0" "7\0\t\0n\0\t\0" "5\0\r\0"s,
       "\xFF\xFEk\0\t\0v\0\t\0q\0\r\0" "7\0\t\0\xC4\0\x22\x6F\x3D\xD8\x00\xDE\t\0\r\0"s},
      {"UTF16BigEndian", AnsiText::kUTF8WhereValid, "\xFE\xFF\0k\0\t\0v\0\t\0q\0\r\0" "7\0\t\0n\0\t\0" "5\0\r"s,
       "\xFE\xFF\0k\0\t\0v\0\t\0q\0\r\0" "7\0\t\0\xC4\x6F\x22\xD8\x3D\xDE\x00\0\t\0\r"s},
      {"Windows1252", AnsiText::kWindows1252, "k\tv\tq\n7\tn\xE9\t5\n", "k\tv\tq\r7\t\xC4??\t\r"},
      {"ValidUTF8ReadAsWindows1252", AnsiText::kWindows1252, "k\tv\tq\n7\tn\xC3\xA9\t5\n", "k\tv\tq\r7\t\xC4??\t\r",
       true},
      {"ValidUTF8ReadAsUTF8", AnsiText::kUTF8WhereValid, "k\tv\tq\n7\tn\xC3\xA9\t5\n", "k\tv\tq\r7\t" VALUE "\t\r"},
      {"Windows1252WhereUTF8IsValid", AnsiText::kUTF8WhereValid, "k\tv\tq\n7\tn\xE9\t5\n", "k\tv\tq\r7\t\xC4??\t\r"},
      {"AsciiIsUTF8WhereValid", AnsiText::kUTF8WhereValid, "k\tv\tq\n7\tn\t5\n", "k\tv\tq\r7\t" VALUE "\t\r"},
      {"AsciiIsWindows1252", AnsiText::kWindows1252, "k\tv\tq\n7\tn\t5\n", "k\tv\tq\r7\t\xC4??\t\r"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    host.ansi = c.ansi;
    host.remarks.clear();
    Spit(folder / c.name, c.before);
    updateBaseFieldWithInfoFile(WideString(VALUE), "v", "k", "7", folder.Path(c.name));
    EXPECT_EQ(Slurp(folder / c.name), c.after);
    EXPECT_EQ(host.remarks, std::vector<std::string>(c.remark, (folder / c.name).string()));
  }
  EXPECT_EQ(host.alerts, std::vector<std::string>{});
}

// A read that fails part way, after the file's first bytes, leaves the file
// on disk neither replaced nor emptied.
TEST_F(FileUpdateTest, LeavesAFileItCouldNotReadAlone) {
  const std::string before = "id\tname\tqty\r7\tnut\t5\r8\tbolt\t2\r";
  Spit(folder / "data.txt", before);
  test::MemoryFileHost failing("id\tname\tqty\r7\tnut", 1 << 16, /*good=*/true, /*failsAtEnd=*/true);
  updateBaseFieldWithInfoFile(WideString("x"), "name", "id", "7", folder.Path("data.txt"));
  EXPECT_EQ(failing.alerts, std::vector<std::string>{"Could not update the file " + (folder / "data.txt").string() +
                                                     ": it could not be read."});
  EXPECT_EQ(Slurp(folder / "data.txt"), before);
  EXPECT_EQ(folder.EntryCount(), 2u);  // with its lock file, no temporary file
}

TEST_F(FileUpdateTest, GivesUpWhenAnotherUpdateHoldsTheLockTooLong) {
  const std::string before = "id\tname\tqty\r7\tnut\t5\r";
  Spit(folder / "data.txt", before);
  host.fileLockWait = std::chrono::milliseconds(50);
  const host::FileLockAttempt elsewhere = host.LockFileForUpdate(folder.Path("data.txt"), host.fileLockWait);
  ASSERT_NE(elsewhere.lock, nullptr);
  updateBaseFieldWithInfoFile(WideString("x"), "name", "id", "7", folder.Path("data.txt"));
  EXPECT_EQ(host.alerts, std::vector<std::string>{"Could not update the file " + (folder / "data.txt").string() +
                                                  ": another update of it did not end in time."});
  EXPECT_EQ(Slurp(folder / "data.txt"), before);
}

// Processes and threads update different records of one file at once: every
// value arrives.
TEST_F(FileUpdateTest, UpdatesAtOnceNeverLoseEachOther) {
  constexpr int kProcesses = 6, kThreads = 6, kRecords = 60;
  std::string table = "id\tname\tqty\r", want = table;
  for (int id = 0; id < kRecords; ++id) {
    table += std::to_string(id) + "\tn\t1\r";
    want += std::to_string(id) + "\tv" + std::to_string(id) + "\t\r";
  }
  Spit(folder / "data.txt", table);
  // Worker w updates records w, w + workers, ...
  const auto work = [path = folder.Path("data.txt")](int worker) {
    for (int id = worker; id < kRecords; id += kProcesses + kThreads) {
      const std::string key = std::to_string(id);
      updateBaseFieldWithInfoFile(WideString("v" + key), "name", "id", PMString(key), path);
    }
  };
  std::vector<pid_t> children;
  for (int p = 0; p < kProcesses; ++p) {  // before any thread exists
    const pid_t child = ::fork();
    if (child == 0) {
      work(p);
      ::_exit(0);
    }
    children.push_back(child);
  }
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) threads.emplace_back(work, kProcesses + t);
  for (std::thread& thread : threads) thread.join();
  for (const pid_t child : children) {
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(Slurp(folder / "data.txt"), want);
  EXPECT_EQ(host.alerts, std::vector<std::string>{});
}

}  // namespace
}  // namespace talp
