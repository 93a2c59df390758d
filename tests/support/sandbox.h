// Runs a program the way an administrator does, in a world of its own: a private /opt, /dev/log and working directory.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <termios.h>
#include <vector>

#include <gtest/gtest.h>

namespace zebtest {

#if defined(ZEB_SANITIZED) || defined(__SANITIZE_ADDRESS__)
inline constexpr bool kSanitized = true;
#elif defined(__has_feature)
inline constexpr bool kSanitized = __has_feature(address_sanitizer);
#else
inline constexpr bool kSanitized = false;
#endif

/// Exit status of a program in which a sanitizer found something.
inline constexpr int kSanitizerExit = 99;

enum class Input { kNull, kClosed, kPipe, kTerminal };
enum class Output { kPipe, kTerminal, kFull, kBrokenPipe, kClosed };

/// One turn at the terminal: when `after` has appeared (searched behind the text of the turn before), `type` is typed
/// as it stands. A line needs its "\n", the end of input is "\x04". The typing waits until the program is blocked in a
/// read of its standard input, unless `atOnce` is set (for programs that poll the keyboard).
struct Answer {
    std::string after;
    std::string type;
    bool atOnce = false;
};

struct RunOptions {
    std::vector<std::string> args;
    std::string program; ///< empty: the zebcli of this build
    std::string argv0 = "zebcli"; ///< what the program sees as its own name
    std::map<std::string, std::string> env; ///< on top of a small fixed environment (TZ is UTC)
    Input input = Input::kNull; ///< what standard input is
    std::string inputText; ///< for kPipe; the pipe is closed behind it
    std::vector<Answer> answers; ///< for kTerminal
    Output output = Output::kPipe; ///< what standard output is; kTerminal needs Input::kTerminal
    unsigned short terminalColumns = 0; ///< width of the terminal, 24 rows high; 0: it tells no size
    uid_t uid = 0; ///< who runs it
    std::optional<std::filesystem::path> libraryDir; ///< where libstorelib.so is; not set: the simulator of this build
    std::chrono::milliseconds timeLimit{20000};
    bool mayTimeOut = false; ///< a run over its time limit is part of the test
    std::optional<std::uint64_t> fileSizeLimit;
    bool trace = false; ///< collect the simulator's request trace
};

struct RunResult {
    std::string out; ///< standard output: the pipe's bytes, or all that the terminal showed
    std::string err; ///< standard error, always a pipe
    std::string terminal; ///< what the terminal showed, the echo of what was typed included, without output processing
    int exitStatus = -1; ///< -1 when a signal ended the program
    int signal = 0;
    bool timedOut = false;
    termios terminalBefore{};
    termios terminalAfter{};
    std::vector<termios> terminalAtAnswer; ///< the mode in force just before each answer was typed
    std::vector<std::string> syslog; ///< datagrams that arrived at /dev/log, as they were sent
    std::string trace;
    std::chrono::microseconds wallTime{};
};
std::ostream& operator<<(std::ostream& os, const RunResult& result);

/// Says whether two terminal modes are the same in every flag and control character.
bool sameMode(const termios& a, const termios& b);

/// A temporary folder and a mount namespace in which parts of it stand at fixed paths. Removed with the object. Several
/// threads may each use their own; they may also run programs in one, whose datagrams then go to any of the runs.
class Sandbox {
  public:
    Sandbox();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    /// Why no sandbox can be made here (root's rights are needed), or an empty text. Asked once per process.
    static const std::string& unavailable();

    const std::filesystem::path& root() const { return root_; }
    std::filesystem::path opt() const { return root_ / "opt"; } ///< seen as /opt
    std::filesystem::path zeb() const { return opt() / "quorvel/zeb"; } ///< seen as /opt/quorvel/zeb
    std::filesystem::path logFolder() const { return zeb() / "log"; } ///< there from the start, may be removed
    std::filesystem::path log() const { return logFolder() / "zebcli.log"; }
    std::filesystem::path patternFile() const { return zeb() / "confpat1.csv"; } ///< the shipped one; may be changed
    std::filesystem::path work() const { return root_ / "work"; } ///< the working directory
    std::filesystem::path bin() const { return root_ / "bin"; } ///< first on PATH, empty
    std::filesystem::path noLibrary() const { return root_ / "no_library"; } ///< an empty folder for `libraryDir`

    /// Runs a program to its end. Fails the current test by itself when the program cannot be started, runs over its
    /// time limit, ends before its script does, or when a sanitizer speaks up, so that no check can miss that.
    RunResult run(const RunOptions& options);
    RunResult run(std::vector<std::string> args);
    /// The same with nothing between the tool and the library, whatever ZEB_TEST_BETWEEN says.
    RunResult runAlone(const RunOptions& options);

  private:
    void openSyslog();
    void openNamespace();
    std::vector<std::string> environment(const RunOptions& options) const;

    std::filesystem::path root_;
    std::string broken_;
    int namespace_ = -1;
    int syslog_ = -1;
};

/// Base of tests that run programs: skips them, with the reason, where no sandbox can be made. With ZEB_TESTS_MUST_RUN
/// in the environment that is a failure.
class SandboxTest : public testing::Test {
  protected:
    void SetUp() override;
    Sandbox box;
};

std::string readFile(const std::filesystem::path& path);
/// Writes a whole file, its folders included; the current test fails when that cannot be done.
void writeFile(const std::filesystem::path& path, std::string_view bytes);

} // namespace zebtest
