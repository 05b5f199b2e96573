// Runs the program zelm-imageutil in a folder of its own.
#include "tool_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace {

std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

void store(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace

ToolTest::ToolTest() {
  std::string name = ::testing::TempDir() + "zelm-tool-XXXXXX";
  EXPECT_NE(mkdtemp(name.data()), nullptr);
  folder_ = name;
  errors_ = name + ".err";
}

ToolTest::~ToolTest() {
  std::filesystem::remove_all(folder_);
  for (const char* suffix : {".err", ".in", ".out"}) {
    std::filesystem::remove(folder_ + suffix);
  }
}

pid_t ToolTest::start(const std::string& arguments, int in, int out) {
  std::istringstream words("zelm-imageutil " + arguments);
  std::vector<std::string> args{std::istream_iterator<std::string>(words), {}};
  std::vector<char*> argv;
  argv.reserve(args.size() + 1);
  for (std::string& arg : args) argv.push_back(arg.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addchdir_np(&actions, folder_.c_str());
  posix_spawn_file_actions_adddup2(&actions, in, 0);
  posix_spawn_file_actions_adddup2(&actions, out, 1);
  posix_spawn_file_actions_addopen(&actions, 2, errors_.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0600);
  // Whatever the tests were started with: background jobs ignore some of them.
  posix_spawnattr_t usual;
  sigset_t signals;
  sigemptyset(&signals);
  for (int number : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGPIPE, SIGXFSZ}) {
    sigaddset(&signals, number);
  }
  posix_spawnattr_init(&usual);
  posix_spawnattr_setsigdefault(&usual, &signals);
  posix_spawnattr_setflags(&usual, POSIX_SPAWN_SETSIGDEF);
  pid_t child = -1;
  EXPECT_EQ(posix_spawn(&child, ZELM_TOOL, &actions, &usual, argv.data(), environ), 0);
  posix_spawnattr_destroy(&usual);
  posix_spawn_file_actions_destroy(&actions);
  return child;
}

int ToolTest::waitFor(pid_t child) {
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return status;
}

std::string ToolTest::errors() const { return contents(errors_); }

ToolResult ToolTest::runFrom(const std::string& arguments, int in) {
  const int out =
      open((folder_ + ".out").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const int status = waitFor(start(arguments, in, out));
  close(in);
  close(out);
  EXPECT_TRUE(WIFEXITED(status)) << status;
  return {WEXITSTATUS(status), contents(folder_ + ".out"), contents(errors_)};
}

ToolResult ToolTest::run(const std::string& arguments, const std::string& input) {
  store(folder_ + ".in", input);
  return runFrom(arguments, open((folder_ + ".in").c_str(), O_RDONLY | O_CLOEXEC));
}

ToolResult ToolTest::runPiped(const std::string& arguments, const std::string& input) {
  int ends[2];
  EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
  std::thread writer([&] {
    sigset_t closed;  // for this thread alone: the program starts with the usual action
    sigemptyset(&closed);
    sigaddset(&closed, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &closed, nullptr);
    size_t written = 0;
    while (written < input.size()) {
      const ssize_t count =
          write(ends[1], input.data() + written, input.size() - written);
      if (count < 0) break;  // the program has ended
      written += static_cast<size_t>(count);
    }
    close(ends[1]);
  });
  ToolResult result = runFrom(arguments, ends[0]);
  writer.join();
  return result;
}

std::string ToolTest::runOk(const std::string& arguments, const std::string& input) {
  const std::string command = arguments.substr(0, arguments.find(' '));
  const bool speaks =
      command == "convert" || command == "rotate" || command == "testcard";
  const ToolResult result = run(
      speaks ? command + " -q" + arguments.substr(command.size()) : arguments, input);
  EXPECT_EQ(result.status, 0) << arguments;
  EXPECT_EQ(result.err, "");
  return result.out;
}

void ToolTest::expectRefusal(const std::string& arguments, const std::string& words,
                             const std::string& input) {
  const std::vector<std::string> before = files();
  const ToolResult result = run(arguments, input);
  EXPECT_EQ(result.status, 2) << arguments;
  EXPECT_EQ(result.out, "") << arguments;
  EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  EXPECT_NE(result.err.find(words), std::string::npos) << result.err;
  EXPECT_EQ(files(), before) << arguments;
}

std::string ToolTest::load(const std::string& name) const {
  return contents(path(name));
}

void ToolTest::save(const std::string& name, const std::string& bytes) const {
  store(path(name), bytes);
}

std::vector<std::string> ToolTest::files() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}
