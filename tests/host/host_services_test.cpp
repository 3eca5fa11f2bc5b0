#include "talp/host_services.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "temp_folder.h"
#include "test_host.h"

namespace talp::host {
namespace {

namespace fs = std::filesystem;
using test::Slurp;
using test::Spit;
using test::TempFolder;

// An uncommitted write leaves the original; a commit replaces it, keeping its
// permissions; neither leaves a temporary file behind. Missing files and
// folders read as nothing.
TEST(PlatformFiles, OnlyCommitReplacesTheFileAndReadsBackWhole) {
  TempFolder folder;
  const fs::path target = folder / "data.txt";
  Spit(target, "old");
  ::chmod(target.c_str(), 0640);
  PlatformHostServices host;
  auto stream = host.OpenFileWrite(PMString(target.string()), 0, 0);
  ASSERT_NE(stream, nullptr);
  stream->Write("half", 4);
  stream = host.OpenFileWrite(PMString(target.string()), FourCharCode("TEXT"), FourCharCode("TEXT"));
  ASSERT_TRUE(stream->Write("new\rdata\0\xFF", 10));
  EXPECT_EQ(Slurp(target), "old");
  ASSERT_TRUE(stream->Commit());
  stream.reset();
  EXPECT_EQ(Slurp(target), std::string("new\rdata\0\xFF", 10));
  EXPECT_EQ(ReadWholeFile(PMString(target.string())), Slurp(target));
  struct stat info {};
  ASSERT_EQ(::stat(target.c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0640u);
  EXPECT_EQ(folder.EntryCount(), 1u);
  EXPECT_EQ(ReadWholeFile(PMString((folder / "missing").string())), std::nullopt);
  EXPECT_EQ(ReadWholeFile(PMString((folder / "").string())), std::nullopt);  // a folder is no file
  EXPECT_EQ(host.OpenFileWrite(PMString((folder / "no/such/dir/f").string()), 0, 0), nullptr);
}

TEST(PlatformAlert, OneLinePerAlertOnStandardError) {
  PlatformHostServices host;
  testing::internal::CaptureStderr();
  host.InformationAlert(PMString("Timeout"));
  host.InformationAlert(PMString("two\r\nlines"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "alert: Timeout\nalert: two  lines\n");
}

TEST(HostServicesScope, InstallsAndRestores) {
  HostServices* before = &Host();
  {
    test::TestHost host;
    EXPECT_EQ(&Host(), &host);
    CAlert::InformationAlert(PMString("NOT CONNECTED TO BASE"));
    EXPECT_EQ(host.alerts, std::vector<std::string>{"NOT CONNECTED TO BASE"});
  }
  EXPECT_EQ(&Host(), before);
}

TEST(PlatformExit, ReallyEndsTheProcess) {
  EXPECT_EXIT(
      {
        PlatformHostServices host;
        ScopedHostServices scope(host);
        EndProcess(3);
      },
      testing::ExitedWithCode(3), "");
}

TEST(ScriptArguments, SaveAndRestoreBracketARun) {
  ScriptArgumentStore store;
  store.Set(PMString("DataQuery"), PMString("before"));
  store.Save();
  store.ClearAll();
  store.Set(PMString("DataQuery"), PMString("during"));
  EXPECT_EQ(store.Get(PMString("DataQuery")).GrabCString(), "during");
  EXPECT_TRUE(store.Get(PMString("HeaderData")).IsEmpty());
  store.Restore();
  EXPECT_EQ(store.Get(PMString("DataQuery")).GrabCString(), "before");
}

}  // namespace
}  // namespace talp::host
