// What is wrong with frames and edits: a code, and a sentence that a user can act on.
#ifndef ZELM_FRAMES_CHECK_H_
#define ZELM_FRAMES_CHECK_H_

#include "frames/format.h"
#include "frames/rect.h"
#include "zelm_frames.h"

namespace zelm {

// A frame, and what it is called in messages.
struct NamedFrame {
  const ZelmFrame* frame;
  const char* name;  // "source" or "destination"
};

// Each returns ZELM_OK, or the code of the first thing that is wrong. `message` may be
// null; it is only written where something is wrong.

// The record: null, format, size, colour.
int checkRecord(const NamedFrame& frame, ZelmMessage* message);
// The planes of a frame whose record is right.
int checkPlanes(const NamedFrame& frame, ZelmMessage* message);
// The region; all zero becomes the whole frame.
int checkRegion(const NamedFrame& frame, const ZelmRegion& region, bool isTarget,
                Rect* rect, ZelmMessage* message);
int checkEdit(const ZelmEdit& edit, ZelmMessage* message);
// Whether the bytes of two regions are apart.
int checkOverlap(const ZelmFrame& dst, const Rect& target, const ZelmFrame& src,
                 const Rect& source, ZelmMessage* message);

// Writes the sentence and returns the code.
__attribute__((format(printf, 3, 4))) int refuse(ZelmMessage* message, int code,
                                                 const char* sentence, ...);

}  // namespace zelm

#endif  // ZELM_FRAMES_CHECK_H_
