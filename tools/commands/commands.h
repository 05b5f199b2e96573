// What the commands of the program do.
#ifndef ZELM_TOOLS_COMMANDS_COMMANDS_H
#define ZELM_TOOLS_COMMANDS_COMMANDS_H

#include "options/options.h"

namespace zelm_tool {

void runConvert(const ConvertOptions& options);
void runTestcard(const TestcardOptions& options);
void runFormats(const FormatsOptions& options);
void runInfo(const InfoOptions& options);
// Returns whether both inputs hold the same.
bool runCompare(const CompareOptions& options);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_COMMANDS_COMMANDS_H
