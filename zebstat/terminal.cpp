#include "zebstat/terminal.h"

#include "zebstat/exit_status.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

namespace zebstat {

namespace {

// What the signal handlers need: the modes of the terminal, and with which status Ctrl-C ends the run.
termios modeBefore{};
termios modeOfKeys{};
volatile std::sig_atomic_t modeIsSet = 0;
volatile std::sig_atomic_t endStatus = kUntold;

/// Whether the terminal belongs to another job just now. Whoever changes its mode then is stopped.
bool inBackground() {
    const pid_t front = tcgetpgrp(STDIN_FILENO);
    return front >= 0 && front != getpgrp();
}

/// Ctrl-C ends the watching as q does; between two polls as well as in one.
void endByInterrupt(int /*signal*/) {
    Terminal::restore();
    _exit(endStatus);
}

void endBySignal(int signal) {
    Terminal::restore();
    raise(signal); // its own effect is back by now
}

/// Ctrl-Z: the shell gets its terminal as it was.
void stopAndGoOn(int /*signal*/) {
    const int error = errno;
    if (modeIsSet != 0)
        tcsetattr(STDIN_FILENO, TCSANOW, &modeBefore);
    raise(SIGSTOP);
    if (modeIsSet != 0 && !inBackground())
        tcsetattr(STDIN_FILENO, TCSANOW, &modeOfKeys);
    errno = error;
}

void catchSignal(int signal, void (*handler)(int), int flags) {
    struct sigaction present {};
    if (sigaction(signal, nullptr, &present) != 0 || present.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaddset(&action.sa_mask, SIGTTOU); // in the background too
    sigaction(signal, &action, nullptr);
}

} // namespace

Terminal::Terminal() : isTerminal_(isatty(STDOUT_FILENO) != 0) {
    catchSignal(SIGINT, endByInterrupt, 0);
    if (!isTerminal_ || inBackground() || tcgetattr(STDIN_FILENO, &modeBefore) != 0)
        return;
    modeOfKeys = modeBefore;
    modeOfKeys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    modeOfKeys.c_cc[VMIN] = 1;
    modeOfKeys.c_cc[VTIME] = 0;
    for (const int signal : {SIGHUP, SIGQUIT, SIGTERM})
        catchSignal(signal, endBySignal, static_cast<int>(SA_RESETHAND));
    catchSignal(SIGTSTP, stopAndGoOn, SA_RESTART);
    modeIsSet = 1;
    hasKeys_ = tcsetattr(STDIN_FILENO, TCSANOW, &modeOfKeys) == 0;
}

Terminal::~Terminal() {
    restore();
}

void Terminal::restore() {
    if (modeIsSet == 0)
        return;
    modeIsSet = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &modeBefore);
}

void Terminal::setEndStatus(int status) {
    endStatus = status;
}

Terminal::Size Terminal::size() const {
    winsize window{};
    if (!isTerminal_ || ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) != 0 || window.ws_col == 0 || window.ws_row == 0)
        return {80, 24};
    return {window.ws_col, window.ws_row};
}

bool Terminal::endKeyWithin(std::chrono::duration<double> time) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(time);
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0)
            return false;
        if (!hasKeys_) {
            std::this_thread::sleep_until(end);
            continue;
        }
        pollfd keyboard{STDIN_FILENO, POLLIN, 0};
        if (poll(&keyboard, 1, static_cast<int>(left.count())) <= 0)
            continue;
        char key = 0;
        const ssize_t count = read(STDIN_FILENO, &key, 1);
        if (count == 0 || key == 'q' || key == 'Q')
            return true;
        if (count < 0 && errno != EINTR && errno != EAGAIN)
            hasKeys_ = false;
    }
}

} // namespace zebstat
