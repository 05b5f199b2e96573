// The geometry and filters that the options of convert ask for.
#ifndef ZELM_TOOLS_COMMANDS_EDIT_H
#define ZELM_TOOLS_COMMANDS_EDIT_H

#include <zelm_frames.h>

#include "frame/geometry.h"
#include "options/options.h"

namespace zelm_tool {

struct Edit {
  Region crop;    // what is taken of the source
  Size picture;   // what becomes of it, after the turn
  Size canvas;    // the frame that is written
  Point at;       // where the picture stands in it
  ZelmEdit edit;  // the same for the library
  bool bars;      // the picture does not fill the frame

  // The aspect of the samples that are written, from that of the samples read.
  Ratio aspect(Ratio source) const;
};

// Fails in words on texts that cannot be understood or do not fit frames of this size.
Edit chooseEdit(const EditOptions& options, Size source);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_COMMANDS_EDIT_H
