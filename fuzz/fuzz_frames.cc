// Conversions of frames: valid ones, ones with damaged records, and frames that lie in
// each other's way.
#include <string.h>

#include <algorithm>

#include "content.h"
#include "finding.h"
#include "frames_comparison.h"
#include "frames_reference.h"
#include "memory.h"

namespace {

using frames_reference::Extent;
using frames_reference::extentOf;
using frames_reference::formatOf;
using frames_test::Case;
using frames_test::Comparison;
using frames_test::Layout;

constexpr size_t kLargest = size_t{1} << 16;

// Makes the bands from the last to the first.
int inBands(const ZelmFrame& dst, const ZelmFrame& src, const ZelmEdit& edit) {
  ZelmPlan* plan = nullptr;
  int code = zelmPlanCreate(&plan, &dst, &src, &edit, nullptr);
  for (int b = zelmPlanBands(plan); code == ZELM_OK && b-- > 0;) {
    code = zelmPlanRunBand(plan, b, &dst, &src);
  }
  zelmPlanDestroy(plan);
  return code;
}

void compare(const Case& c, fuzz::Input* input) {
  const int ways = input->byte();
  const size_t lead = static_cast<size_t>(input->below(64));
  Comparison comparison(c, [input](uint8_t* bytes, size_t size, size_t) {
    fuzz::fill(bytes, size, input);
  });
  using Guard = Comparison::Guard;
  const harness::Text wrong =
      comparison.run(ways & 1 ? inBands : frames_test::convertAtOnce,
                     ways & 2 ? Guard::kBefore : Guard::kBehind, lead);
  fuzz::check(wrong.empty(), wrong.characters());
}

// Any number, and those that are nearly right.
uint32_t anyNumber(uint32_t now, fuzz::Input* input) {
  switch (input->below(4)) {
    case 0:
      return input->word();
    case 1:
      return now + static_cast<uint32_t>(input->below(5)) - 2;
    case 2:
      return static_cast<uint32_t>(input->below(20));
    default:
      return static_cast<uint32_t>(input->word() >> input->below(32));
  }
}

void damage(Case* c, fuzz::Input* input) {
  ZelmFrame& f = input->below(2) == 0 ? c->dst.frame : c->src.frame;
  ZelmRegion& r = input->below(2) == 0 ? c->edit.destination : c->edit.source;
  ZelmPlane& plane = f.planes[input->below(3)];
  uint32_t* const numbers[] = {&f.format,
                               &f.width,
                               &f.height,
                               &f.colour,
                               &r.x,
                               &r.y,
                               &r.width,
                               &r.height,
                               &c->edit.lumaFilter,
                               &c->edit.turn,
                               &c->edit.mirror,
                               &c->edit.chromaFilter};
  const int which = input->below(16);
  if (which < 12) {
    *numbers[which] = anyNumber(*numbers[which], input);
    return;
  }
  const uint32_t low = anyNumber(static_cast<uint32_t>(plane.stride), input);
  const uint64_t wide = input->below(2) == 0
                            ? uint64_t{input->word()} << 32 | low
                            : static_cast<uint64_t>(int64_t{static_cast<int32_t>(low)});
  if (which == 12) plane.size = static_cast<size_t>(wide);
  if (which == 13) plane.step = static_cast<int32_t>(low);
  if (which > 13) plane.stride = static_cast<ptrdiff_t>(wide);
}

// Gives every plane of a frame that the library takes memory of its own. Returns false
// if that is a lot.
bool layOutAnew(Layout* layout) {
  const ZelmFrame& f = layout->frame;
  layout->blocks = formatOf(f.format).planes;
  for (int p = 0; p < layout->blocks; ++p) {
    const ZelmPlane& plane = f.planes[p];
    const bool stepped = p > 0 && formatOf(f.format).separate && plane.step == 2;
    const Extent e = extentOf(f.format, f.width, f.height, p, stepped ? 2 : 0);
    size_t above = 0;
    if (e.rows > 1) {
      const size_t stride =
          static_cast<size_t>(plane.stride < 0 ? -plane.stride : plane.stride);
      fuzz::check(stride >= e.rowBytes, "rows that overlap were accepted");
      if (stride > kLargest || e.rows > kLargest) return false;
      above = (e.rows - 1) * stride;
      layout->rows[p] = stride;
    } else {
      layout->rows[p] = e.rowBytes;
    }
    layout->bytes[p] = above + e.rowBytes;
    fuzz::check(plane.size == 0 || plane.size >= layout->bytes[p],
                "a plane that is too small was accepted");
    if (layout->bytes[p] > kLargest) return false;
    layout->places[p] = {p, plane.stride < 0 ? above : 0};
  }
  return true;
}

// Planning looks at addresses but not at what is there.
int planAnywhere(const Case& c) {
  uint8_t* memory[6];
  for (size_t i = 0; i < 6; ++i) {
    const uintptr_t spacing = (UINTPTR_MAX >> 1) / 8;
    memory[i] = reinterpret_cast<uint8_t*>((i + 1) * spacing);
  }
  ZelmFrame dst = c.dst.frame, src = c.src.frame;
  for (size_t p = 0; p < 3; ++p) {
    dst.planes[p].data = memory[p];
    src.planes[p].data = memory[3 + p];
  }
  ZelmMessage message;
  memset(&message, 0xEE, sizeof message);
  ZelmPlan* plan = nullptr;
  const int code = zelmPlanCreate(&plan, &dst, &src, &c.edit, &message);
  fuzz::check(memchr(message.text, 0, sizeof message.text) != nullptr,
              "a message without end");
  fuzz::check((message.text[0] == 0) == (code == ZELM_OK), "a message without reason");
  fuzz::check((plan != nullptr) == (code == ZELM_OK), "a plan in spite of an error");
  zelmPlanDestroy(plan);
  return code;
}

// Both frames in one piece of memory, the source anywhere. What the library accepts has
// to give what separate frames give.
void inOnePiece(const Case& c, fuzz::Input* input) {
  size_t starts[3], all = 0, sourceStarts[3];
  for (int b = 0; b < c.dst.blocks; ++b) {
    starts[b] = all + static_cast<size_t>(input->below(40));
    all = starts[b] + c.dst.bytes[b];
  }
  bool apart = true;
  const size_t end = all;
  for (int b = 0; b < c.src.blocks; ++b) {
    sourceStarts[b] = input->word() % (end + 10);
    apart = apart && sourceStarts[b] >= end;
    all = std::max(all, sourceStarts[b] + c.src.bytes[b]);
  }
  static GuardedBuffer buffer;
  uint8_t* const memory = buffer.place(all, GuardedBuffer::Guard::kBehind);
  fuzz::fill(memory, all, input);
  const std::vector<uint8_t> before(memory, memory + all);
  std::vector<uint8_t> read = before, expected = before;
  const auto at = [](const Layout& layout, uint8_t* base, const size_t* offsets) {
    uint8_t* blocks[3] = {};
    for (int b = 0; b < layout.blocks; ++b) blocks[b] = base + offsets[b];
    return layout.at(blocks);
  };
  const int code = frames_test::convertAtOnce(at(c.dst, memory, starts),
                                              at(c.src, memory, sourceStarts), c.edit);
  if (code == ZELM_OVERLAP) {
    fuzz::check(!apart, "frames that lie apart were refused");
  } else if (code == ZELM_OK) {
    frames_reference::convert(at(c.dst, expected.data(), starts),
                              at(c.src, read.data(), sourceStarts), c.edit);
  } else {
    fuzz::finding("another code than that of overlapping frames");
  }
  if (memcmp(memory, expected.data(), all) == 0) return;
  fuzz::finding(describe(c).characters());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Input input(bytes, size);
  const int kind = input.byte();
  Case c = frames_test::anyCase([&input](int limit) { return input.below(limit); });
  switch (kind % 4) {
    case 0:
      inOnePiece(c, &input);
      break;
    case 1:
      for (int i = kind / 4 % 4; i >= 0; --i) damage(&c, &input);
      if (planAnywhere(c) != ZELM_OK) break;
      if (layOutAnew(&c.dst) && layOutAnew(&c.src)) compare(c, &input);
      break;
    default:
      compare(c, &input);
  }
  return 0;
}
