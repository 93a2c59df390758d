#include "recorder/write_whole.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

namespace zebrec {

namespace {

/// Keeps the signal for a file over the size limit away from the program; the write then says so.
class NoSizeSignal {
  public:
    NoSizeSignal() {
        sigemptyset(&signals_);
        sigaddset(&signals_, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &signals_, &before_);
    }
    ~NoSizeSignal() {
        if (failed_ && !sigismember(&before_, SIGXFSZ)) {
            const timespec none{};
            sigtimedwait(&signals_, nullptr, &none);
        }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }
    NoSizeSignal(const NoSizeSignal&) = delete;
    NoSizeSignal& operator=(const NoSizeSignal&) = delete;

    /// Of what may have raised the signal. Returns its errno.
    int note(int error) {
        failed_ = true;
        return error;
    }

  private:
    bool failed_ = false;
    sigset_t signals_{};
    sigset_t before_{};
};

} // namespace

int writeWhole(int file, std::string_view text, std::optional<off_t> at) {
    NoSizeSignal guard;
    while (!text.empty()) {
        const ssize_t written =
            at ? ::pwrite(file, text.data(), text.size(), *at) : ::write(file, text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return guard.note(written < 0 ? errno : ENOSPC);
        text.remove_prefix(static_cast<std::size_t>(written));
        if (at)
            *at += written;
    }
    return 0;
}

int growTo(int file, off_t size) {
    NoSizeSignal guard;
    return ::ftruncate(file, size) == 0 ? 0 : guard.note(errno);
}

} // namespace zebrec
