// Files that hold no frames as they are.
#ifndef ZELM_TOOLS_INPUT_FOREIGN_H
#define ZELM_TOOLS_INPUT_FOREIGN_H

#include <string>
#include <string_view>

namespace zelm_tool {

// How many of a file's first bytes refuseForeign() looks at.
constexpr size_t kForeignBytes = 16;

// Fails with a line that would do if the file `path` begins like encoded video or an
// encoded picture.
void refuseForeign(const std::string& path, std::string_view start);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_INPUT_FOREIGN_H
