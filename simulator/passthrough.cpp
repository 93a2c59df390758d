#include "simulator/passthrough.h"

#include "simulator/operations.h"
#include "simulator/queries.h"

#include <algorithm>

namespace zebsim {

namespace {

constexpr std::uint8_t kTemperaturePage = 0x0D;
constexpr std::uint32_t kSectorSize = 512;

/// LOG SENSE (SPC-3): the list of pages, and the temperature page where the drive has it.
std::uint32_t logSense(Call& call, const Drive& drive, std::uint8_t page) {
    if (page == 0) {
        Bytes pages{0x00, 0x02, 0x03};
        if (drive.temperature)
            pages.push_back(kTemperaturePage);
        pages.push_back(0x2F);
        call.answer = {0x00, 0x00, 0x00, static_cast<std::uint8_t>(pages.size())};
        call.answer.insert(call.answer.end(), pages.begin(), pages.end());
        return kSuccess;
    }
    if (page == kTemperaturePage && drive.temperature) {
        constexpr std::uint8_t kReference = 65;
        call.answer = {kTemperaturePage, 0, 0, 12, 0, 0, 0x03, 2, 0, *drive.temperature, 0, 1, 0x03, 2, 0, kReference};
        return kSuccess;
    }
    return kScsiStatus;
}

/// READ(10) (SBC-3). Only sector 0 holds anything: on a boot drive an MBR with one active partition.
void readSectors(Call& call, const Drive& drive, const std::uint8_t* cdb) {
    constexpr std::size_t kPartitionTable = 446;
    constexpr std::uint8_t kActive = 0x80;
    const std::uint32_t block =
        std::uint32_t{cdb[2]} << 24 | std::uint32_t{cdb[3]} << 16 | std::uint32_t{cdb[4]} << 8 | cdb[5];
    const std::uint32_t count = std::uint32_t{cdb[7]} << 8 | cdb[8];
    call.answer.assign(std::size_t{count} * kSectorSize, 0);
    if (block != 0 || count == 0 || !drive.boot)
        return;
    call.answer[kPartitionTable] = kActive;
    call.answer[kPartitionTable + 4] = 0x83;
    call.answer[510] = 0x55;
    call.answer[511] = 0xAA;
}

std::uint32_t getTime(Call& call, const _SL_DCMD_INPUT_T&) {
    reply(call, call.ctrl.time);
    return kSuccess;
}

std::uint32_t getMfcDefaults(Call& call, const _SL_DCMD_INPUT_T&) {
    reply(call, call.ctrl.mfcDefaults);
    return kSuccess;
}

std::uint32_t getConnectors(Call& call, const _SL_DCMD_INPUT_T&) {
    if (call.ctrl.connectors.empty())
        return kHardwareMissing;
    reply(call, encodeConnectors(call.ctrl));
    return kSuccess;
}

using DcmdHandler = std::uint32_t (*)(Call&, const _SL_DCMD_INPUT_T&);

struct Dcmd {
    std::uint32_t opcode;
    std::uint8_t direction;
    std::uint32_t size; ///< least number of data bytes
    DcmdHandler handler;
};

constexpr Dcmd kDcmds[] = {
    {0x01080201, kDcmdFromController, 4, getTime},
    {0x010E0201, kDcmdFromController, 72, getMfcDefaults},
    {0x010E0202, kDcmdToController, 72, setMfcDefaults},
    {0x04020000, kDcmdToController, sizeof(_MR_CONFIG_DATA), addConfiguration},
    {0x07030000, kDcmdFromController, 168, getConnectors},
    {0x030F0100, kDcmdToController, 16, enableSnapshot},
    {0x030F0200, kDcmdNone, 0, disableSnapshot},
    {0x030F0300, kDcmdBoth, 1, changeSnapshot},
    {0x030F0400, kDcmdToController, 8, changeSnapshot},
    {0x030F0500, kDcmdBoth, 72, changeSnapshot},
    {0x030F0600, kDcmdBoth, 8, changeSnapshot},
    {0x030F0800, kDcmdFromController, 4, getSnapshotInfo},
    {0x030F0C00, kDcmdFromController, 4, getRepositorySpace},
};

} // namespace

std::uint32_t scsiPassThrough(Call& call) {
    constexpr std::uint8_t kLogSense = 0x4D;
    constexpr std::uint8_t kRead10 = 0x28;
    constexpr std::uint8_t kPageBits = 0x3F;
    const auto header = received<_SL_SCSI_PASSTHRU_T>(call);
    const Drive* drive = findDrive(call.ctrl, header.deviceId);
    if (header.deviceId != call.request.ref.pdRef.deviceId)
        return kInvalidParameter;
    if (drive == nullptr)
        return kDeviceNotFound;
    if (header.direction != kDcmdFromController || header.cdbLength != sizeof header.cdb)
        return kInvalidParameter;
    if (header.cdb[0] == kLogSense)
        return logSense(call, *drive, header.cdb[2] & kPageBits);
    if (header.cdb[0] != kRead10)
        return kScsiStatus;
    readSectors(call, *drive, header.cdb);
    return kSuccess;
}

std::uint32_t dcmdPassThrough(Call& call, const _SL_DCMD_INPUT_T& dcmd) {
    constexpr std::uint32_t kInvalidDirection = 0x8104;
    const std::uint32_t opcode = dcmd.opcode;
    const auto* known =
        std::find_if(std::begin(kDcmds), std::end(kDcmds), [=](const Dcmd& d) { return d.opcode == opcode; });
    if (known == std::end(kDcmds))
        return kInvalidOpcode;
    if (dcmd.direction != known->direction)
        return kInvalidDirection;
    if (dcmd.dataSize < known->size)
        return kShortData;
    return known->handler(call, dcmd);
}

} // namespace zebsim
