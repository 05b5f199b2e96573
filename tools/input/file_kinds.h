// The kinds of files that hold frames. Each opens a source that has been chosen by its
// first bytes, and fails in words on what does not fit the options.
#ifndef ZELM_TOOLS_INPUT_FILE_KINDS_H
#define ZELM_TOOLS_INPUT_FILE_KINDS_H

#include <memory>
#include <string_view>

#include "input/byte_source.h"
#include "input/frame_source.h"

namespace zelm_tool {

using FileOpener = std::unique_ptr<FrameSource>(std::unique_ptr<ByteSource> source,
                                                const InputOptions& options);

FileOpener openRaw;  // bytes without any header
FileOpener openY4m;
FileOpener openPng;  // pictures, also several of the same size in one stream
FileOpener openPnm;

// How many first bytes tell that it is a picture.
constexpr size_t kPictureBytes = 8;
bool beginsLikePng(std::string_view start);
bool beginsLikePnm(std::string_view start);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_FILE_KINDS_H
