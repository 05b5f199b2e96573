// The plain rules that the library is compared with: one sample at a time, straight
// from the formulas, sharing nothing with the library but the record.
#ifndef ZELM_TESTS_REFERENCE_H
#define ZELM_TESTS_REFERENCE_H

#include "zelm_imageutil.h"

namespace reference {

int checkStruct(ImageStruct* img);
int checkRotateParam(ImageStruct* src, ImageStruct* dst, int mode, int rotation);
int getReductionRate(ImageStruct* dst, ImageStruct* src);

// Allocation never fails here; otherwise the codes and bytes of the pipelines.
int Zelm_Resize_and_Convert(ImageStruct src, ImageStruct dst, int luma, int chroma,
                            int reserved);
int Zelm_Convert_and_Resize(ImageStruct src, ImageStruct dst, int luma, int chroma,
                            int reserved);
int Zelm_Rotate_and_Convert(ImageStruct src, ImageStruct dst, int mode, int rotation);

#define STAGE(name, ...) void name(ImageStruct* dst, ImageStruct* src);
#include "stages.inc"
#undef STAGE

}  // namespace reference

#endif  // ZELM_TESTS_REFERENCE_H
