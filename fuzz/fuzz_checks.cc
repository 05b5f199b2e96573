// The functions that judge records, on records of any content.
#include <string.h>

#include "comparison.h"
#include "finding.h"
#include "input.h"
#include "reference.h"

namespace {

// Mostly numbers at the edges of the rules, and now and then any number.
uint32_t number(fuzz::Input* input) {
  const int kind = input->byte();
  if (kind < 64) return input->word();
  if (kind < 128) return 65534u - input->byte() % 8;
  if (kind < 160) return static_cast<uint32_t>(-input->below(4));
  return kind < 200 ? 2u * input->byte() : input->byte();
}

ImageStruct record(fuzz::Input* input) {
  static uint8_t sample;
  harness::Random random(input->word());
  ImageStruct r = harness::noisyRecord(&random);
  const int kind = input->byte();
  r.data = kind % 16 == 0 ? nullptr : &sample;
  r.format = kind % 16 == 1 ? input->word() : 1u << input->below(32);
  r.width = static_cast<uint16_t>(number(input));
  r.height = static_cast<uint16_t>(number(input));
  r.roiX = static_cast<int>(number(input));
  r.roiY = static_cast<int>(number(input));
  r.roiWidth = static_cast<uint16_t>(number(input));
  r.roiHeight = static_cast<uint16_t>(number(input));
  return r;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  fuzz::Input input(bytes, size);
  const ImageStruct first = record(&input);
  ImageStruct second = record(&input);
  if (input.byte() % 2 == 0) {  // the same or turned sizes, with and without a change
    second.roiWidth = first.roiWidth;
    second.roiHeight = first.roiHeight;
    if (input.byte() % 2 == 0) {
      second.roiWidth = first.roiHeight;
      second.roiHeight = first.roiWidth;
    }
    if (input.byte() % 4 == 0) ++second.roiWidth;
  }
  const auto check = [&](bool holds, const char* what) {
    if (holds) return;
    harness::Text text;
    text.add("%s; destination %s; source %s", what,
             harness::describe(second).characters(),
             harness::describe(first).characters());
    fuzz::finding(text.characters());
  };

  ImageStruct actual = first, plain = first;
  const int code = checkStruct(&actual);
  check(code == reference::checkStruct(&plain), "checkStruct: another code");
  check(memcmp(&actual, &plain, sizeof plain) == 0, "checkStruct: another record");
  if (code == RESULT_OK) {
    const ImageStruct& r = actual;
    check(((r.roiX | r.roiY | r.roiWidth | r.roiHeight) & 1) == 0, "odd region");
    check(r.roiX >= 0 && r.roiX + r.roiWidth <= r.width, "region outside, across");
    check(r.roiY >= 0 && r.roiY + r.roiHeight <= r.height, "region outside, down");
    check(checkStruct(&actual) == RESULT_OK, "refused the second time");
    check(memcmp(&actual, &plain, sizeof plain) == 0, "changed the second time");
  }

  ImageStruct src = first, dst = second;
  const int mode = input.byte() % 4 == 0 ? static_cast<int>(input.word()) : 1;
  const int rotation = static_cast<int>(number(&input));
  check(checkRotateParam(&src, &dst, mode, rotation) ==
            reference::checkRotateParam(&src, &dst, mode, rotation),
        "checkRotateParam");
  check(getReductionRate(&dst, &src) == reference::getReductionRate(&dst, &src),
        "getReductionRate");
  check(memcmp(&src, &first, sizeof src) == 0 && memcmp(&dst, &second, sizeof dst) == 0,
        "a record was changed");
  return 0;
}
