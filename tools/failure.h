// How the program ends when something is wrong.
#ifndef ZELM_TOOLS_FAILURE_H
#define ZELM_TOOLS_FAILURE_H

#include <sstream>
#include <stdexcept>
#include <string>

namespace zelm_tool {

// What ends the program with exit status 2. The text becomes the one line on
// standard error: it says what is wrong and what would be right.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

template <typename... Parts>
[[noreturn]] void fail(const Parts&... parts) {
  std::ostringstream text;
  (text << ... << parts);
  throw Failure(text.str());
}

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_FAILURE_H
