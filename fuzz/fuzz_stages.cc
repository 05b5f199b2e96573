// Every stage on regions that fit together, in frames exactly as large as their layouts
// need.
#include "compare.h"
#include "stages.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Input input(bytes, size);
  const auto& stages = harness::stages();
  const harness::Stage& stage = stages[input.byte() % stages.size()];
  const harness::Fit fit = stage.fit;
  using harness::Fit;
  // Long in one direction only, so that no image is large.
  const bool wide = input.byte() % 2 == 0;
  const int w = input.extent(wide ? 2050 : 20), h = input.extent(wide ? 8 : 150);
  harness::Size region{w, h}, other{input.below(3), input.below(3)};
  if (fit == Fit::kScaledSamples || fit == Fit::kScaledPairs) {
    other = {1 + input.extent(wide ? 2050 : 20), 1 + input.extent(wide ? 8 : 150)};
  } else if (fit == Fit::kSame || fit == Fit::kFrame || fit == Fit::kTiles) {
    region = {w / 2 * 2, h / 2 * 2};
    if (fit != Fit::kSame) region = {region.w + 2, region.h + 2};
  }
  const harness::Sizes sizes = harness::regionsOf(fit, region, other);
  const int margins = input.byte();
  harness::Random random(input.word());
  const auto dst = harness::makeFrame(stage.dst, fit, sizes.dst, margins & 1, &random);
  const auto src = harness::makeFrame(stage.src, fit, sizes.src, margins & 2, &random);
  fuzz::compare(harness::callOf(stage), dst, src, &input);
  return 0;
}
