// Update locks of data files on this platform.
//
// A data file is replaced by renaming a new file over it, so a lock on the
// data file itself would stay behind on the old file: an updater that opens
// the path after the rename would lock the new file while the first still
// works on it. The lock therefore lives in a file of its own beside the data
// file, ".NAME.talp-lock", which is never replaced or removed (removing it
// would let a waiter lock a file that later updaters no longer open).
//
// flock locks belong to an open file description, and every attempt opens
// the lock file anew, so two threads of one process exclude each other just
// as two processes do. On NFS, Linux turns flock into a lock on the whole
// file that the server arbitrates, so updates on different clients exclude
// each other too, as long as the file system is mounted with locking.
#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <thread>

#include "host/paths.h"
#include "host/unique_fd.h"
#include "talp/host_services.h"

namespace talp::host {
namespace {

class FlockUpdateLock : public FileUpdateLock {
 public:
  explicit FlockUpdateLock(UniqueFd fd) : fd_(std::move(fd)) {}
  ~FlockUpdateLock() override { ::flock(fd_.Get(), LOCK_UN); }

 private:
  UniqueFd fd_;
};

}  // namespace

FileLockAttempt PlatformHostServices::LockFileForUpdate(const PMString& path, std::chrono::milliseconds wait) {
  using Clock = std::chrono::steady_clock;
  FileLockAttempt attempt;
  const std::string lockPath = HiddenSibling(path.GrabCString(), ".talp-lock");
  UniqueFd fd(::open(lockPath.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
  // A lock file that exists but is not ours to write still locks.
  if (!fd.IsValid() && errno == EACCES) fd.Reset(::open(lockPath.c_str(), O_RDONLY | O_CLOEXEC));
  if (!fd.IsValid()) {
    attempt.failure = std::strerror(errno);
    return attempt;
  }
  // Short naps at first, so that updates in quick succession barely wait.
  const Clock::time_point deadline = Clock::now() + wait;
  auto nap = std::chrono::milliseconds(1);
  for (;;) {
    if (::flock(fd.Get(), LOCK_EX | LOCK_NB) == 0) {
      attempt.lock = std::make_unique<FlockUpdateLock>(std::move(fd));
      return attempt;
    }
    if (errno == EINTR) continue;
    if (errno != EWOULDBLOCK) {
      attempt.failure = std::strerror(errno);
      return attempt;
    }
    const Clock::time_point now = Clock::now();
    if (now >= deadline) {
      attempt.timedOut = true;
      return attempt;
    }
    std::this_thread::sleep_for(std::min<Clock::duration>(nap, deadline - now));
    nap = std::min(nap * 2, std::chrono::milliseconds(50));
  }
}

}  // namespace talp::host
