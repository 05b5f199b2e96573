// What the four commands of the program do.
#ifndef ZELM_TOOLS_COMMANDS_H
#define ZELM_TOOLS_COMMANDS_H

#include "options.h"

namespace zelm_tool {

void runConvert(const ConvertOptions& options);
void runRotate(const RotateOptions& options);
void runTestcard(const TestcardOptions& options);
void runFormats(const FormatsOptions& options);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_COMMANDS_H
