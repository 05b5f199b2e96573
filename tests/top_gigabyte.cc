// Keeps the last gigabyte of addresses unused on 32-bit Arm. The address sanitizer's
// runtime takes it for the kernel's, but an emulator hands it out once all memory below
// has been used.
#include <stdio.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// Maps it for good, with the page below, as the runtime also asks about the first
// address behind a block. The system call bypasses the runtime, which would refuse the
// mapping.
__attribute__((constructor)) void takeTopGigabyte() {
  constexpr unsigned long kStart = 0xBFFFF000,
                          kEnd = 0xFFFF0000;  // the exception vectors follow
  const long at = syscall(SYS_mmap2, kStart, kEnd - kStart, PROT_NONE,
                          MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
  if (static_cast<unsigned long>(at) != kStart) perror("the last gigabyte is in use");
}

}  // namespace
