// The command testcard: writes frames of the test card.
#include <zelm_imageutil.h>

#include "commands.h"
#include "converter.h"
#include "failure.h"
#include "frame_writer.h"
#include "progress.h"
#include "test_card.h"

namespace zelm_tool {
namespace {

// Packed 4:2:2, which the library only reads, from semi-planar 4:2:2.
void packUyvy(const Frame& semiPlanar, Frame* packed) {
  const size_t pixels = size_t{packed->size().width} * packed->size().height;
  const uint8_t* luma = semiPlanar.data();
  const uint8_t* chroma = luma + pixels;
  uint8_t* to = packed->data();
  for (size_t i = 0; i < pixels; ++i) {
    to[2 * i] = chroma[i];
    to[2 * i + 1] = luma[i];
  }
}

}  // namespace

void runTestcard(const TestcardOptions& options) {
  const Size size = parseSize("--size", options.size);
  requireFrameSize("--size", size);
  const Target target = chooseTarget(options.out, {});
  requireMakeable(*target.format, size);
  if (holdsOneFrame(target) && options.frames > 1) {
    fail("--frames ", options.frames,
         ": a PNG holds one frame; for more the name needs a number, such as ",
         "out-%03d.png");
  }
  const bool packed = target.format->code == FORMAT_YUV422IUYVY;
  const uint32_t code = packed ? uint32_t{FORMAT_YUV422SP} : target.format->code;
  Converter converter(FORMAT_YUV420SPVU, code, unchangedGeometry(size),
                      {RESIZE_LINEAR, RESIZE_LINEAR});
  TestCard card(size);
  Frame drawn(FORMAT_YUV420SPVU, size);
  Frame uyvy(FORMAT_YUV422IUYVY, size);
  const auto writer = openWriter(target, size, std::nullopt);
  Progress progress(options.out.quiet);
  for (uint64_t i = 0; i < options.frames; ++i) {
    card.draw(i, &drawn);
    const Frame& frame = converter.convert(drawn);
    if (packed) packUyvy(frame, &uyvy);
    writer->write(packed ? uyvy : frame);
    progress.countFrame();
  }
  writer->finish();
}

}  // namespace zelm_tool
