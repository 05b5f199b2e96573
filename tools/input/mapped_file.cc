// Maps files and survives their becoming shorter.
#include "input/mapped_file.h"

#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>

namespace zelm_tool {
namespace {

// Where files are mapped, for the signal handler. No more are open at the same time.
struct Place {
  std::atomic<char*> start{nullptr};
  std::atomic<size_t> size{0};
};
Place places[2];

// Access to a page that the file no longer has. The pages from there on become zeros of
// the program's own, and the access is tried again.
void onBusError(int number, siginfo_t* info, void*) {
  const char* at = static_cast<const char*>(info->si_addr);
  for (const Place& place : places) {
    char* start = place.start;
    const size_t size = place.size;
    if (start == nullptr || at < start || at >= start + size) continue;
    const size_t pageSize = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t page = static_cast<size_t>(at - start) / pageSize * pageSize;
    void* zeros = mmap(start + page, size - page, PROT_READ,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
    if (zeros != MAP_FAILED) return;
  }
  signal(number, SIG_DFL);
}

void surviveBusErrors() {
  struct sigaction action = {};
  action.sa_sigaction = onBusError;
  action.sa_flags = SA_SIGINFO;
  sigemptyset(&action.sa_mask);
  sigaction(SIGBUS, &action, nullptr);
}

}  // namespace

MappedFile::MappedFile(int descriptor) : descriptor_(descriptor) {
  if (descriptor < 0) return;  // and errno still says why
  struct stat status;
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return;
  if (status.st_size <= 0 || static_cast<uint64_t>(status.st_size) > SIZE_MAX / 2)
    return;
  Place* place = nullptr;
  for (Place& free : places) {
    if (free.start == nullptr) place = &free;
  }
  if (place == nullptr) return;
  const size_t size = static_cast<size_t>(status.st_size);
  void* data = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
  if (data == MAP_FAILED) return;
  madvise(data, size, MADV_SEQUENTIAL);
  surviveBusErrors();
  data_ = static_cast<const uint8_t*>(data);
  size_ = size;
  place->size = size;
  place->start = static_cast<char*>(data);
}

MappedFile::~MappedFile() {
  if (data_ == nullptr) return;
  for (Place& place : places) {
    if (place.start == reinterpret_cast<const char*>(data_)) place.start = nullptr;
  }
  munmap(const_cast<uint8_t*>(data_), size_);
}

bool MappedFile::hasLost() const {
  struct stat status;
  return fstat(descriptor_, &status) != 0 ||
         static_cast<uint64_t>(status.st_size) < size_;
}

}  // namespace zelm_tool
