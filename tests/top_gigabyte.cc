// 32-bit Arm under the address sanitizer: its runtime takes the last gigabyte for the
// kernel's, but an emulator hands it out once all that lies below has been used.
#include <stdio.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Taken away from mmap() for good, with a page below, as the runtime also asks about
// the first address behind a block. Called past the runtime, which would refuse it.
__attribute__((constructor)) void takeTopGigabyte() {
  constexpr unsigned long kStart = 0xBFFFF000, kEnd = 0xFFFF0000;  // vectors follow
  const long at = syscall(SYS_mmap2, kStart, kEnd - kStart, PROT_NONE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
  if (static_cast<unsigned long>(at) != kStart) perror("the last gigabyte is in use");
}

}  // namespace
