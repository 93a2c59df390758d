// The process side of a sandboxed run: descriptors, fork and exec, and the conversation with the running program.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/sandbox.h"

namespace zebtest {

/// Owns a descriptor. Every descriptor made here is close-on-exec, so that parallel runs do not hold each other's
/// pipes.
class Fd {
  public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Fd& operator=(Fd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Fd() { reset(); }
    void reset();
    int get() const { return fd_; }
    bool open() const { return fd_ >= 0; }

  private:
    int fd_;
};

/// Both ends of what a program has as standard input, output and error.
struct Channels {
    Fd in, out, err; ///< the program's ends; one that is not open is closed in the program
    Fd inWrite, outRead, errRead; ///< the test's ends
    Fd master, slave; ///< the terminal; the slave stays open so that its mode outlives the program
};

/// Opens what the options ask for; nothing, with the reason in `error`, when the system refuses.
std::optional<Channels> openChannels(const RunOptions& options, std::string& error);

struct Launch {
    std::string program;
    std::vector<std::string> argv;
    std::vector<std::string> env;
    std::string workFolder;
    int mountNamespace = -1;
};

/// Starts the program and returns its process id, or -1 with the failed step in `error`.
pid_t launch(const Launch& what, const RunOptions& options, const Channels& channels, std::string& error);

/// Talks to the program until it has ended and been reaped, and fills everything but the trace. Processes that it left
/// behind in its session are ended. Returns why the conversation went wrong, or an empty text.
std::string converse(pid_t pid, const RunOptions& options, Channels& channels, int syslogSocket, RunResult& result);

} // namespace zebtest
