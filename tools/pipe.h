// Pipes at both ends of the program.
#ifndef ZELM_TOOLS_PIPE_H
#define ZELM_TOOLS_PIPE_H

#include <fcntl.h>

namespace zelm_tool {

// Lets a pipe hold more, so that both sides of it wait less often. Does nothing to
// other files, and to pipes where the system refuses.
inline void enlargePipe(int descriptor) {
  constexpr int kBytes = 1 << 20;
  fcntl(descriptor, F_SETPIPE_SZ, kBytes);
}

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_PIPE_H
