// Snapshot controller commands. The simulator keeps which LDs are snapshot sources; copies and views leave no trace in
// it.
#include "simulator/passthrough.h"

namespace zebsim {

namespace {

/// The head of both answers: how long it is, and whose it is.
struct SnapshotRecord {
    std::uint32_t size;
    std::uint32_t targetId;
    std::uint64_t blocks;
    std::uint8_t reserved[48];
};
static_assert(sizeof(SnapshotRecord) == 64);

std::uint32_t replyRecord(Call& call, const LogicalDrive& ld) {
    SnapshotRecord record{};
    record.size = sizeof record;
    record.targetId = ld.id;
    record.blocks = ldBlocks(call.ctrl, ld);
    reply(call, record);
    return kSuccess;
}

} // namespace

std::uint32_t enableSnapshot(Call& call, const _SL_DCMD_INPUT_T& dcmd) {
    LogicalDrive* ld = findLd(call.ctrl, dcmd.mailbox[0]);
    if (ld == nullptr)
        return kDeviceNotFound;
    if (ld->snapshotSource)
        return kWrongState;
    ld->snapshotSource = true;
    ++ld->seq;
    return changed(call);
}

std::uint32_t disableSnapshot(Call& call, const _SL_DCMD_INPUT_T& dcmd) {
    LogicalDrive* ld = findLd(call.ctrl, dcmd.mailbox[0]);
    if (ld == nullptr)
        return kDeviceNotFound;
    if (!ld->snapshotSource)
        return kWrongState;
    ld->snapshotSource = false;
    ++ld->seq;
    return changed(call);
}

std::uint32_t changeSnapshot(Call& call, const _SL_DCMD_INPUT_T& dcmd) {
    const LogicalDrive* ld = findLd(call.ctrl, dcmd.mailbox[0]);
    if (ld == nullptr)
        return kDeviceNotFound;
    if (!ld->snapshotSource)
        return kItemNotFound;
    call.answer.assign(call.input.begin(), call.input.end());
    return kSuccess;
}

std::uint32_t getSnapshotInfo(Call& call, const _SL_DCMD_INPUT_T& dcmd) {
    const LogicalDrive* ld = findLd(call.ctrl, dcmd.mailbox[0]);
    if (ld == nullptr)
        return kDeviceNotFound;
    return ld->snapshotSource ? replyRecord(call, *ld) : std::uint32_t{kItemNotFound};
}

std::uint32_t getRepositorySpace(Call& call, const _SL_DCMD_INPUT_T& dcmd) {
    const LogicalDrive* ld = findLd(call.ctrl, dcmd.mailbox[0]);
    if (ld == nullptr)
        return kDeviceNotFound;
    return ld->repository ? replyRecord(call, *ld) : std::uint32_t{kItemNotFound};
}

} // namespace zebsim
