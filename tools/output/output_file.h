// Files that appear under their name when they are complete.
#ifndef ZELM_TOOLS_OUTPUT_OUTPUT_FILE_H
#define ZELM_TOOLS_OUTPUT_OUTPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace zelm_tool {

// A file that appears under its name only when it is complete: it is written beside
// the target and renamed by commit(). Without commit(), and on an interrupting
// signal, nothing is left behind. "-" is standard output; devices and pipes are
// written in place. Only one such file is open at a time.
class OutputFile {
 public:
  // Fails when that is the file that `input` reads, a descriptor or -1.
  OutputFile(const std::string& path, int input);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* data, size_t count);
  void commit();

 private:
  void requireOther(int input) const;
  void openBeside();
  [[noreturn]] void failWriting() const;

  std::string name_;
  std::string target_;
  std::string temporary_;  // empty: written in place
  const bool standard_;    // standard output, which is not ours to close
  int descriptor_ = -1;
};

// Removes the unfinished file when the program is interrupted; a closed pipe or a file
// that may not become larger becomes an error of the write to it.
void installSignalHandlers();

// Writes what is still buffered for standard output; fails when that cannot be done.
void finishStandardOutput();

}  // namespace zelm_tool

#endif  // ZELM_TOOLS_OUTPUT_OUTPUT_FILE_H
