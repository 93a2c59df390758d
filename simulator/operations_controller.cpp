// Operations on the controller itself: properties, patrol read, learn cycle, foreign configurations.
#include "simulator/background.h"
#include "simulator/consequences.h"
#include "simulator/operations.h"
#include "storelib/records/controller.h"

#include <algorithm>
#include <utility>

namespace zebsim {

namespace {

bool isStale(const Call& call) {
    return call.request.ref.ctrlSeqNo != call.ctrl.properties.seq;
}

bool ratesAreValid(const _MR_CTRL_PROP& record) {
    return record.rebuildRate <= kWholePercent && record.patrolReadRate <= kWholePercent &&
           record.bgiRate <= kWholePercent && record.ccRate <= kWholePercent && record.reconRate <= kWholePercent;
}

/// Takes over a written record. The bytes that have a field of their own are zeroed among the others.
void decodeProperties(Properties& properties, _MR_CTRL_PROP record) {
    properties.rebuildRate = std::exchange(record.rebuildRate, std::uint8_t{0});
    properties.patrolReadRate = std::exchange(record.patrolReadRate, std::uint8_t{0});
    properties.bgiRate = std::exchange(record.bgiRate, std::uint8_t{0});
    properties.ccRate = std::exchange(record.ccRate, std::uint8_t{0});
    properties.reconRate = std::exchange(record.reconRate, std::uint8_t{0});
    properties.cacheFlushInterval = std::exchange(record.cacheFlushInterval, std::uint8_t{0});
    properties.alarmEnable = std::exchange(record.alarmEnable, std::uint8_t{0});
    properties.disableAutoRebuild = std::exchange(record.disableAutoRebuild, std::uint8_t{0});
    properties.onOff = record.onOff;
    record.onOff = 0;
    record.seqNo = 0;
    std::memcpy(properties.otherBytes.data(), &record, sizeof record);
}

std::uint16_t lowestFree(const std::vector<std::uint16_t>& used) {
    std::uint16_t candidate = 0;
    while (std::find(used.begin(), used.end(), candidate) != used.end())
        ++candidate;
    return candidate;
}

/// Moves a foreign configuration in. Array references and LD ids that are taken get the lowest free ones.
void adopt(Controller& ctrl, const ForeignConfig& foreign) {
    std::vector<std::pair<std::uint16_t, std::uint16_t>> renamed;
    for (Array array : foreign.arrays) {
        std::vector<std::uint16_t> used;
        for (const Array& own : ctrl.arrays)
            used.push_back(own.ref);
        const std::uint16_t old = array.ref;
        if (findArray(ctrl, old) != nullptr)
            array.ref = lowestFree(used);
        renamed.emplace_back(old, array.ref);
        for (const std::uint16_t id : array.drives) {
            Drive* drive = findDrive(ctrl, id);
            if (drive == nullptr)
                continue;
            drive->foreign = false;
            changeDriveState(ctrl, *drive, drive->state == kPdUnconfiguredBad ? kPdOffline : kPdOnline);
        }
        ctrl.arrays.push_back(array);
    }
    for (LogicalDrive ld : foreign.lds) {
        std::vector<std::uint16_t> used;
        for (const LogicalDrive& own : ctrl.lds)
            used.push_back(own.id);
        if (findLd(ctrl, ld.id) != nullptr)
            ld.id = static_cast<std::uint8_t>(lowestFree(used));
        for (Span& span : ld.spans) {
            const std::uint16_t old = span.array;
            for (const auto& [from, to] : renamed)
                span.array = from == old ? to : span.array;
        }
        ld.state = derivedLdState(ctrl, ld, ctrl.arrays);
        ctrl.lds.push_back(ld);
    }
}

} // namespace

std::uint32_t setCtrlProperties(Call& call) {
    if (isStale(call))
        return kInvalidSequence;
    const auto record = received<_MR_CTRL_PROP>(call);
    Properties& properties = call.ctrl.properties;
    if (!ratesAreValid(record))
        return kInvalidParameter;
    if (!call.ctrl.alarm && record.alarmEnable != 0 && record.alarmEnable != properties.alarmEnable)
        return kHardwareMissing;
    decodeProperties(properties, record);
    ++properties.seq;
    startSpares(call.ctrl);
    return changed(call);
}

std::uint32_t setPatrolReadProperties(Call& call) {
    constexpr std::uint8_t kDisabled = 2;
    constexpr unsigned kMostExcluded = 64;
    if (isStale(call))
        return kInvalidSequence;
    const auto record = received<_MR_PR_PROPERTIES>(call);
    PatrolRead& patrol = call.ctrl.patrolRead;
    if (record.mode > kDisabled || record.excludedLdCount > kMostExcluded)
        return kInvalidParameter;
    patrol.mode = record.mode;
    patrol.maxPds = record.maxPds;
    patrol.excludedLds.clear();
    for (unsigned i = 0; i < record.excludedLdCount; ++i)
        patrol.excludedLds.push_back(std::uint16_t{record.excludedLd[i]});
    patrol.nextExecution = record.nextExecution;
    patrol.frequency = record.executionFrequency;
    patrol.clearFrequency = record.clearFrequency;
    ++call.ctrl.properties.seq;
    return changed(call);
}

std::uint32_t startPatrolRead(Call& call) {
    constexpr std::uint8_t kDisabled = 2;
    if (call.ctrl.patrolRead.mode == kDisabled)
        return kPatrolReadDisabled;
    if (call.ctrl.patrolRead.running)
        return kAlreadyRunning;
    if (!beginPatrolRead(call.ctrl))
        return kNoPatrolReadDrive;
    return changed(call);
}

std::uint32_t stopPatrolRead(Call& call) {
    if (!call.ctrl.patrolRead.running)
        return kWrongState;
    for (Drive& drive : call.ctrl.drives)
        drive.patrolRead.reset();
    call.ctrl.patrolRead.running = false;
    return changed(call);
}

std::uint32_t startLearnCycle(Call& call, CacheBackup& unit) {
    constexpr std::uint32_t kReplacePack = 1U << 10;
    constexpr std::uint32_t kPackMissing = 1U << 0;
    if (unit.learn)
        return kAlreadyRunning;
    if ((unit.status & (kReplacePack | kPackMissing)) != 0)
        return kWrongState;
    unit.learn = Progress{};
    return changed(call);
}

std::uint32_t setMfcDefaults(Call& call, const _SL_DCMD_INPUT_T&) {
    std::copy_n(call.input.begin(), call.ctrl.mfcDefaults.size(), call.ctrl.mfcDefaults.begin());
    return changed(call);
}

std::uint32_t importForeign(Call& call) {
    constexpr std::size_t kMostArrays = 128;
    Controller& ctrl = call.ctrl;
    if (ctrl.foreign.empty() || call.request.ref.all != kAllForeignConfigs)
        return kItemNotFound;
    Controller merged = ctrl;
    for (const ForeignConfig& foreign : ctrl.foreign)
        adopt(merged, foreign);
    if (merged.lds.size() > ctrl.maxLds || merged.lds.size() > 64 || merged.arrays.size() > kMostArrays)
        return kTooManyLds;
    const bool incomplete =
        std::any_of(merged.lds.begin() + static_cast<std::ptrdiff_t>(ctrl.lds.size()), merged.lds.end(),
                    [](const LogicalDrive& ld) { return ld.state == kLdOffline; });
    if (incomplete)
        return kForeignIncomplete;
    merged.foreign.clear();
    ctrl = std::move(merged);
    startSpares(ctrl);
    return changed(call);
}

std::uint32_t clearForeign(Call& call) {
    if (call.request.ref.all != kAllForeignConfigs)
        return kItemNotFound;
    for (Drive& drive : call.ctrl.drives) {
        if (!drive.foreign)
            continue;
        drive.foreign = false;
        ++drive.seq;
        call.changed = true;
    }
    call.ctrl.foreign.clear();
    return kSuccess;
}

} // namespace zebsim
