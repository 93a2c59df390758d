#include "zebstat/deadline.h"

#include "zebstat/exit_status.h"

#include <condition_variable>
#include <csignal>
#include <cstring>
#include <mutex>
#include <pthread.h>
#include <unistd.h>

namespace zebstat {

struct Deadline::Watch {
    std::chrono::steady_clock::time_point end;
    std::function<void()> lastWords;
    std::mutex mutex;
    std::condition_variable ended;
    bool over = false;
    pthread_t thread{};

    static void* run(void* self) {
        auto& watch = *static_cast<Watch*>(self);
        std::unique_lock lock(watch.mutex);
        if (watch.ended.wait_until(lock, watch.end, [&watch] { return watch.over; }))
            return nullptr;
        watch.lastWords();
        _exit(kUntold);
    }
};

Deadline::Deadline(std::chrono::duration<double> limit, std::function<void()> lastWords)
    : watch_(std::make_unique<Watch>()) {
    watch_->end = std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::nanoseconds>(limit);
    watch_->lastWords = std::move(lastWords);
    // Signals are for the thread that does the work.
    sigset_t all{};
    sigset_t before{};
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const int error = pthread_create(&watch_->thread, nullptr, Watch::run, watch_.get());
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error != 0)
        problem_ = std::string("no thread can be started that watches over the time: ") + std::strerror(error);
}

Deadline::~Deadline() {
    if (!problem_.empty())
        return;
    {
        const std::lock_guard lock(watch_->mutex);
        watch_->over = true;
    }
    watch_->ended.notify_one();
    pthread_join(watch_->thread, nullptr);
}

} // namespace zebstat
