// One request on its way through the simulator.
#pragma once

#include "simulator/model.h"
#include "storelib/records/request.h"

#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace zebsim {

/// Status codes that the simulator answers.
enum Status : std::uint32_t {
    kSuccess = 0x00,
    kInvalidOpcode = 0x02,
    kInvalidParameter = 0x03,
    kInvalidSequence = 0x04,
    kInvalidArray = 0x09,
    kConflict = 0x0B,
    kDeviceNotFound = 0x0C,
    kDriveTooSmall = 0x0D,
    kInitInProgress = 0x18,
    kTooManyLds = 0x1A,
    kLdNotOptimal = 0x1B,
    kRebuildInProgress = 0x1C,
    kReconstructionInProgress = 0x1D,
    kWrongLevel = 0x1E,
    kTooManySpares = 0x1F,
    kHardwareMissing = 0x22,
    kItemNotFound = 0x23,
    kClearInProgress = 0x25,
    kMixedInterface = 0x26,
    kPatrolReadDisabled = 0x27,
    kScsiStatus = 0x2D,
    kWrongState = 0x32,
    kForeignIncomplete = 0x3B,
    kCachePinned = 0x54,
    kAlreadyRunning = 0x55,
    kNoPatrolReadDrive = 0x58,
    kNotInitialized = 0x8001,
    kInitFailed = 0x8002,
    kBadController = 0x800A,
    kNullData = 0x800B,
    kShortData = 0x800C,
    kInvalidType = 0x800D,
    kInvalidCommand = 0x800E,
    kOsFailure = 0x8017,
    kPartitionFailure = 0x8023,
};

using Bytes = std::vector<std::uint8_t>;

/// A request that has found its controller.
struct Call {
    Model& model;
    Controller& ctrl;
    const _SL_LIB_CMD_PARAM_T& request;
    std::span<const std::uint8_t> input; ///< what came in: written data, a DCMD's payload, a SCSI header
    Bytes answer; ///< what goes back; cut to the caller's room
    bool changed = false; ///< the model is no longer what it was
};
using Handler = std::uint32_t (*)(Call&);

/// Adds a record to the answer.
template <class Record>
void reply(Call& call, const Record& record) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(&record);
    call.answer.insert(call.answer.end(), bytes, bytes + sizeof record);
}

/// The incoming bytes as a record; zeros where they end early.
template <class Record>
Record received(const Call& call) {
    Record record{};
    std::memcpy(&record, call.input.data(), std::min(sizeof record, call.input.size()));
    return record;
}

/// Puts text into a field, cut to its width and filled up; a text of the field's full width has no NUL behind it.
template <std::size_t N>
void putText(char (&field)[N], const std::string& text, char filler = '\0') {
    std::memset(field, filler, N);
    std::memcpy(field, text.data(), std::min(N, text.size()));
}

/// Notes that the model is no longer what it was. Returns success, for an operation to end with.
inline std::uint32_t changed(Call& call) {
    call.changed = true;
    return kSuccess;
}

// Handlers for what a request names: withDrive<f> finds the drive and hands it to f, or answers that there is none.
// With fresh<f> in place of f the drive must be named with its present sequence number, so that nobody changes it who
// has not seen its last change.

using DriveHandler = std::uint32_t (*)(Call&, Drive&);
using LdHandler = std::uint32_t (*)(Call&, LogicalDrive&);
using BackupUnitHandler = std::uint32_t (*)(Call&, CacheBackup&);

template <DriveHandler handler>
std::uint32_t withDrive(Call& call) {
    Drive* drive = findDrive(call.ctrl, call.request.ref.pdRef.deviceId);
    return drive == nullptr ? std::uint32_t{kDeviceNotFound} : handler(call, *drive);
}

template <LdHandler handler>
std::uint32_t withLd(Call& call) {
    LogicalDrive* ld = findLd(call.ctrl, call.request.ref.ldRef.targetId);
    return ld == nullptr ? std::uint32_t{kDeviceNotFound} : handler(call, *ld);
}

template <DriveHandler handler>
std::uint32_t fresh(Call& call, Drive& drive) {
    return drive.seq == call.request.ref.pdRef.seqNo ? handler(call, drive) : std::uint32_t{kInvalidSequence};
}

template <LdHandler handler>
std::uint32_t fresh(Call& call, LogicalDrive& ld) {
    return ld.seq == call.request.ref.ldRef.seqNo ? handler(call, ld) : std::uint32_t{kInvalidSequence};
}

template <BackupUnitHandler handler>
std::uint32_t withBackupUnit(Call& call) {
    return call.ctrl.cacheBackup ? handler(call, *call.ctrl.cacheBackup) : std::uint32_t{kHardwareMissing};
}

} // namespace zebsim
