// Reads files of any bytes with the program's readers, mapped and through a pipe. The
// result is frames that hold the bytes of the file or one kind of exception, and no
// more memory is taken than a frame needs or the file has bytes.
#include <sanitizer/allocator_interface.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include <string>
#include <vector>

#include "failure.h"
#include "finding.h"
#include "input.h"
#include "input/frame_source.h"

namespace {

using fuzz::check;
using zelm_tool::FrameSource;

using Bytes = std::vector<uint8_t>;

constexpr size_t kPiece = size_t{4} << 20;   // what a reader may allocate in advance
constexpr size_t kBeside = size_t{1} << 17;  // names, messages, windows of inflate
constexpr size_t kExpansion = 1032;          // what inflate makes of a byte
size_t largest;                              // request for memory

void noteRequest(const volatile void*, size_t size) {
  if (size > largest) largest = size;
}

const char* const kSizes[] = {"2x2",  "7x5",         "1x1", "8x4",
                              "16x3", "65535x65535", "3x",  ""};
const char* const kFroms[] = {
    "nv12", "nv21", "yuv420p", "yv12", "uyvy422", "rgb565",  "tiled", "bgr24",
    "y4m",  "nv16", "",        "gray", "RGBA",    "yuv422p", "png",   "ppm"};
const char* const kFrames[] = {"1", "2:1", "0:3", "1:", "18446744073709551615:1",
                               "0", ":"};

// What the first bytes of the input ask for.
struct Case {
  zelm_tool::InputOptions in;
  bool piped;
  bool rightChecksums;
  uint64_t first;  // frame that is wanted
};

Case chooseCase(fuzz::Input* input) {
  Case c = {};
  const int kind = input->byte(), more = input->byte();
  c.piped = kind % 2 == 1;
  c.rightChecksums = kind % 4 >= 2;
  if (kind < 128) {  // as for most streams and pictures
    c.in.size = kSizes[input->below(8)];
    c.in.from = kFroms[input->below(16)];
  }
  if (more % 4 == 1) c.in.stride = more % 8 == 1 ? input->word() : input->byte();
  if (more % 16 == 2) c.first = c.in.skip = more == 2 ? UINT64_MAX : input->byte() % 8;
  if (more % 16 == 3) {
    c.in.frames = kFrames[input->below(7)];
    if (c.in.frames.find(':') != std::string::npos) {
      c.first = strtoull(c.in.frames.c_str(), nullptr, 10);
    }
  }
  if (more % 16 == 6) c.in.colour.range = "limited";
  return c;
}

uint32_t bigEndian(const uint8_t* at) {
  return uint32_t{at[0]} << 24 | at[1] << 16 | at[2] << 8 | at[3];
}

// Gives the chunks of PNGs the checksums of what they hold.
void correctChecksums(Bytes* file) {
  size_t at = 8;
  while (at + 12 <= file->size()) {
    const size_t length = bigEndian(&(*file)[at]);
    if (length > file->size() - at - 12) return;
    uint8_t* const end = &(*file)[at + 8 + length];
    const uLong sum = crc32(0, &(*file)[at + 4], static_cast<uInt>(length) + 4);
    for (int i = 0; i < 4; ++i) end[i] = static_cast<uint8_t>(sum >> (24 - 8 * i));
    at += 12 + length;
    if (memcmp(end - length - 4, "IEND", 4) == 0) at += 8;
  }
}

// Where frame `index` of a raw file or a Y4M stream begins.
size_t startOfFrame(const FrameSource& source, const Bytes& file, uint64_t index) {
  const size_t bytes = source.kind().bytes();
  if (source.y4m() == nullptr) return index * bytes;
  const auto pastLine = [&](size_t from) {
    while (from < file.size() && file[from] != '\n') ++from;
    return from + 1;
  };
  size_t at = pastLine(pastLine(0));
  while (index-- > 0) at = pastLine(at + bytes);
  return at;
}

void readAll(const Case& c, const Bytes& file) {
  const std::unique_ptr<FrameSource> source = zelm_tool::openFrames(c.in);
  const std::string container = source->container();
  const std::optional<uint64_t> count = source->count();
  check(source->firstNumber() >= 1, "a number before the first");
  zelm_tool::Buffer buffer;
  uint64_t frames = 0;
  while (const uint8_t* frame = source->next(&buffer)) {
    const size_t whole = source->kind().bytes(), least = source->kind().leastBytes();
    if (container == "raw" || container == "Y4M") {
      const size_t start = startOfFrame(*source, file, c.first + frames);
      check(start <= file.size() && file.size() - start >= least,
            "more than the file holds");
      const size_t there = std::min(whole, file.size() - start);
      check(memcmp(frame, file.data() + start, there) == 0,
            "other bytes than the file's");
      check(largest <= whole + kBeside, "more memory than a frame");
    } else {
      // Every byte is there and can be read.
      uint32_t sum = 0;
      for (size_t i = 0; i < whole; ++i) sum += frame[i];
      check(sum <= 255 * whole, "no bytes");
    }
    ++frames;
  }
  check(frames > 0, "no frame and no message");
  check(!count || container != "raw" || *count == frames, "another number of frames");
}

// The readers' standard input: a pipe that holds these bytes.
void feedStandardInput(const Bytes& file) {
  int ends[2];
  if (pipe(ends) != 0 ||
      write(ends[1], file.data(), file.size()) != static_cast<ssize_t>(file.size()) ||
      dup2(ends[0], STDIN_FILENO) != STDIN_FILENO) {
    abort();
  }
  close(ends[0]);
  close(ends[1]);
}

std::string fillFile(const Bytes& file) {
  static const int descriptor = memfd_create("input", 0);
  if (ftruncate(descriptor, 0) != 0 || pwrite(descriptor, file.data(), file.size(),
                                              0) != static_cast<ssize_t>(file.size())) {
    abort();
  }
  return "/proc/self/fd/" + std::to_string(descriptor);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  __sanitizer_install_malloc_and_free_hooks(noteRequest, [](const volatile void*) {});
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Input input(bytes, size);
  Case c = chooseCase(&input);
  Bytes file(input.rest(), input.rest() + input.left());
  if (c.rightChecksums) correctChecksums(&file);
  if (c.piped) feedStandardInput(file);
  c.in.path = c.piped ? "-" : fillFile(file);
  largest = 0;
  try {
    readAll(c, file);
  } catch (const zelm_tool::Failure& failure) {
    check(failure.what()[0] != '\0', "an empty message");
  }
  check(largest <= file.size() * kExpansion + kPiece + kBeside,
        "more memory than arrived");
  return 0;
}
