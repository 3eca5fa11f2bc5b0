// Feeds arbitrary bytes as a data file through loading, the record
// operations and saving of the "File" source, under both "ANSI" settings.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "sources/file/file_base.h"
#include "sources/file/file_data.h"
#include "talp/host_services.h"

namespace {

// Alerts (a file under 3 bytes) are expected; they must not flood the output.
class QuietHost : public talp::host::PlatformHostServices {
 public:
  void InformationAlert(const PMString&) override {}
  talp::host::AnsiText Ansi() const override { return ansi; }
  talp::host::AnsiText ansi = talp::host::AnsiText::kWindows1252;
};

std::string TempPath() {
  static const std::string path = "/tmp/talp-file-fuzz-" + std::to_string(::getpid());
  return path;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static QuietHost host;
  static talp::host::ScopedHostServices scope(host);
  const std::string path = TempPath();
  const PMString filePath(path);
  for (const auto ansi : {talp::host::AnsiText::kWindows1252, talp::host::AnsiText::kUTF8WhereValid}) {
    host.ansi = ansi;
    if (std::FILE* file = std::fopen(path.c_str(), "wb")) {
      std::fwrite(data, 1, size, file);
      std::fclose(file);
    }
    WideString table;
    talp::GetFileData(filePath, table);
    WideString result;
    talp::fetchRecordLoopFile(filePath, PMString("where a LIKE '%b%'"), result);
    talp::fetchColumnListFile(filePath, result);
    talp::fetchSpecificRecordFile(filePath, PMString("id"), PMString("1"), WideString("a\tb"), result);
    talp::updateBaseFieldWithInfoFile(WideString("x\r\ny"), PMString("name"), PMString("id"), PMString("1"),
                                      filePath);
  }
  std::remove(path.c_str());
  std::remove(("/tmp/.talp-file-fuzz-" + std::to_string(::getpid()) + ".talp-lock").c_str());
  return 0;
}
