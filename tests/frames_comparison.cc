// Runs zelm_frames and the reference on equal blocks of memory and words what differs.
#include "frames_comparison.h"

#include <string.h>

#include "frames_reference.h"
#include "memory.h"

namespace frames_test {
namespace {

// The value of byte i of a destination's block before the call.
uint8_t unwritten(size_t i) { return static_cast<uint8_t>(0xA5 ^ (i * 29 + i / 256)); }

void addFirstDifference(int block, size_t stride, const uint8_t* written,
                        const std::vector<uint8_t>& expected, harness::Text* text) {
  size_t i = 0;
  while (written[i] == expected[i]) ++i;
  text->add("\n  block %d, row %zu, byte %zu: %d instead of %d, was %d", block,
            i / stride, i % stride, written[i], expected[i], unwritten(i));
}

}  // namespace

int convertAtOnce(const ZelmFrame& dst, const ZelmFrame& src, const ZelmEdit& edit) {
  return zelmConvert(&dst, &src, &edit, nullptr);
}

Comparison::Comparison(const Case& c, const Fill& fill) : case_(c), written_() {
  uint8_t *to[3] = {}, *from[3] = {};
  for (int b = 0; b < c.src.blocks; ++b) {
    source_[b].resize(c.src.bytes[b]);
    from[b] = source_[b].data();
    fill(from[b], c.src.bytes[b], c.src.rows[b]);
  }
  for (int b = 0; b < c.dst.blocks; ++b) {
    expected_[b].resize(c.dst.bytes[b]);
    to[b] = expected_[b].data();
    for (size_t i = 0; i < c.dst.bytes[b]; ++i) to[b][i] = unwritten(i);
  }
  frames_reference::convert(c.dst.at(to), c.src.at(from), c.edit);
}

harness::Text Comparison::run(const Call& call, Guard guard, size_t lead) {
  static GuardedBuffer destinations[3], sources[3];
  if (guard == Guard::kBehind) lead = 0;
  uint8_t* read[3] = {};
  for (int b = 0; b < case_.src.blocks; ++b) {
    read[b] = sources[b].place(lead + source_[b].size(), guard) + lead;
    memcpy(read[b], source_[b].data(), source_[b].size());
  }
  for (int b = 0; b < case_.dst.blocks; ++b) {
    written_[b] = destinations[b].place(lead + expected_[b].size(), guard) + lead;
    memset(written_[b] - lead, 0x5E, lead);
    for (size_t i = 0; i < expected_[b].size(); ++i) written_[b][i] = unwritten(i);
  }
  memory::State& heap = memory::state();
  const uint8_t heapFill = guard == Guard::kBehind ? 0x3C : 0xD7;
  heap = {true, 0, heapFill, 0, 0, 0};
  const int code = call(case_.dst.at(written_), case_.src.at(read), case_.edit);
  heap.watching = false;

  harness::Text wrong;
  if (code != ZELM_OK) wrong.add("\n  result %d", code);
  for (int b = 0; b < case_.dst.blocks; ++b) {
    if (memcmp(written_[b], expected_[b].data(), expected_[b].size()) != 0) {
      addFirstDifference(b, case_.dst.rows[b], written_[b], expected_[b], &wrong);
    }
    for (size_t i = 1; i <= lead; ++i) {
      if (*(written_[b] - i) == 0x5E) continue;
      wrong.add("\n  block %d: the byte %zu before it was written", b, i);
      break;
    }
  }
  for (int b = 0; b < case_.src.blocks; ++b) {
    if (memcmp(read[b], source_[b].data(), source_[b].size()) != 0) {
      wrong.add("\n  block %d of the source changed", b);
    }
  }
  if (heap.live != 0) wrong.add("\n  %d buffers not freed", heap.live);
  if (wrong.empty()) return wrong;
  harness::Text text = describe(case_);
  text.add(", guard %s", guard == Guard::kBehind ? "behind" : "before");
  if (lead != 0) text.add(" and %zu bytes", lead);
  text.add("%s", wrong.characters());
  return text;
}

}  // namespace frames_test
