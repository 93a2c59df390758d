#include "tests/support/child.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zebtest {
namespace {

bool openPipe(Fd& readEnd, Fd& writeEnd) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return false;
    readEnd = Fd(ends[0]);
    writeEnd = Fd(ends[1]);
    return true;
}

bool setNonBlocking(const Fd& fd) {
    return !fd.open() || fcntl(fd.get(), F_SETFL, O_NONBLOCK) == 0;
}

bool openDevice(Fd& fd, const char* path, int mode) {
    fd = Fd(open(path, mode | O_CLOEXEC));
    return fd.open();
}

/// Output processing is off, so that the terminal shows the very bytes that the program wrote.
bool openTerminal(const RunOptions& options, Channels& channels) {
    channels.master = Fd(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    std::array<char, 64> name{};
    if (!channels.master.open() || grantpt(channels.master.get()) != 0 || unlockpt(channels.master.get()) != 0 ||
        ptsname_r(channels.master.get(), name.data(), name.size()) != 0 ||
        !openDevice(channels.slave, name.data(), O_RDWR | O_NOCTTY))
        return false;
    termios mode{};
    if (tcgetattr(channels.slave.get(), &mode) != 0)
        return false;
    mode.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    winsize size{};
    if (options.terminalColumns != 0)
        size = {24, options.terminalColumns, 0, 0};
    return tcsetattr(channels.slave.get(), TCSANOW, &mode) == 0 && ioctl(channels.slave.get(), TIOCSWINSZ, &size) == 0;
}

bool openInput(const RunOptions& options, Channels& channels) {
    switch (options.input) {
    case Input::kNull:
        return openDevice(channels.in, "/dev/null", O_RDONLY);
    case Input::kPipe:
        return openPipe(channels.in, channels.inWrite);
    case Input::kTerminal:
        return openTerminal(options, channels);
    case Input::kClosed:
        break;
    }
    return true;
}

bool openOutput(const RunOptions& options, Channels& channels) {
    Fd unread;
    switch (options.output) {
    case Output::kPipe:
        return openPipe(channels.outRead, channels.out);
    case Output::kFull:
        return openDevice(channels.out, "/dev/full", O_WRONLY);
    case Output::kBrokenPipe:
        return openPipe(unread, channels.out);
    case Output::kTerminal:
        return options.input == Input::kTerminal;
    case Output::kClosed:
        break;
    }
    return true;
}

/// What a child that could not start its program tells its parent.
struct StartFailure {
    const char* step;
    int error;
};

bool limitFileSize(const std::optional<std::uint64_t>& bytes) {
    const rlimit both{bytes.value_or(0), bytes.value_or(0)};
    return !bytes || setrlimit(RLIMIT_FSIZE, &both) == 0;
}

bool takeStandardDescriptors(const RunOptions& options, const Channels& channels) {
    const int terminal = channels.slave.get();
    const std::array<int, 3> sources{options.input == Input::kTerminal ? terminal : channels.in.get(),
                                     options.output == Output::kTerminal ? terminal : channels.out.get(),
                                     channels.err.get()};
    for (int fd = 0; fd < 3; ++fd) {
        const int source = sources.at(static_cast<std::size_t>(fd));
        if (source < 0)
            close(fd);
        else if (dup2(source, fd) != fd)
            return false;
    }
    return true;
}

/// Between vfork and exec, in its parent's memory: nothing here allocates, locks or touches stdio, and the rights go by
/// system calls, since the C library's functions would take them from the parent's threads.
[[noreturn]] void becomeProgram(const Launch& what, const RunOptions& options, const Channels& channels, int programFd,
                                char* const* argv, char* const* env, int report) {
    const auto need = [report](bool done, const char* step) {
        if (!done) {
            const StartFailure failure{step, errno};
            (void)!write(report, &failure, sizeof failure);
            _exit(127);
        }
    };
    for (int number = 1; number < NSIG; ++number)
        (void)signal(number, SIG_DFL);
    sigset_t none{};
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    need(setsid() >= 0, "setsid");
    need(!channels.slave.open() || ioctl(channels.slave.get(), TIOCSCTTY, 0) == 0, "TIOCSCTTY");
    need(setns(what.mountNamespace, CLONE_NEWNS) == 0, "setns");
    need(chdir(what.workFolder.c_str()) == 0, "chdir");
    need(takeStandardDescriptors(options, channels), "dup2");
    need(limitFileSize(options.fileSizeLimit), "setrlimit");
    if (options.uid != 0)
        need(syscall(SYS_setgroups, 0, nullptr) == 0 && syscall(SYS_setgid, options.uid) == 0 &&
                 syscall(SYS_setuid, options.uid) == 0,
             "setuid");
    execveat(programFd, "", argv, env, AT_EMPTY_PATH);
    need(false, "exec");
    _exit(127);
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (const auto& text : texts)
        result.push_back(const_cast<char*>(text.c_str()));
    result.push_back(nullptr);
    return result;
}

} // namespace

void Fd::reset() {
    if (fd_ >= 0) {
        close(fd_);
        fd_ = -1;
    }
}

std::optional<Channels> openChannels(const RunOptions& options, std::string& error) {
    Channels channels;
    if (!openInput(options, channels) || !openOutput(options, channels) || !openPipe(channels.errRead, channels.err) ||
        !setNonBlocking(channels.inWrite) || !setNonBlocking(channels.outRead) || !setNonBlocking(channels.errRead) ||
        !setNonBlocking(channels.master)) {
        error = std::string("cannot open the program's descriptors: ") + std::strerror(errno);
        return std::nullopt;
    }
    return channels;
}

pid_t launch(const Launch& what, const RunOptions& options, const Channels& channels, std::string& error) {
    const auto argv = pointers(what.argv);
    const auto env = pointers(what.env);
    // Opened here: the sandbox's /opt may hide the program, and another user may not reach its folder.
    const Fd program(open(what.program.c_str(), O_RDONLY | O_CLOEXEC));
    Fd reportRead;
    Fd reportWrite;
    if (!program.open() || !openPipe(reportRead, reportWrite)) {
        error = "cannot open " + what.program + ": " + std::strerror(errno);
        return -1;
    }
    const pid_t pid = vfork(); // a fork would copy the tables of all the memory that the tests hold
    if (pid == 0)
        becomeProgram(what, options, channels, program.get(), argv.data(), env.data(), reportWrite.get());
    const int forkError = errno;
    reportWrite.reset();
    StartFailure failure{"fork", forkError};
    if (pid > 0 && read(reportRead.get(), &failure, sizeof failure) != static_cast<ssize_t>(sizeof failure))
        return pid;
    error = "cannot start " + what.program + ": " + failure.step + ": " + std::strerror(failure.error);
    return -1;
}

} // namespace zebtest
