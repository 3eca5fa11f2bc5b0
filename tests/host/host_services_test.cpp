#include "talp/host_services.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>

#include "temp_folder.h"

// Every umask call of the process passes here, so a test can tell that
// writing a file never changes the umask, which is shared by all threads.
std::atomic<int> umaskCalls{0};
extern "C" mode_t umask(mode_t mask) noexcept {
  ++umaskCalls;
  return static_cast<mode_t>(::syscall(SYS_umask, mask));
}

namespace talp::host {
namespace {

namespace fs = std::filesystem;
using test::Slurp;
using test::Spit;
using test::TempFolder;

// A commit replaces the file, keeping its permissions, and leaves no
// temporary file behind; missing files and folders read as nothing. (That
// only a commit replaces the file, and that a write that fails, or is never
// committed, leaves it and no temporary file, unicode_files_test.cpp shows
// through a full disk; that a file in a missing folder cannot be written,
// too.)
TEST(PlatformFiles, CommitReplacesTheFileAndReadsBackWhole) {
  TempFolder folder;
  const fs::path target = folder / "data.txt";
  Spit(target, "old");
  ::chmod(target.c_str(), 0640);
  PlatformHostServices host;
  auto stream = host.OpenFileWrite(PMString(target.string()), FourCharCode("TEXT"), FourCharCode("TEXT"));
  ASSERT_NE(stream, nullptr);
  ASSERT_TRUE(stream->Write("new\rdata\0\xFF", 10) && stream->Commit());
  stream.reset();
  EXPECT_EQ(Slurp(target), std::string("new\rdata\0\xFF", 10));
  EXPECT_EQ(ReadWholeFile(PMString(target.string())), Slurp(target));
  EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
  EXPECT_EQ(folder.EntryCount(), 1u);
  EXPECT_EQ(ReadWholeFile(PMString((folder / "missing").string())), std::nullopt);
  EXPECT_EQ(ReadWholeFile(PMString((folder / "").string())), std::nullopt);  // a folder is no file
}

TEST(PlatformFiles, NewFilesTakeTheUmaskWithoutTouchingIt) {
  TempFolder folder;
  const auto previous = static_cast<mode_t>(::syscall(SYS_umask, 027));
  umaskCalls = 0;
  PlatformHostServices host;
  auto stream = host.OpenFileWrite(PMString((folder / "new.txt").string()), 0, 0);
  ASSERT_NE(stream, nullptr);
  EXPECT_TRUE(stream->Write("x", 1) && stream->Commit());
  ::syscall(SYS_umask, previous);
  EXPECT_EQ(umaskCalls, 0);
  EXPECT_EQ(fs::status(folder / "new.txt").permissions(), fs::perms(0640));
}

// The lock lives in a hidden file beside the data file, which a replacement
// of the data file leaves alone and other programs can lock too. (Waiting for
// another holder, the File source's update tests show.)
TEST(PlatformFiles, UpdateLockLivesBesideTheDataFile) {
  TempFolder folder;
  PlatformHostServices host;
  const FileLockAttempt lock = host.LockFileForUpdate(folder.Path("data.txt"), std::chrono::milliseconds(0));
  ASSERT_NE(lock.lock, nullptr);
  EXPECT_TRUE(fs::exists(folder / ".data.txt.talp-lock"));
}

TEST(PlatformAlert, OneLinePerAlertOnStandardError) {
  PlatformHostServices host;
  testing::internal::CaptureStderr();
  host.InformationAlert(PMString("Timeout"));
  host.InformationAlert(PMString("two\r\nlines"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "alert: Timeout\nalert: two  lines\n");
}

}  // namespace
}  // namespace talp::host
