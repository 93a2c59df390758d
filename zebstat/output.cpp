#include "zebstat/output.h"

#include "facts/text.h"

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <unistd.h>

namespace zebstat {

namespace {

/// Writes all of it. Where another program left the descriptor in a mode that does not wait for room, the writing
/// waits. Returns 0 or the error number.
int writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(fd, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (written < 0 && errno == EAGAIN) {
            pollfd room{fd, POLLOUT, 0};
            poll(&room, 1, -1);
        } else if (written == 0 || errno != EINTR) {
            return written == 0 ? EIO : errno;
        }
    }
    return 0;
}

} // namespace

void complain(std::string_view sentence) {
    const std::string line = "zebstat: " + facts::printable(sentence) + "\n";
    writeAll(STDERR_FILENO, line);
}

bool writeOutput(std::string_view text) {
    const int error = writeAll(STDOUT_FILENO, text);
    if (error != 0)
        complain("standard output cannot be written: " + std::string(std::strerror(error)));
    return error == 0;
}

} // namespace zebstat
