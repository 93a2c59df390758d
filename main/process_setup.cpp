#include "main/process_setup.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <iterator>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr std::size_t kOutputSize = 65536;

/// Writes to standard output. Returns how much was written; less than all means that it cannot be.
ssize_t writeOutput(void* /*cookie*/, const char* data, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t written = write(STDOUT_FILENO, data + done, size - done);
        if (written > 0) {
            done += static_cast<std::size_t>(written);
        } else if (written < 0 && errno == EAGAIN) {
            pollfd room{STDOUT_FILENO, POLLOUT, 0};
            poll(&room, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            break;
        }
    }
    return static_cast<ssize_t>(done);
}

} // namespace

void occupyStandardDescriptors() {
    pollfd standard[] = {{STDIN_FILENO, 0, 0}, {STDOUT_FILENO, 0, 0}, {STDERR_FILENO, 0, 0}};
    poll(standard, std::size(standard), 0);
    for (const pollfd& file : standard)
        if ((file.revents & POLLNVAL) != 0 && open("/dev/null", file.fd == STDIN_FILENO ? O_WRONLY : O_RDONLY) < 0)
            open("/", O_RDONLY); // a folder gives and takes nothing either
}

void surviveWriteSignals() {
    // A handler, not an ignored signal: commands that the shell runs for us start with the default again.
    struct sigaction action {};
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
    sigaction(SIGXFSZ, &action, nullptr);
}

void gatherOutput() {
    static char gathered[kOutputSize];
    std::FILE* waiting = fopencookie(nullptr, "w", {nullptr, writeOutput, nullptr, nullptr});
    if (waiting != nullptr)
        stdout = waiting;
    std::setvbuf(stdout, gathered, isatty(STDOUT_FILENO) != 0 ? _IOLBF : _IOFBF, sizeof gathered);
}
