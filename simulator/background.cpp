#include "simulator/background.h"

#include "simulator/consequences.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zebsim {

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();
constexpr std::uint8_t kAutomatic = 0;

using Finish = void (*)(Controller&, std::uint16_t owner);

/// A piece of work under way, with the time that all of it takes.
struct Job {
    Task* task;
    double duration; ///< seconds
    std::uint16_t owner; ///< device id of the drive, or target id of the LD
    Finish finish;
};

/// One hour for 10^12 bytes at a rate of 30 percent, in proportion otherwise.
double workTime(std::uint64_t blocks, std::uint8_t rate) {
    constexpr double kUsualRate = 30;
    constexpr double kBytesPerHour = 1e12;
    const double hours = static_cast<double>(blocks) * 512 / kBytesPerHour;
    return std::max(1.0, hours * 3600 * kUsualRate / std::max<int>(rate, 1));
}

void finishRebuild(Controller& ctrl, std::uint16_t owner) {
    changeDriveState(ctrl, *findDrive(ctrl, owner), kPdOnline);
}

void finishPatrolRead(Controller& ctrl, std::uint16_t) {
    ctrl.patrolRead.running = std::any_of(ctrl.drives.begin(), ctrl.drives.end(),
                                          [](const Drive& drive) { return drive.patrolRead.has_value(); });
}

void finishNothing(Controller&, std::uint16_t) {}

/// The target takes its source's place in the array. A source that predicted its failure is bad then, else good.
void finishCopyback(Controller& ctrl, std::uint16_t owner) {
    Drive& target = *findDrive(ctrl, owner);
    Drive* source = findDrive(ctrl, target.copybackPartner);
    target.copybackPartner = kNoDevice;
    Array* array = source == nullptr ? nullptr : arrayOfDrive(ctrl, source->deviceId);
    if (array == nullptr) {
        const bool member = arrayOfDrive(ctrl, owner) != nullptr;
        changeDriveState(ctrl, target, member ? kPdOnline : kPdUnconfiguredGood);
        return;
    }
    source->copybackPartner = kNoDevice;
    std::erase_if(ctrl.spares, [=](const Spare& spare) { return spare.deviceId == owner; });
    std::replace(array->drives.begin(), array->drives.end(), source->deviceId, owner);
    changeDriveState(ctrl, target, kPdOnline);
    changeDriveState(ctrl, *source, source->predictiveFailures != 0 ? kPdUnconfiguredBad : kPdUnconfiguredGood);
}

void finishLdWork(Controller& ctrl, std::uint16_t owner) {
    LogicalDrive& ld = *findLd(ctrl, static_cast<std::uint8_t>(owner));
    ld.consistent = true;
    ++ld.seq;
}

void finishInit(Controller& ctrl, std::uint16_t owner) {
    constexpr std::uint8_t kFullyInitialised = 2;
    findLd(ctrl, static_cast<std::uint8_t>(owner))->initState = kFullyInitialised;
    finishLdWork(ctrl, owner);
}

void finishLearning(Controller& ctrl, std::uint16_t) {
    CacheBackup& unit = *ctrl.cacheBackup;
    unit.remainingCapacity = unit.fullCapacity;
    unit.relativeCharge = 100;
    ++unit.cycleCount;
    unit.nextLearn = ctrl.time + unit.learnPeriod;
}

void addJob(std::vector<Job>& jobs, Task& task, double duration, std::uint16_t owner, Finish finish) {
    if (task)
        jobs.push_back({&task, duration, owner, finish});
}

void addDriveJobs(std::vector<Job>& jobs, Controller& ctrl) {
    const Properties& rates = ctrl.properties;
    for (Drive& drive : ctrl.drives) {
        const double byRebuildRate = workTime(drive.blocks, rates.rebuildRate);
        const double byPatrolRate = workTime(drive.blocks, rates.patrolReadRate);
        addJob(jobs, drive.rebuild, byRebuildRate, drive.deviceId, finishRebuild);
        addJob(jobs, drive.copyback, byRebuildRate, drive.deviceId, finishCopyback);
        addJob(jobs, drive.clear, byRebuildRate, drive.deviceId, finishNothing);
        addJob(jobs, drive.patrolRead, byPatrolRate, drive.deviceId, finishPatrolRead);
    }
}

void addLdJobs(std::vector<Job>& jobs, Controller& ctrl) {
    const Properties& rates = ctrl.properties;
    for (LogicalDrive& ld : ctrl.lds) {
        if (!ld.check && !ld.backgroundInit && !ld.init && !ld.reconstruction)
            continue;
        const std::uint64_t blocks = ldBlocks(ctrl, ld);
        addJob(jobs, ld.check, workTime(blocks, rates.ccRate), ld.id, finishLdWork);
        addJob(jobs, ld.backgroundInit, workTime(blocks, rates.bgiRate), ld.id, finishInit);
        addJob(jobs, ld.init, workTime(blocks, rates.bgiRate), ld.id, finishInit);
        addJob(jobs, ld.reconstruction, workTime(blocks, rates.reconRate), ld.id, finishLdWork);
    }
}

std::vector<Job> jobsOf(Controller& ctrl) {
    constexpr double kLearnTime = 2 * 3600;
    std::vector<Job> jobs;
    addDriveJobs(jobs, ctrl);
    addLdJobs(jobs, ctrl);
    if (ctrl.cacheBackup)
        addJob(jobs, ctrl.cacheBackup->learn, kLearnTime, 0, finishLearning);
    return jobs;
}

double timeLeft(const Job& job) {
    return job.duration * (kWholePercent - (*job.task)->percent) / kWholePercent;
}

/// Seconds until a scheduled start, counted from now.
double untilTime(const Controller& ctrl, std::uint32_t when) {
    return std::max(0.0, static_cast<double>(when) - ctrl.time - ctrl.timeRest);
}

bool patrolReadIsScheduled(const Controller& ctrl) {
    const PatrolRead& patrol = ctrl.patrolRead;
    return patrol.mode == kAutomatic && patrol.frequency != 0 && !patrol.running;
}

bool learningIsScheduled(const Controller& ctrl) {
    constexpr std::uint32_t kNoPack = 1U << 0 | 1U << 10;
    return ctrl.cacheBackup && ctrl.cacheBackup->autoLearn == kAutomatic && ctrl.cacheBackup->learnPeriod != 0 &&
           !ctrl.cacheBackup->learn && (ctrl.cacheBackup->status & kNoPack) == 0;
}

double untilNextStart(const Controller& ctrl) {
    double wait = kNever;
    if (patrolReadIsScheduled(ctrl))
        wait = std::min(wait, untilTime(ctrl, ctrl.patrolRead.nextExecution));
    if (learningIsScheduled(ctrl))
        wait = std::min(wait, untilTime(ctrl, ctrl.cacheBackup->nextLearn));
    return wait;
}

bool startScheduled(Controller& ctrl) {
    bool started = false;
    PatrolRead& patrol = ctrl.patrolRead;
    if (patrolReadIsScheduled(ctrl) && patrol.nextExecution <= ctrl.time) {
        beginPatrolRead(ctrl);
        // The next turn lies ahead also when this one was missed for long. Nothing is due more often than once an hour.
        const std::uint64_t period = std::max<std::uint64_t>(patrol.frequency, 3600);
        const std::uint64_t next = patrol.nextExecution + ((ctrl.time - patrol.nextExecution) / period + 1) * period;
        patrol.nextExecution = static_cast<std::uint32_t>(std::min<std::uint64_t>(next, UINT32_MAX));
        started = true;
    }
    if (learningIsScheduled(ctrl) && ctrl.cacheBackup->nextLearn <= ctrl.time) {
        ctrl.cacheBackup->learn = Progress{};
        started = true;
    }
    return started;
}

void moveClock(Controller& ctrl, double seconds) {
    const double whole = std::floor(ctrl.timeRest + seconds);
    ctrl.timeRest = std::clamp(ctrl.timeRest + seconds - whole, 0.0, 1.0);
    ctrl.time += static_cast<std::uint32_t>(whole);
}

/// Ends what is complete. An end may take other work with it, which is passed over then.
bool finishComplete(Controller& ctrl) {
    constexpr double kMoment = 1e-6; // seconds; shorter rests are rounding
    std::vector<Job> jobs = jobsOf(ctrl);
    std::erase_if(jobs, [](const Job& job) { return timeLeft(job) > kMoment; });
    for (const Job& job : jobs) {
        if (!job.task->has_value())
            continue;
        job.task->reset();
        job.finish(ctrl, job.owner);
    }
    return !jobs.empty();
}

bool advanceController(Controller& ctrl, double seconds) {
    constexpr double kShortestStep = 1e-3;
    bool moved = false;
    while (seconds > 0) {
        moved = finishComplete(ctrl) || moved;
        moved = startScheduled(ctrl) || moved;
        double step = std::min(seconds, std::max(kShortestStep, untilNextStart(ctrl)));
        std::vector<Job> jobs = jobsOf(ctrl);
        for (const Job& job : jobs)
            step = std::min(step, timeLeft(job));
        for (const Job& job : jobs) {
            Progress& progress = **job.task;
            progress.percent = std::min<double>(kWholePercent, progress.percent + step / job.duration * kWholePercent);
            progress.elapsed += step;
            moved = true;
        }
        moveClock(ctrl, step);
        seconds -= step;
    }
    return finishComplete(ctrl) || moved;
}

} // namespace

bool beginPatrolRead(Controller& ctrl) {
    const auto isExcluded = [&](const Drive& drive) {
        const Array* array = arrayOfDrive(ctrl, drive.deviceId);
        const auto& excluded = ctrl.patrolRead.excludedLds;
        return std::any_of(ctrl.lds.begin(), ctrl.lds.end(), [&](const LogicalDrive& ld) {
            return array != nullptr && usesArray(ld, array->ref) &&
                   std::find(excluded.begin(), excluded.end(), ld.id) != excluded.end();
        });
    };
    std::size_t started = 0;
    for (Drive& drive : ctrl.drives) {
        const bool wanted = drive.state == kPdOnline && drive.media == kHdd && !isExcluded(drive);
        if (!wanted || started == ctrl.patrolRead.maxPds)
            continue;
        drive.patrolRead = Progress{};
        ++started;
    }
    ctrl.patrolRead.running = started != 0;
    return started != 0;
}

bool advance(Model& model, double seconds) {
    constexpr double kMost = 365.25 * 86400;
    bool moved = false;
    for (Controller& ctrl : model.controllers) {
        const double left = static_cast<double>(std::numeric_limits<std::uint32_t>::max()) - ctrl.time - 1;
        moved = advanceController(ctrl, std::min({seconds, kMost, left})) || moved;
    }
    return moved;
}

} // namespace zebsim
