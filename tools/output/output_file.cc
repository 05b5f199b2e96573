// Writes files under a temporary name and handles interrupting signals.
#include "output/output_file.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "failure.h"
#include "pipe.h"

namespace zelm_tool {
namespace {

// The name that the signal handler removes.
char unfinished[PATH_MAX];
volatile sig_atomic_t haveUnfinished = 0;

void onSignal(int number) {
  if (haveUnfinished) unlink(unfinished);
  raise(number);  // the default action, since SA_RESETHAND is set
}

// The file that a symbolic link stands for, so that the link itself survives.
std::string resolved(const std::string& path) {
  char* real = realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string result = real;
  free(real);
  return result;
}

// Of a pipe that somebody has set not to block.
void waitForRoom(int descriptor) {
  pollfd waiting = {descriptor, POLLOUT, 0};
  poll(&waiting, 1, -1);
}

mode_t newFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

OutputFile::OutputFile(const std::string& path, int input)
    : name_(path == "-" ? "standard output" : path), standard_(path == "-") {
  struct stat status;
  const bool exists = !standard_ && stat(path.c_str(), &status) == 0;
  if (standard_ || (exists && !S_ISREG(status.st_mode))) {
    descriptor_ =
        standard_ ? STDOUT_FILENO : open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (descriptor_ < 0) failWriting();
    requireOther(input);
    enlargePipe(descriptor_);
    return;
  }
  if (exists) {
    if (access(path.c_str(), W_OK) != 0) failWriting();
    descriptor_ = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    requireOther(input);
    if (descriptor_ >= 0) close(descriptor_);
  }
  target_ = resolved(path);
  openBeside();
  fchmod(descriptor_, exists ? status.st_mode & 07777 : newFileMode());
}

void OutputFile::requireOther(int input) const {
  struct stat in, out;
  if (input < 0 || fstat(input, &in) != 0 || fstat(descriptor_, &out) != 0) return;
  if (S_ISREG(in.st_mode) && in.st_dev == out.st_dev && in.st_ino == out.st_ino) {
    fail(name_, " is the input as well; write to another name");
  }
}

void OutputFile::openBeside() {
  const size_t slash = target_.rfind('/');
  const std::string folder =
      slash == std::string::npos ? "" : target_.substr(0, slash + 1);
  // A fixed short name: the target's own may already be as long as names can be.
  std::string name = folder + ".zelm-imageutil-XXXXXX";
  if (name.size() >= sizeof unfinished) {
    errno = ENAMETOOLONG;
    failWriting();
  }
  sigset_t all, before;
  sigfillset(&all);
  sigprocmask(SIG_BLOCK, &all, &before);
  const int descriptor = mkostemp(name.data(), O_CLOEXEC);
  const int error = errno;
  if (descriptor >= 0) {
    memcpy(unfinished, name.c_str(), name.size() + 1);
    haveUnfinished = 1;
    temporary_ = name;
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  if (descriptor < 0) failWriting();
  descriptor_ = descriptor;
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0 && !standard_) close(descriptor_);
  if (!temporary_.empty()) {
    unlink(temporary_.c_str());
    haveUnfinished = 0;
  }
}

void OutputFile::write(const void* data, size_t count) {
  const char* from = static_cast<const char*>(data);
  while (count > 0) {
    const ssize_t written = ::write(descriptor_, from, count);
    if (written < 0 && errno == EAGAIN) waitForRoom(descriptor_);
    if (written < 0 && errno != EINTR && errno != EAGAIN) failWriting();
    if (written <= 0) continue;
    from += written;
    count -= static_cast<size_t>(written);
  }
}

void OutputFile::commit() {
  if (standard_) return;
  const int descriptor = descriptor_;
  descriptor_ = -1;
  if (close(descriptor) != 0) failWriting();
  if (temporary_.empty()) return;
  if (rename(temporary_.c_str(), target_.c_str()) != 0) failWriting();
  haveUnfinished = 0;
  temporary_.clear();
}

void OutputFile::failWriting() const {
  fail(name_, ": cannot be written: ", strerror(errno));
}

void installSignalHandlers() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  for (int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    struct sigaction before;
    // What was ignored from the start (nohup, background jobs) stays ignored.
    if (sigaction(number, nullptr, &before) == 0 && before.sa_handler != SIG_IGN) {
      sigaction(number, &action, nullptr);
    }
  }
}

void finishStandardOutput() {
  if (fflush(stdout) != 0 || ferror(stdout)) {
    fail("standard output: cannot be written: ", strerror(errno));
  }
}

}  // namespace zelm_tool
