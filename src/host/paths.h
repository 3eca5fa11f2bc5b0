// Splitting a POSIX path into its folder and its name.
#pragma once

#include <string>

namespace talp::host {

// The folder that holds path: "." for a bare name, "/" for a name at the root.
inline std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

// The last component of path.
inline std::string NameOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A hidden file beside path: ".NAME" followed by suffix, in path's folder.
inline std::string HiddenSibling(const std::string& path, const std::string& suffix) {
  return FolderOf(path) + "/." + NameOf(path) + suffix;
}

}  // namespace talp::host
