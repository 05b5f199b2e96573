// Exchanges the bytes of the chroma pairs in the frame's region, in place.
#ifndef ZELM_SRC_CONVERT_EXCHANGE_CHROMA_H_
#define ZELM_SRC_CONVERT_EXCHANGE_CHROMA_H_

#include "zelm_imageutil.h"

namespace zelm {

void exchangeChroma(const ImageStruct& frame);

}  // namespace zelm

#endif  // ZELM_SRC_CONVERT_EXCHANGE_CHROMA_H_
