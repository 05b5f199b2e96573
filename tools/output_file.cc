// Writes files under a temporary name and handles interrupting signals.
#include "output_file.h"

#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>

#include "failure.h"

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

mode_t newFileMode() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

}  // namespace

OutputFile::OutputFile(const std::string& path)
    : name_(path == "-" ? "standard output" : path) {
  if (path == "-") {
    file_ = stdout;
    return;
  }
  struct stat status;
  const bool exists = stat(path.c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) {
    file_ = fopen(path.c_str(), "wb");
    if (file_ == nullptr) failWriting();
    return;
  }
  if (exists && access(path.c_str(), W_OK) != 0) failWriting();
  target_ = resolved(path);
  openBeside();
  fchmod(fileno(file_), exists ? status.st_mode & 07777 : newFileMode());
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
  file_ = fdopen(descriptor, "wb");
  if (file_ == nullptr) failWriting();
}

OutputFile::~OutputFile() {
  if (file_ != nullptr && file_ != stdout) fclose(file_);
  if (!temporary_.empty()) {
    unlink(temporary_.c_str());
    haveUnfinished = 0;
  }
}

void OutputFile::write(const void* data, size_t count) {
  if (fwrite(data, 1, count, file_) != count) failWriting();
}

void OutputFile::commit() {
  if (file_ == stdout) {
    if (fflush(stdout) != 0) failWriting();
    return;
  }
  FILE* file = file_;
  file_ = nullptr;
  if (fclose(file) != 0) failWriting();
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
  struct sigaction action = {};
  action.sa_handler = onSignal;
  action.sa_flags = SA_RESETHAND;
  sigemptyset(&action.sa_mask);
  for (int number : {SIGINT, SIGTERM, SIGHUP}) {
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
