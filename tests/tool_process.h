// The program zelm-imageutil as a process, for tests.
#ifndef ZELM_TESTS_TOOL_PROCESS_H
#define ZELM_TESTS_TOOL_PROCESS_H

#include <gtest/gtest.h>
#include <sys/types.h>

#include <string>
#include <vector>

struct ToolResult {
  int status;
  std::string out;
  std::string err;
};

// A folder of its own for every test, in which the program runs. Its arguments are
// given as a text with blanks between them.
class ToolTest : public ::testing::Test {
 protected:
  ToolTest();
  ~ToolTest() override;

  // Runs the program with `input` as standard input.
  ToolResult run(const std::string& arguments, const std::string& input = "");
  // The same with a pipe as standard input, into which `input` is written.
  ToolResult runPiped(const std::string& arguments, const std::string& input);
  // The same as run() and quietly, expecting success; returns standard output.
  std::string runOk(const std::string& arguments, const std::string& input = "");
  // The same, expecting one line on standard error with `words`, status 2, nothing on
  // standard output and the same files in the folder as before.
  void expectRefusal(const std::string& arguments, const std::string& words,
                     const std::string& input = "");
  // Starts the program with these descriptors as standard input and output.
  pid_t start(const std::string& arguments, int in, int out);
  static int waitFor(pid_t child);  // the wait status
  std::string errors() const;       // standard error of the last process

  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string load(const std::string& name) const;
  void save(const std::string& name, const std::string& bytes) const;
  std::vector<std::string> files() const;

 private:
  ToolResult runFrom(const std::string& arguments, int in);

  std::string folder_;
  std::string errors_;  // the file for standard error, beside the folder
};

#endif  // ZELM_TESTS_TOOL_PROCESS_H
