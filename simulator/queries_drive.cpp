#include "simulator/queries.h"

#include <algorithm>

namespace zebsim {

namespace {

std::uint8_t enclosureIndexOf(const Controller& ctrl, std::uint16_t enclosureId) {
    const Enclosure* enclosure = findEnclosure(ctrl, enclosureId);
    return enclosure == nullptr ? std::uint8_t{0xFF} : enclosure->index;
}

_MR_PD_PROGRESS encodeDriveProgress(const Drive& drive) {
    _MR_PD_PROGRESS record{};
    record.active = (drive.rebuild ? kPdProgRebuild : 0U) | (drive.patrolRead ? kPdProgPatrolRead : 0U) |
                    (drive.clear ? kPdProgClear : 0U) | (drive.copyback ? kPdProgCopyback : 0U);
    // A copyback reports in the rebuild's place.
    record.rebuild = encodeProgress(drive.rebuild ? drive.rebuild : drive.copyback);
    record.patrolRead = encodeProgress(drive.patrolRead);
    record.clear = encodeProgress(drive.clear);
    return record;
}

std::uint16_t ddfTypeOf(const Controller& ctrl, const Drive& drive) {
    unsigned type = unsigned{drive.interface} << kDdfInterfaceShift;
    const Array* array = arrayOfDrive(ctrl, drive.deviceId);
    if (array != nullptr && !ldsOfArray(ctrl, array->ref).empty())
        type |= kDdfInLd;
    const Spare* spare = findSpare(ctrl, drive.deviceId);
    if (spare != nullptr)
        type |= spare->arrays.empty() ? kDdfGlobalSpare | kDdfSpare : kDdfSpare;
    if (drive.foreign)
        type |= kDdfForeign;
    return static_cast<std::uint16_t>(type);
}

void encodeInquiry(_MR_INQUIRY_DATA& inquiry, const Drive& drive) {
    constexpr std::uint8_t kSpc3 = 5;
    constexpr std::uint8_t kAdditionalLength = sizeof inquiry - 5;
    inquiry.header[2] = kSpc3;
    inquiry.header[3] = 2;
    inquiry.header[4] = kAdditionalLength;
    putText(inquiry.vendor, drive.vendor, ' ');
    putText(inquiry.product, drive.product, ' ');
    putText(inquiry.revision, drive.revision, ' ');
}

void encodePaths(_MR_PD_INFO& info, const Drive& drive) {
    info.pathCount = drive.pathCount;
    for (std::size_t i = 0; i < drive.sasAddresses.size(); ++i)
        info.sasAddr[i] = drive.sasAddresses[i];
}

} // namespace

std::uint32_t getPdList(Call& call) {
    _MR_PD_LIST list{};
    const auto room = std::size(list.addr);
    // Enclosures come first: nobody may rely on an order, nor take them for drives.
    for (const Enclosure& enclosure : call.ctrl.enclosures) {
        if (enclosure.type != kEnclSes || list.count == room)
            continue;
        _MR_PD_ADDRESS& entry = list.addr[list.count++];
        entry.deviceId = enclosure.deviceId;
        entry.enclDeviceId = enclosure.deviceId;
        entry.enclIndex = enclosure.index;
        entry.scsiDevType = kScsiEnclosure;
        entry.sasAddr[0] = enclosure.logicalId;
    }
    for (const Drive& drive : call.ctrl.drives) {
        if (list.count == room)
            break;
        _MR_PD_ADDRESS& entry = list.addr[list.count++];
        entry.deviceId = drive.deviceId;
        entry.enclDeviceId = drive.enclosureId;
        entry.enclIndex = enclosureIndexOf(call.ctrl, drive.enclosureId);
        entry.slotNo = drive.slot;
        entry.scsiDevType = kScsiDisk;
        entry.connectedPorts = static_cast<std::uint8_t>((1U << std::min<std::size_t>(drive.pathCount, 4)) - 1);
        for (std::size_t i = 0; i < std::min<std::size_t>(2, drive.sasAddresses.size()); ++i)
            entry.sasAddr[i] = drive.sasAddresses[i];
    }
    list.size = static_cast<std::uint32_t>(offsetof(_MR_PD_LIST, addr) + list.count * sizeof list.addr[0]);
    reply(call, list);
    return kSuccess;
}

std::uint32_t getPdInfo(Call& call, Drive& drive) {
    _MR_PD_INFO info{};
    info.ref = {drive.deviceId, drive.seq};
    encodeInquiry(info.inquiry, drive);
    info.scsiDevType = kScsiDisk;
    info.deviceSpeed = drive.deviceSpeed;
    info.linkSpeed = drive.linkSpeed;
    info.mediaErrorCount = drive.mediaErrors;
    info.otherErrorCount = drive.otherErrors;
    info.predFailCount = drive.predictiveFailures;
    info.fwState = drive.state;
    info.ddfType = ddfTypeOf(call.ctrl, drive);
    encodePaths(info, drive);
    info.rawSize = drive.rawBlocks;
    info.coercedSize = drive.blocks;
    info.enclDeviceId = drive.enclosureId;
    info.enclIndex = enclosureIndexOf(call.ctrl, drive.enclosureId);
    info.slotNo = drive.slot;
    info.progress = encodeDriveProgress(drive);
    info.powerState = drive.powerState;
    info.allowedOps = allowedPdOps(call.ctrl, drive);
    info.copybackPartner = drive.copybackPartner;
    info.mediaType = drive.media;
    reply(call, info);
    return kSuccess;
}

std::uint32_t getPdProgress(Call& call, Drive& drive) {
    reply(call, encodeDriveProgress(drive));
    return kSuccess;
}

std::uint32_t allowedPdOps(const Controller& ctrl, const Drive& drive) {
    if (drive.state != kPdOffline && drive.state != kPdFailed)
        return 0;
    const Array* array = arrayOfDrive(ctrl, drive.deviceId);
    if (array == nullptr)
        return 0;
    const auto lds = ldsOfArray(ctrl, array->ref);
    const bool redundant =
        std::any_of(lds.begin(), lds.end(), [](const LogicalDrive* ld) { return isRedundant(ld->level); });
    return redundant ? kPdOpStartRebuild : 0;
}

std::uint32_t getPdAllowedOps(Call& call, Drive& drive) {
    reply(call, _MR_PD_ALLOWED_OPS{allowedPdOps(call.ctrl, drive)});
    return kSuccess;
}

} // namespace zebsim
