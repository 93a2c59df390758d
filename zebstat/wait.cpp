// Waiting for background work to end.
#include "zebstat/output.h"
#include "zebstat/run.h"
#include "zebstat/work.h"

#include <algorithm>
#include <set>
#include <thread>
#include <utility>

namespace zebstat {

namespace {

using Clock = std::chrono::steady_clock;
using facts::Collection;

bool names(const LdTarget& target, std::uint8_t controller, std::uint8_t number) {
    return target.number == number && target.controller.value_or(controller) == controller;
}

class Waiting {
  public:
    explicit Waiting(const Options& options) : options_(options) {}

    int run() {
        const auto start = Clock::now();
        for (bool first = true;; first = false) {
            const auto began = Clock::now();
            const Collected collected = collectNow(options_, facts::Scope::Work);
            if (first && !collected.collection)
                return untold(options_.command, collected.problem);
            const bool atWork = collected.collection && meetWork(*collected.collection);
            // What could not be read may be at work still.
            if (collected.collection && collected.collection->complete()) {
                if (const std::string problem = missingLd(*collected.collection); !problem.empty())
                    return untold(options_.command, problem);
                if (!atWork)
                    return verdict(*collected.collection);
            }
            if (!sleepUntil(start, began + nanoseconds(options_.interval)))
                return timeUp();
        }
    }

  private:
    static Clock::duration nanoseconds(Seconds seconds) { return std::chrono::duration_cast<Clock::duration>(seconds); }

    /// Sleeps, but no longer than the options allow. False when the time was up already.
    bool sleepUntil(Clock::time_point start, Clock::time_point next) const {
        if (options_.longest) {
            const auto end = start + nanoseconds(*options_.longest);
            if (Clock::now() >= end)
                return false;
            next = std::min(next, end);
        }
        std::this_thread::sleep_until(next);
        return true;
    }

    /// Says, at the first poll that could be read, which LD that is waited for exists nowhere.
    std::string missingLd(const Collection& collection) {
        if (std::exchange(ldsAreKnown_, true))
            return {};
        for (const LdTarget& target : options_.logicalDrives) {
            const bool exists = std::ranges::any_of(collection.controllers, [&](const facts::Controller& controller) {
                return controller.logicalDrives &&
                       std::ranges::any_of(*controller.logicalDrives, [&](const facts::LogicalDrive& ld) {
                           return names(target, controller.number, ld.number);
                       });
            });
            if (!exists)
                return "--for-logical-drive: LD" + std::to_string(target.number) + " does not exist on " +
                       (target.controller ? "controller " + std::to_string(*target.controller)
                                          : std::string("any chosen controller")) +
                       "; zebstat json lists the LDs";
        }
        return {};
    }

    bool isWaitedFor(const Work& work) const {
        if (!options_.work.empty() && std::ranges::count(options_.work, work.operation.type) == 0)
            return false;
        return options_.logicalDrives.empty() ||
               std::ranges::any_of(work.logicalDrives, [&](std::uint8_t number) { return isTarget(work, number); });
    }
    bool isTarget(const Work& work, std::uint8_t number) const {
        return std::ranges::any_of(options_.logicalDrives, [&](const LdTarget& target) {
            return names(target, work.object.controller, number);
        });
    }

    /// Whether work is seen. Its objects are remembered, those of a poll that failed in part as well.
    bool meetWork(const Collection& collection) {
        underWay_.clear();
        for (const Work& work : workOf(collection)) {
            if (!isWaitedFor(work))
                continue;
            objects_.insert(work.object);
            for (const std::uint8_t number : work.logicalDrives)
                if (isTarget(work, number))
                    objects_.insert({work.object.controller, true, number});
            underWay_ += (underWay_.empty() ? "" : ", ") + work.name + " " + std::string(work.operation.type);
        }
        return !underWay_.empty();
    }

    int verdict(const Collection& collection) const {
        int status = kDone;
        for (const WorkObject& object : objects_) {
            const std::string ailment = ailmentOf(collection, object);
            if (ailment.empty())
                continue;
            complain(ailment);
            status = kCritical;
        }
        return status;
    }

    int timeUp() const {
        complain(underWay_.empty() ? "time is up; the controllers could not be read"
                                   : "time is up; still under way: " + underWay_);
        return kTimeUp;
    }

    const Options& options_;
    bool ldsAreKnown_ = false;
    std::set<WorkObject> objects_; ///< all that were at work at any poll
    std::string underWay_; ///< at the last poll, as far as it could be read
};

} // namespace

int runWait(const Options& options) {
    return Waiting(options).run();
}

} // namespace zebstat
