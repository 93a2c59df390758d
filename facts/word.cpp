#include "facts/word.h"

#include "storelib/records/logical_drive.h"
#include "storelib/records/physical_drive.h"

#include <algorithm>

namespace facts {

namespace {

constexpr WordRow kDriveStates[] = {
    {kPdUnconfiguredGood, "unconfigured_good"},
    {kPdUnconfiguredBad, "unconfigured_bad"},
    {kPdHotSpare, "hot_spare"},
    {kPdOffline, "offline"},
    {kPdFailed, "failed"},
    {kPdRebuild, "rebuild"},
    {kPdOnline, "online"},
    {kPdCopyback, "copyback"},
};

constexpr WordRow kLdStates[] = {
    {kLdOptimal, "optimal"},
    {kLdDegraded, "degraded"},
    {kLdPartiallyDegraded, "partially_degraded"},
    {kLdOffline, "offline"},
};

constexpr WordRow kSensorStatuses[] = {
    {0, "unsupported"},   {1, "ok"},      {2, "critical"},      {3, "noncritical"}, {4, "unrecoverable"},
    {5, "not_installed"}, {6, "unknown"}, {7, "not_available"},
};

// The codes are bits: first those of a drive's progress, then those of an LD's.
constexpr WordRow kOperationTypes[] = {
    {kPdProgRebuild, "rebuild"},     {kPdProgPatrolRead, "patrol_read"},  {kPdProgClear, "clear"},
    {kPdProgCopyback, "copyback"},   {kLdProgCheck, "consistency_check"}, {kLdProgBgi, "background_initialization"},
    {kLdProgInit, "initialization"}, {kLdProgRecon, "reconstruction"},
};

constexpr WordRow kCacheBackupStatuses[] = {
    {0, "pack_missing"},    {1, "voltage_low"},         {2, "temperature_high"}, {3, "charging"},
    {4, "discharging"},     {5, "learn_requested"},     {6, "learning"},         {7, "learn_failed"},
    {8, "learn_timed_out"}, {9, "communication_error"}, {10, "replace"},         {11, "capacity_low"},
};

} // namespace

Word wordFor(std::span<const WordRow> rows, std::uint32_t code) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const WordRow& r) { return r.code == code; });
    if (row == rows.end())
        return {kUnknownWord, code};
    return {row->text, std::nullopt};
}

std::span<const WordRow> physicalDriveStates() {
    return kDriveStates;
}

std::span<const WordRow> logicalDriveStates() {
    return kLdStates;
}

std::span<const WordRow> sensorStatuses() {
    return kSensorStatuses;
}

std::span<const WordRow> operationTypes() {
    return kOperationTypes;
}

std::span<const WordRow> cacheBackupStatuses() {
    return kCacheBackupStatuses;
}

} // namespace facts
