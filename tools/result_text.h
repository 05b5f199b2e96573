// Result codes of the library as failures of the program.
#ifndef ZELM_TOOLS_RESULT_TEXT_H
#define ZELM_TOOLS_RESULT_TEXT_H

namespace zelm_tool {

// Fails with the meaning of the library's result code unless it is RESULT_OK.
void requireOk(int result);

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_RESULT_TEXT_H
