#include "zebstat/deadline.h"

#include "zebstat/exit_status.h"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace zebstat {

struct Deadline::Watch {
    std::mutex mutex;
    std::condition_variable ended;
    bool over = false;
    std::thread thread;
};

Deadline::Deadline(std::chrono::duration<double> limit, std::function<void()> lastWords)
    : watch_(std::make_unique<Watch>()) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::nanoseconds>(limit);
    // Signals are for the thread that does the work.
    sigset_t all{};
    sigset_t before{};
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    watch_->thread = std::thread([this, end, words = std::move(lastWords)] {
        std::unique_lock lock(watch_->mutex);
        if (watch_->ended.wait_until(lock, end, [this] { return watch_->over; }))
            return;
        words();
        _exit(kUntold);
    });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

Deadline::~Deadline() {
    {
        const std::lock_guard lock(watch_->mutex);
        watch_->over = true;
    }
    watch_->ended.notify_one();
    watch_->thread.join();
}

} // namespace zebstat
