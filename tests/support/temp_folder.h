// A fresh folder under the system's temporary folder, removed with its
// contents when the object goes away; plus whole-file helpers for tests.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "talp/pm_string.h"

namespace talp::test {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "talp-test-XXXXXX").string();
    path_ = ::mkdtemp(pattern.data());
  }
  ~TempFolder() { std::filesystem::remove_all(path_); }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
  // The path of name in this folder, as the sources take it.
  PMString Path(const std::string& name) const { return PMString((path_ / name).string()); }
  std::size_t EntryCount() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator()));
  }

 private:
  std::filesystem::path path_;
};

inline std::string Slurp(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

inline void Spit(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace talp::test
