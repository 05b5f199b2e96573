// Reads files of any bytes with the program's readers. The result is frames that hold
// the bytes of the file or one kind of exception, and no more memory is taken than a
// frame needs or the file has bytes.
#include <sanitizer/allocator_interface.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "failure.h"
#include "finding.h"
#include "frame_reader.h"
#include "input.h"

namespace {

using fuzz::check;
using zelm_tool::FrameReader;

constexpr size_t kPiece = size_t{4} << 20;   // what a reader may allocate in advance
constexpr size_t kBeside = size_t{1} << 17;  // names, messages, file buffers
size_t largest;                              // request for memory

void noteRequest(const volatile void*, size_t size) {
  if (size > largest) largest = size;
}

const char* const kSizes[] = {"2x2", "8x4", "6x10", "34x2", "65534x65534", "3x4", ""};
const char* const kFroms[] = {"nv12",  "nv21",   "yuv420p", "yv12", "uyvy422", "rgb565",
                              "tiled", "bgr565", "y4m",     "nv16", "",        "gray"};

zelm_tool::InputOptions options(fuzz::Input* input) {
  zelm_tool::InputOptions in;
  in.size = kSizes[input->below(7)];
  in.from = kFroms[input->below(12)];
  const int kind = input->byte();
  if (kind % 4 == 1) in.stride = kind % 8 == 1 ? input->word() : input->byte();
  if (kind % 16 == 2) in.skip = kind == 2 ? UINT64_MAX : input->byte();
  if (kind % 16 == 3) in.frames = 1u + input->byte();
  if (kind % 16 == 6) in.size = std::string(kSizes[input->below(3)], 2) + "2";
  if (kind % 2 == 0) in.from = in.size = "";  // as for most Y4M streams
  return in;
}

void readAll(const zelm_tool::InputOptions& in, const uint8_t* bytes, size_t size) {
  FrameReader reader(in);
  const uint64_t frameBytes = zelm_tool::fileBytes(reader.format(), reader.size());
  const bool plain = !reader.y4m() && in.stride == 0 &&
                     reader.format().order == zelm_tool::Order::kAsLibrary;
  if (reader.y4m()) {
    const std::string line = zelm_tool::formatY4mHeader(*reader.y4m());
    zelm_tool::Y4mHeader again = zelm_tool::parseY4mHeader("again", line);
    check(again.size == reader.size() && again.tags == reader.y4m()->tags,
          "a header read, written and read differs");
    zelm_tool::turnAspect(&again);
  }
  uint64_t frames = 0;
  while (zelm_tool::Frame* frame = reader.next()) {
    const uint64_t start = (in.skip + frames++) * frameBytes;
    check(start + frameBytes <= size || in.stride != 0, "more than the file holds");
    check(!plain || memcmp(frame->data(), bytes + start, frameBytes) == 0,
          "other bytes than the file's");
    check(largest <= frame->bytes() + kBeside, "more memory than a frame");
  }
  check(frames > 0, "no frame and no message");
  check(in.frames == 0 || frames <= in.frames, "too many frames");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __sanitizer_install_malloc_and_free_hooks(noteRequest, [](const volatile void*) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static const int file = memfd_create("input", 0);
  fuzz::Input input(bytes, size);
  zelm_tool::InputOptions in = options(&input);
  in.path = "/proc/self/fd/" + std::to_string(file);
  if (ftruncate(file, 0) != 0 || lseek(file, 0, SEEK_SET) != 0 ||
      write(file, input.rest(), input.left()) != static_cast<ssize_t>(input.left())) {
    abort();
  }
  largest = 0;
  try {
    readAll(in, input.rest(), input.left());
  } catch (const zelm_tool::Failure& failure) {
    check(failure.what()[0] != '\0', "an empty message");
  }
  check(largest <= input.left() + kPiece + kBeside, "more memory than arrived");
  return 0;
}
