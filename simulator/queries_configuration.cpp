#include "simulator/queries.h"

#include <algorithm>

namespace zebsim {

namespace {

_MR_ARRAY_PD encodeArrayDrive(const Controller& ctrl, std::uint16_t deviceId) {
    constexpr std::uint8_t kNowhere = 0xFF;
    const Drive* drive = findDrive(ctrl, deviceId);
    if (drive == nullptr)
        return {{kNoDevice, 0}, kPdOffline, kNowhere, kNowhere};
    const Enclosure* enclosure = findEnclosure(ctrl, drive->enclosureId);
    return {
        {drive->deviceId, drive->seq}, drive->state, enclosure == nullptr ? kNowhere : enclosure->index, drive->slot};
}

template <std::size_t N>
void encodeArrayDrives(_MR_ARRAY_PD (&table)[N], const Controller& ctrl, const Array& array) {
    for (std::size_t i = 0; i < array.drives.size(); ++i)
        table[i] = encodeArrayDrive(ctrl, array.drives[i]);
}

_MR_ARRAY encodeArray(const Controller& ctrl, const Array& array) {
    _MR_ARRAY record{};
    record.size = array.blocks;
    record.numDrives = static_cast<std::uint8_t>(array.drives.size());
    record.arrayRef = array.ref;
    encodeArrayDrives(record.pd, ctrl, array);
    return record;
}

_MR_SPARE encodeSpare(const Controller& ctrl, const Spare& spare) {
    constexpr unsigned kRevertible = 1U << 1;
    constexpr unsigned kAffinity = 1U << 2;
    _MR_SPARE record{};
    const Drive* drive = findDrive(ctrl, spare.deviceId);
    record.ref = {spare.deviceId, drive == nullptr ? std::uint16_t{0} : drive->seq};
    record.type =
        static_cast<std::uint8_t>((spare.arrays.empty() ? 0U : kSpareDedicated) |
                                  (spare.revertible ? kRevertible : 0U) | (spare.enclosureAffinity ? kAffinity : 0U));
    record.arrayCount = static_cast<std::uint8_t>(spare.arrays.size());
    for (std::size_t i = 0; i < spare.arrays.size(); ++i)
        record.arrayRef[i] = spare.arrays[i];
    return record;
}

/// The record of a configuration: its head names the whole size, also when the caller has room for less.
void replyConfig(Call& call, const std::vector<Array>& arrays, const std::vector<LogicalDrive>& lds,
                 const std::vector<Spare>& spares) {
    _MR_CONFIG_DATA head{};
    head.arrayCount = static_cast<std::uint16_t>(arrays.size());
    head.arraySize = sizeof(_MR_ARRAY);
    head.ldCount = static_cast<std::uint16_t>(lds.size());
    head.ldSize = sizeof(_MR_LD_CONFIG);
    head.spareCount = static_cast<std::uint16_t>(spares.size());
    head.spareSize = sizeof(_MR_SPARE);
    head.size = static_cast<std::uint32_t>(sizeof head + arrays.size() * sizeof(_MR_ARRAY) +
                                           lds.size() * sizeof(_MR_LD_CONFIG) + spares.size() * sizeof(_MR_SPARE));
    reply(call, head);
    for (const Array& array : arrays)
        reply(call, encodeArray(call.ctrl, array));
    for (const LogicalDrive& ld : lds)
        reply(call, encodeLdConfig(ld, arrays));
    for (const Spare& spare : spares)
        reply(call, encodeSpare(call.ctrl, spare));
}

/// Usable blocks of the RAID group that the array belongs to, by the level of its first LD.
std::uint64_t groupBlocks(const Controller& ctrl, const Array& array) {
    std::uint64_t total = 0;
    for (const Array* member : raidGroupOf(ctrl, array)) {
        const auto lds = ldsOfArray(ctrl, member->ref);
        total +=
            usableBlocks(lds.empty() ? std::uint8_t{0} : lds.front()->level, member->drives.size(), member->blocks);
    }
    return total;
}

} // namespace

std::uint32_t readConfig(Call& call) {
    replyConfig(call, call.ctrl.arrays, call.ctrl.lds, call.ctrl.spares);
    return kSuccess;
}

std::uint32_t scanForeign(Call& call) {
    _MR_FOREIGN_CFG_GUIDS record{};
    for (const ForeignConfig& foreign : call.ctrl.foreign) {
        std::memcpy(record.guid[record.count], foreign.guid.data(),
                    std::min(sizeof record.guid[0], foreign.guid.size()));
        ++record.count;
    }
    reply(call, record);
    return kSuccess;
}

std::uint32_t readForeignConfig(Call& call) {
    std::vector<Array> arrays;
    std::vector<LogicalDrive> lds;
    for (const ForeignConfig& foreign : call.ctrl.foreign) {
        arrays.insert(arrays.end(), foreign.arrays.begin(), foreign.arrays.end());
        lds.insert(lds.end(), foreign.lds.begin(), foreign.lds.end());
    }
    replyConfig(call, arrays, lds, {});
    return kSuccess;
}

std::uint32_t getArrayInfo(Call& call) {
    const Array* array = findArray(call.ctrl, call.request.ref.arrayId);
    if (array == nullptr)
        return kInvalidArray;
    const auto lds = ldsOfArray(call.ctrl, array->ref);
    const auto free = freeSegments(call.ctrl, *array);
    _SL_ARRAY_INFO_T record{};
    record.arrayRef = array->ref;
    record.ldCount = static_cast<std::uint8_t>(lds.size());
    record.pdCount = static_cast<std::uint8_t>(array->drives.size());
    record.freeCount = static_cast<std::uint8_t>(std::min<std::size_t>(free.size(), kMaxFreeSegments));
    record.totalSize = groupBlocks(call.ctrl, *array);
    for (std::size_t i = 0; i < lds.size(); ++i)
        record.ldTargetId[i] = lds[i]->id;
    encodeArrayDrives(record.pd, call.ctrl, *array);
    for (std::size_t i = 0; i < record.freeCount; ++i)
        record.freeSegment[i] = {free[i].startBlock, free[i].blocks};
    reply(call, record);
    return kSuccess;
}

} // namespace zebsim
