#include "simulator/queries.h"

#include <algorithm>

namespace zebsim {

namespace {

struct LevelCode {
    std::uint8_t primary;
    std::uint8_t qualifier;
};

LevelCode levelCode(std::uint8_t level) {
    constexpr std::uint8_t kRotatingParity = 3;
    if (level == 5 || level == 6)
        return {level, kRotatingParity};
    return {level == 10 ? std::uint8_t{1} : level, 0};
}

_MR_LD_PROPERTIES encodeLdProperties(const LogicalDrive& ld) {
    _MR_LD_PROPERTIES record{};
    record.ref.targetId = ld.id;
    record.ref.seqNo = ld.seq;
    putText(record.name, ld.name);
    record.defaultCachePolicy = ld.cachePolicy;
    record.accessPolicy = ld.accessPolicy;
    record.diskCachePolicy = ld.diskCachePolicy;
    record.currentCachePolicy = ld.currentCachePolicy;
    record.noBgi = ld.noBackgroundInit ? 1 : 0;
    record.snapshotFlags = ld.snapshotFlags;
    return record;
}

_MR_LD_PROGRESS encodeLdProgress(const LogicalDrive& ld) {
    _MR_LD_PROGRESS record{};
    record.active = (ld.check ? kLdProgCheck : 0U) | (ld.backgroundInit ? kLdProgBgi : 0U) |
                    (ld.init ? kLdProgInit : 0U) | (ld.reconstruction ? kLdProgRecon : 0U);
    record.cc = encodeProgress(ld.check);
    record.bgi = encodeProgress(ld.backgroundInit);
    record.init = encodeProgress(ld.init);
    record.recon = encodeProgress(ld.reconstruction);
    return record;
}

/// The bits of the LD operations that its state and level admit: start initialisation, consistency check, delete.
std::uint32_t allowedLdOps(const LogicalDrive& ld) {
    constexpr std::uint32_t kDelete = 1U << 0;
    constexpr std::uint32_t kStartInit = 1U << 1;
    constexpr std::uint32_t kStartCheck = 1U << 2;
    const bool busy = ld.check || ld.init || ld.reconstruction;
    std::uint32_t ops = busy ? 0 : kDelete;
    if (!busy && ld.state != kLdOffline)
        ops |= kStartInit;
    if (!busy && ld.state == kLdOptimal && isRedundant(ld.level))
        ops |= kStartCheck;
    return ops;
}

} // namespace

_MR_LD_CONFIG encodeLdConfig(const LogicalDrive& ld, const std::vector<Array>& arrays) {
    constexpr std::uint8_t kSpanned = 3;
    _MR_LD_CONFIG record{};
    const LevelCode code = levelCode(ld.level);
    record.properties = encodeLdProperties(ld);
    record.primaryRaidLevel = code.primary;
    record.raidLevelQualifier = code.qualifier;
    record.secondaryRaidLevel = ld.spans.size() > 1 ? kSpanned : std::uint8_t{0};
    record.stripeSize = ld.stripe;
    const auto array =
        std::find_if(arrays.begin(), arrays.end(), [&](const Array& a) { return a.ref == ld.spans.front().array; });
    record.numDrives = static_cast<std::uint8_t>(array == arrays.end() ? 0 : array->drives.size());
    record.spanDepth = static_cast<std::uint8_t>(ld.spans.size());
    record.state = ld.state;
    record.initState = ld.initState;
    record.isConsistent = ld.consistent ? 1 : 0;
    record.snapshotSource = ld.snapshotSource ? 1 : 0;
    record.cacheCade = ld.cacheCade ? 1 : 0;
    for (std::size_t i = 0; i < ld.spans.size(); ++i)
        record.span[i] = {ld.spans[i].startBlock, ld.spans[i].blocks, ld.spans[i].array, {}};
    return record;
}

std::uint32_t getLdList(Call& call) {
    _MR_LD_LIST list{};
    for (const LogicalDrive& ld : call.ctrl.lds) {
        _MR_LD_LIST_ENTRY& entry = list.ld[list.count++];
        entry.targetId = ld.id;
        entry.seqNo = ld.seq;
        entry.state = ld.state;
        entry.size = ldBlocks(call.ctrl, ld);
    }
    reply(call, list);
    return kSuccess;
}

std::uint32_t getLdInfo(Call& call, LogicalDrive& ld) {
    _MR_LD_INFO info{};
    info.config = encodeLdConfig(ld, call.ctrl.arrays);
    info.size = ldBlocks(call.ctrl, ld);
    info.progress = encodeLdProgress(ld);
    info.snapshotUse = ld.repository ? kLdIsRepository : std::uint8_t{0};
    reply(call, info);
    return kSuccess;
}

std::uint32_t getLdProperties(Call& call, LogicalDrive& ld) {
    reply(call, encodeLdProperties(ld));
    return kSuccess;
}

std::uint32_t getLdProgress(Call& call, LogicalDrive& ld) {
    reply(call, encodeLdProgress(ld));
    return kSuccess;
}

std::uint32_t getPdInLd(Call& call, LogicalDrive& ld) {
    _SL_PD_IN_LD_T record{};
    std::memset(record.deviceId, 0xFF, sizeof record.deviceId); // kNoDevice
    for (const Span& span : ld.spans) {
        const Array* array = findArray(call.ctrl, span.array);
        for (std::size_t i = 0; array != nullptr && i < array->drives.size(); ++i) {
            if (array->drives[i] != kNoDevice)
                record.deviceId[record.count++] = array->drives[i];
        }
    }
    reply(call, record);
    return kSuccess;
}

std::uint32_t getLdAllowedOps(Call& call, LogicalDrive& ld) {
    reply(call, _MR_LD_ALLOWED_OPS{allowedLdOps(ld)});
    return kSuccess;
}

} // namespace zebsim
