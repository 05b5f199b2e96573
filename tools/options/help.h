// What stands below the options in the help.
#ifndef ZELM_TOOLS_OPTIONS_HELP_H
#define ZELM_TOOLS_OPTIONS_HELP_H

#include <string>

namespace zelm_tool {

std::string generalHelp();   // of zelm-imageutil --help
std::string geometryHelp();  // of convert and rotate
std::string colourHelp();    // of the commands that read or write colours

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OPTIONS_HELP_H
