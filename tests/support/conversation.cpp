#include "tests/support/child.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zebtest {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// Where the kernel does not tell what a process waits in, a question is taken as asked after this pause.
constexpr milliseconds kSettle{50};

class Conversation {
  public:
    Conversation(pid_t pid, const RunOptions& options, Channels& channels, int syslogSocket, RunResult& result)
        : pid_(pid), options_(options), channels_(channels), syslog_(syslogSocket), result_(result),
          ended_(static_cast<int>(syscall(SYS_pidfd_open, pid, 0))) {}

    std::string run() {
        if (!ended_.open()) {
            finish();
            return std::string("pidfd_open: ") + std::strerror(errno);
        }
        const auto start = Clock::now();
        const auto deadline = start + options_.timeLimit;
        while (!turn(deadline)) {
            if (Clock::now() >= deadline) {
                result_.timedOut = true;
                kill(pid_, SIGKILL);
                break;
            }
            type();
        }
        result_.wallTime = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
        finish();
        return verdict();
    }

  private:
    /// Waits for news and takes it in. True when the program has ended.
    bool turn(Clock::time_point deadline) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
        const auto wait = std::clamp(asked_ ? milliseconds(1) : left, milliseconds(0), milliseconds(1000));
        const bool feeding = channels_.inWrite.open();
        std::array<pollfd, 6> news{{{ended_.get(), POLLIN, 0},
                                    {channels_.outRead.get(), POLLIN, 0},
                                    {channels_.errRead.get(), POLLIN, 0},
                                    {channels_.master.get(), POLLIN, 0},
                                    {syslog_, POLLIN, 0},
                                    {feeding ? channels_.inWrite.get() : -1, POLLOUT, 0}}};
        (void)poll(news.data(), news.size(), static_cast<int>(wait.count()));
        takeIn();
        if (feeding && news[5].revents != 0)
            feed();
        return news[0].revents != 0;
    }

    void takeIn() {
        drain(channels_.outRead, result_.out);
        drain(channels_.errRead, result_.err);
        drain(channels_.master, result_.terminal);
        std::array<char, 8192> datagram{};
        for (ssize_t got = 0; (got = recv(syslog_, datagram.data(), datagram.size(), MSG_DONTWAIT)) >= 0;)
            result_.syslog.emplace_back(datagram.data(), static_cast<std::size_t>(got));
    }

    static void drain(Fd& fd, std::string& sink) {
        std::array<char, 65536> block{};
        ssize_t got = -1;
        while (fd.open() && (got = read(fd.get(), block.data(), block.size())) > 0)
            sink.append(block.data(), static_cast<std::size_t>(got));
        if (got == 0)
            fd.reset();
    }

    void feed() {
        const auto rest = std::string_view(options_.inputText).substr(fed_);
        const ssize_t done = rest.empty() ? 0 : write(channels_.inWrite.get(), rest.data(), rest.size());
        fed_ += done > 0 ? static_cast<std::size_t>(done) : 0;
        if (fed_ == options_.inputText.size() || (done < 0 && errno == EPIPE))
            channels_.inWrite.reset();
    }

    void type() {
        const std::size_t next = result_.terminalAtAnswer.size();
        if (next == options_.answers.size() || !channels_.master.open())
            return;
        const Answer& answer = options_.answers[next];
        const std::string& seen = options_.output == Output::kTerminal ? result_.terminal : result_.out;
        const std::size_t at = seen.find(answer.after, searchFrom_);
        if (at == std::string::npos)
            return;
        asked_ = asked_ ? asked_ : Clock::now();
        if (!answer.atOnce && !isReadingInput())
            return;
        termios mode{};
        tcgetattr(channels_.master.get(), &mode);
        result_.terminalAtAnswer.push_back(mode);
        (void)!write(channels_.master.get(), answer.type.data(), answer.type.size());
        searchFrom_ = at + answer.after.size();
        asked_.reset();
    }

    /// Whether the program is blocked in a read of descriptor 0: only then has it made the terminal ready for the
    /// answer.
    bool isReadingInput() const {
        // A program that only stands around another one has it as its child.
        const std::string pid = std::to_string(pid_);
        const std::string child = readFile("/proc/" + pid + "/task/" + pid + "/children");
        const std::string reader = child.empty() ? pid : child.substr(0, child.find(' '));
        const std::string state = readFile("/proc/" + reader + "/syscall");
        if (state.empty())
            return Clock::now() - *asked_ >= kSettle;
        return state.starts_with(std::to_string(SYS_read) + " 0x0 ");
    }

    /// What the program left running would hold its pipes open and outlive the test.
    void finish() {
        kill(-pid_, SIGKILL);
        int status = 0;
        while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
        }
        result_.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result_.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        if (channels_.master.open()) {
            tcgetattr(channels_.master.get(), &result_.terminalAfter);
            channels_.slave
                .reset(); // with the last slave gone the master hands out everything that is still on its way
        }
        takeIn();
        if (options_.output == Output::kTerminal)
            result_.out = result_.terminal;
    }

    std::string verdict() const {
        const std::size_t typed = result_.terminalAtAnswer.size();
        if (result_.timedOut && !options_.mayTimeOut)
            return "killed after its time limit of " + std::to_string(options_.timeLimit.count()) + " ms";
        if (!result_.timedOut && typed < options_.answers.size()) {
            return "ended without asking for answer " + std::to_string(typed + 1) + ", expected after \"" +
                   options_.answers[typed].after + "\"";
        }
        return {};
    }

    pid_t pid_;
    const RunOptions& options_;
    Channels& channels_;
    int syslog_;
    RunResult& result_;
    Fd ended_;
    std::size_t fed_ = 0;
    std::size_t searchFrom_ = 0;
    std::optional<Clock::time_point> asked_;
};

} // namespace

std::string converse(pid_t pid, const RunOptions& options, Channels& channels, int syslogSocket, RunResult& result) {
    channels.in.reset();
    channels.out.reset();
    channels.err.reset();
    return Conversation(pid, options, channels, syslogSocket, result).run();
}

} // namespace zebtest
