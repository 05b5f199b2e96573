// The program as a process: threads, pipes, files that change, signals, limits.
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "tool_frames.h"
#include "tool_process.h"

namespace {

// Both ends of a pipe, closed in the end.
struct Pipe {
  int out = -1, in = -1;
  Pipe() {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    out = ends[0], in = ends[1];
  }
  ~Pipe() { closeIn(), closeOut(); }
  void closeIn() { closeOnce(&in); }
  void closeOut() { closeOnce(&out); }
  void write(const std::string& bytes) const {
    EXPECT_EQ(::write(in, bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
  }
  std::string readAll() const {
    std::string all, piece(65536, '\0');
    for (ssize_t got; (got = ::read(out, piece.data(), piece.size())) > 0;) {
      all.append(piece, 0, static_cast<size_t>(got));
    }
    return all;
  }

 private:
  static void closeOnce(int* end) {
    if (*end >= 0) close(*end);
    *end = -1;
  }
};

bool exitedWith(int status, int code) {
  return WIFEXITED(status) && WEXITSTATUS(status) == code;
}

// Lowers a limit of this process and of those that it starts.
struct Limit {
  const __rlimit_resource resource;
  rlimit before;
  Limit(__rlimit_resource which, rlim_t most) : resource(which) {
    EXPECT_EQ(getrlimit(resource, &before), 0);
    const rlimit lower = {most, before.rlim_max};
    EXPECT_EQ(setrlimit(resource, &lower), 0);
  }
  ~Limit() { setrlimit(resource, &before); }
};

TEST_F(ToolTest, TheSameBytesFromAnyNumberOfThreads) {
  const size_t count = 23;
  std::string in, expected;
  for (size_t i = 0; i < count; ++i) {
    const Picture frame = {ZELM_NV12, 64, 48, noise(64 * 48 * 3 / 2, i)};
    in += frame.bytes;
    expected += converted(frame, blank(ZELM_RGB24, 40, 30));
  }
  save("in.nv12", in);
  std::string digests;
  for (const std::string threads : {"1", "2", "7"}) {
    const std::string args =
        " --size 64x48 --from nv12 --resize 40x30 --to rgb24 -q --threads " + threads;
    EXPECT_TRUE(sameBytes(runOk("convert in.nv12 -" + args), expected)) << threads;
    EXPECT_TRUE(sameBytes(runPiped("convert - -" + args, in).out, expected)) << threads;
    runOk("convert in.nv12 out.rgb24" + args);
    EXPECT_TRUE(sameBytes(load("out.rgb24"), expected)) << threads;
    Pipe output;
    const int none = open("/dev/null", O_RDONLY | O_CLOEXEC);
    const pid_t child = start("convert in.nv12 -" + args, none, output.in);
    output.closeIn();
    EXPECT_TRUE(sameBytes(output.readAll(), expected)) << threads;
    EXPECT_TRUE(exitedWith(waitFor(child), 0)) << errors();
    close(none);
    const std::string lines = runOk("convert in.nv12 --md5" + args);
    if (digests.empty()) digests = lines;
    EXPECT_EQ(lines, digests);
  }
  EXPECT_EQ(std::count(digests.begin(), digests.end(), '\n'), 23);
  EXPECT_NE(digests.find("\n23 "), std::string::npos);
}

TEST_F(ToolTest, FramesBeforeAFailureAreDelivered) {
  std::string stream = "YUV4MPEG2 W8 H4 Cmono\n", frames;
  for (int i = 0; i < 5; ++i) {
    frames += std::string(32, static_cast<char>('a' + i));
    stream += "FRAME\n" + frames.substr(32 * i);
  }
  for (const std::string threads : {"1", "2", "7"}) {
    for (const std::string damage : {"FRAME\nxyz", "FRAMEs\n", "garbage", "FRAME\n"}) {
      const auto to = [&](const std::string& name, const char* kind) {
        return runPiped(
            "convert - " + name + " -q --to " + kind + " --threads " + threads,
            stream + damage);
      };
      ToolResult result = to("-", "gray");
      EXPECT_EQ(result.status, 2);
      EXPECT_EQ(result.out, frames) << threads << damage;
      EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1);
      EXPECT_NE(result.err.find("frame 6 "), std::string::npos) << result.err;
      result = to("x.gray", "gray");
      EXPECT_EQ(result.status, 2);
      EXPECT_TRUE(files().empty());
      to("n%d.pgm", "pgm");
      EXPECT_EQ(files(), (std::vector<std::string>{"n1.pgm", "n2.pgm", "n3.pgm",
                                                   "n4.pgm", "n5.pgm"}));
      for (const std::string& name : files()) std::filesystem::remove(path(name));
    }
  }
}

// Nothing more comes in, and nobody takes what goes out: the program ends all the same.
TEST_F(ToolTest, ClosedOutputEndsASilentInput) {
  for (const std::string threads : {"1", "2", "7"}) {
    Pipe input, output;
    output.closeOut();
    const pid_t child =
        start("convert - - --to nv12 --threads " + threads, input.out, output.in);
    input.write(smallY4m());
    EXPECT_TRUE(exitedWith(waitFor(child), 2));
    EXPECT_EQ(errors(),
              "zelm-imageutil: standard output: cannot be written: Broken pipe\n");
  }
}

TEST_F(ToolTest, ClosedAndFullOutputs) {
  Pipe input, output;
  output.closeOut();
  EXPECT_TRUE(exitedWith(
      waitFor(start("testcard - --size 640x480 --to nv12", input.out, output.in)), 2));
  const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
  for (const char* args : {"formats", "--help", "info -"}) {
    Pipe stream;
    stream.write(smallY4m()), stream.closeIn();
    EXPECT_TRUE(exitedWith(waitFor(start(args, stream.out, full)), 2)) << args;
  }
  close(full);
}

// The pipe is full while the file loses its second half.
TEST_F(ToolTest, FileThatShrinksWhileItIsRead) {
  const long frame = 640 * 480 * 3 / 2, frames = 20;
  save("in.nv12", "");
  ASSERT_EQ(truncate(path("in.nv12").c_str(), frames * frame), 0);
  Pipe output;
  const int none = open("/dev/null", O_RDONLY | O_CLOEXEC);
  const pid_t child =
      start("convert in.nv12 - --size 640x480 --to nv21", none, output.in);
  output.closeIn();
  std::string taken(4096, '\0');
  ASSERT_GT(read(output.out, taken.data(), taken.size()), 0);
  ASSERT_EQ(truncate(path("in.nv12").c_str(), frames * frame / 2 + 1000), 0);
  output.readAll();
  EXPECT_TRUE(exitedWith(waitFor(child), 2));
  EXPECT_NE(errors().find("cut short"), std::string::npos) << errors();
  close(none);
}

TEST_F(ToolTest, NamesLinksAndEarlierFiles) {
  save("-in.y4m", smallY4m());
  runOk("convert --frames 1 -- -in.y4m -out.nv12");
  EXPECT_EQ(load("-out.nv12").size(), 48u);
  save("old.nv12", "kept");
  expectRefusal("convert - old.nv12", "cut short", smallY4m() + "FRAME\nx");
  EXPECT_EQ(load("old.nv12"), "kept");
  ASSERT_EQ(symlink("old.nv12", path("link.nv12").c_str()), 0);
  ASSERT_EQ(chmod(path("old.nv12").c_str(), 0640), 0);
  runOk("convert - link.nv12", smallY4m());
  EXPECT_TRUE(std::filesystem::is_symlink(path("link.nv12")));
  EXPECT_EQ(load("old.nv12").size(), 3 * 48u);
  struct stat status;
  ASSERT_EQ(stat(path("old.nv12").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u);
  EXPECT_EQ(files().size(), 4u);
}

TEST_F(ToolTest, TheInputIsNotTheOutput) {
  save("same.y4m", smallY4m());
  ASSERT_EQ(symlink("same.y4m", path("link.y4m").c_str()), 0);
  ASSERT_EQ(link(path("same.y4m").c_str(), path("hard.y4m").c_str()), 0);
  for (const std::string out : {"same.y4m", "./same.y4m", "link.y4m", "hard.y4m"}) {
    for (const std::string& args :
         {"convert same.y4m " + out, "rotate link.y4m " + out + " --angle 90"}) {
      expectRefusal(args, out + " is the input as well");
      EXPECT_EQ(load("same.y4m"), smallY4m());
    }
  }
  // The shell has opened it.
  const int in = open(path("same.y4m").c_str(), O_RDONLY | O_CLOEXEC);
  const int out = open(path("same.y4m").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
  EXPECT_TRUE(exitedWith(waitFor(start("convert - -", in, out)), 2));
  EXPECT_NE(errors().find("standard output is the input as well"), std::string::npos);
  EXPECT_EQ(load("same.y4m"), smallY4m());
  close(in), close(out);
  save("n1.pgm", "P5 2 2 255\nabcd");
  expectRefusal("convert n1.pgm n%d.pgm", "n1.pgm is the input as well");
}

TEST_F(ToolTest, SignalsLeaveNoFile) {
  const Limit noCore(RLIMIT_CORE, 0);
  for (int number : {SIGTERM, SIGQUIT, SIGINT, SIGHUP}) {
    Pipe input, output;
    const pid_t child = start("convert - x.y4m", input.out, output.in);
    input.write(smallY4m());
    for (int i = 0; i < 1000 && files().empty(); ++i) usleep(10000);
    EXPECT_EQ(files().size(), 1u);
    kill(child, number);
    input.closeIn();  // the thread sanitizer holds signals back while a lock is waited
                      // for
    const int status = waitFor(child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number) << status;
    EXPECT_TRUE(files().empty()) << number;
  }
}

TEST_F(ToolTest, FilesThatMayNotBecomeLarger) {
  const Limit small(RLIMIT_FSIZE, 100000);
  for (const std::string name : {"x.nv12", "x.y4m", "x%d.ppm"}) {
    expectRefusal("testcard " + name + " --size 640x480 --frames 3",
                  ": cannot be written: File too large");
  }
}

}  // namespace
