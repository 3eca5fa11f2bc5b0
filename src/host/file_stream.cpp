// POSIX file streams of the platform host. Writers replace their target
// atomically: a temporary file beside it, flushed, then renamed over it.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <string>

#include "host/paths.h"
#include "host/unique_fd.h"
#include "talp/host_services.h"

namespace talp::host {
namespace {

class PosixReadStream : public FileReadStream {
 public:
  explicit PosixReadStream(UniqueFd fd) : fd_(std::move(fd)) {}

  bool IsGood() const override { return fd_.IsValid() && !failed_; }

  std::int64_t Size() const override {
    struct stat info {};
    return ::fstat(fd_.Get(), &info) == 0 ? static_cast<std::int64_t>(info.st_size) : -1;
  }

  bool Seek(std::int64_t offset) override { return ::lseek(fd_.Get(), offset, SEEK_SET) == offset; }

  std::size_t Read(void* buffer, std::size_t n) override {
    std::size_t total = 0;
    auto* bytes = static_cast<char*>(buffer);
    while (total < n) {
      const ssize_t got = ::read(fd_.Get(), bytes + total, n - total);
      if (got < 0 && errno == EINTR) continue;
      failed_ = failed_ || got < 0;
      if (got <= 0) break;
      total += static_cast<std::size_t>(got);
    }
    return total;
  }

 private:
  UniqueFd fd_;
  bool failed_ = false;
};

std::string CodeText(std::uint32_t code) {
  return {static_cast<char>(code >> 24), static_cast<char>(code >> 16), static_cast<char>(code >> 8),
          static_cast<char>(code)};
}

class AtomicWriteStream : public FileWriteStream {
 public:
  AtomicWriteStream(std::string target, std::string temporary, UniqueFd fd, std::uint32_t fileType,
                    std::uint32_t creator)
      : target_(std::move(target)), temporary_(std::move(temporary)), fd_(std::move(fd)), fileType_(fileType),
        creator_(creator) {}

  ~AtomicWriteStream() override {
    if (!committed_) ::unlink(temporary_.c_str());
  }

  bool Write(const void* data, std::size_t n) override {
    const auto* bytes = static_cast<const char*>(data);
    while (ok_ && n > 0) {
      const ssize_t put = ::write(fd_.Get(), bytes, n);
      if (put < 0 && errno == EINTR) continue;
      if (put <= 0) {
        ok_ = false;
        break;
      }
      bytes += put;
      n -= static_cast<std::size_t>(put);
    }
    return ok_;
  }

  bool Commit() override {
    if (committed_ || !ok_) return false;
    KeepPermissions();
    // Type and creator codes are a convenience; a file system without
    // extended attributes still gets the file.
    const std::string type = CodeText(fileType_), creator = CodeText(creator_);
    ::fsetxattr(fd_.Get(), "user.filetype", type.data(), type.size(), 0);
    ::fsetxattr(fd_.Get(), "user.creator", creator.data(), creator.size(), 0);
    if (::fsync(fd_.Get()) != 0 || !fd_.Close()) return false;
    if (::rename(temporary_.c_str(), target_.c_str()) != 0) return false;
    committed_ = true;
    UniqueFd folder(::open(FolderOf(target_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.IsValid()) ::fsync(folder.Get());
    return true;
  }

 private:
  // A new file keeps the mode the kernel gave the temporary file, the
  // process's umask applied to 0666.
  void KeepPermissions() {
    struct stat info {};
    if (::stat(target_.c_str(), &info) == 0) ::fchmod(fd_.Get(), info.st_mode & 07777);
  }

  std::string target_;
  std::string temporary_;
  UniqueFd fd_;
  std::uint32_t fileType_;
  std::uint32_t creator_;
  bool ok_ = true;
  bool committed_ = false;
};

}  // namespace

std::unique_ptr<FileReadStream> PlatformHostServices::OpenFileRead(const PMString& path) {
  UniqueFd fd(::open(path.GrabCString().c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.IsValid()) return nullptr;
  struct stat info {};
  if (::fstat(fd.Get(), &info) != 0 || S_ISDIR(info.st_mode)) return nullptr;
  return std::make_unique<PosixReadStream>(std::move(fd));
}

std::unique_ptr<FileWriteStream> PlatformHostServices::OpenFileWrite(const PMString& path, std::uint32_t fileType,
                                                                     std::uint32_t creator) {
  const std::string target = path.GrabCString();
  if (target.empty()) return nullptr;
  // Created with mode 0666 for the kernel to apply the umask: reading the
  // umask means setting it, which would change it for every thread at once.
  static constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
  thread_local std::mt19937_64 random{std::random_device{}()};
  for (int attempt = 0; attempt < 100; ++attempt) {
    std::string suffix = ".talp-";
    for (int i = 0; i < 8; ++i) suffix += kLetters[random() % (sizeof kLetters - 1)];
    std::string temporary = HiddenSibling(target, suffix);
    UniqueFd fd(::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (fd.IsValid()) {
      return std::make_unique<AtomicWriteStream>(target, std::move(temporary), std::move(fd), fileType, creator);
    }
    if (errno != EEXIST) return nullptr;
  }
  return nullptr;
}

bool PlatformHostServices::FileExists(const PMString& path) {
  struct stat info {};
  return ::lstat(path.GrabCString().c_str(), &info) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

}  // namespace talp::host
