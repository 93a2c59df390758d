// The request that adds arrays and LDs to the configuration. What of it was concluded rather than published stands here
// and nowhere else.
#include "storelib/common/StoreLib/configuration_write.h"

#include "log/zebcli_log.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/common/StoreLib/passthrough.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/views.h"

#include <array>
#include <limits>

namespace {

constexpr std::uint32_t kAddConfiguration = 0x04020000;

/// How a level is written (SNIA DDF): the primary level, its qualifier (3: rotating parity with data continuation) and
/// the secondary level (3: spanned).
struct WireLevel {
    std::uint8_t primary;
    std::uint8_t qualifier;
    std::uint8_t secondary;
};
constexpr std::array<WireLevel, kRaidLevels> kWireLevels{{{0, 0, 0}, {1, 0, 0}, {5, 3, 0}, {6, 3, 0}, {1, 0, 3}}};

/// The data of the request: a configuration that holds only what is new.
struct Block {
    HeapRecord<_MR_CONFIG_DATA> head;
    std::uint32_t size;

    std::span<_MR_ARRAY> arrays() const { return arraysOf(head.get(), size); }
    std::span<_MR_LD_CONFIG> lds() const { return ldsOf(head.get(), size); }
};

/// A block with room for all of the plan, its head filled; without a head when there is no memory.
Block makeBlock(const _SL_CREATE_LD_INFO_T& plan) {
    std::size_t arrays = 0;
    std::size_t lds = 0;
    for (const PlannedArray& group : groupsOf(plan)) {
        arrays += spanCountOf(group);
        lds += ldsOf(group).size();
    }
    const std::size_t behind = arrays * sizeof(_MR_ARRAY) + lds * sizeof(_MR_LD_CONFIG);
    Block block{allocateRecord<_MR_CONFIG_DATA>(behind), static_cast<std::uint32_t>(sizeof(_MR_CONFIG_DATA) + behind)};
    if (block.head) {
        block.head->size = block.size;
        block.head->arrayCount = static_cast<std::uint16_t>(arrays);
        block.head->arraySize = sizeof(_MR_ARRAY);
        block.head->ldCount = static_cast<std::uint16_t>(lds);
        block.head->ldSize = sizeof(_MR_LD_CONFIG);
        block.head->spareSize = sizeof(_MR_SPARE);
    }
    return block;
}

/// An array of the drives in those slots, as they are now.
std::uint32_t fillNewArray(unsigned char contNo, std::uint16_t arrayRef, std::span<const std::uint8_t> slots,
                           _MR_ARRAY& array) {
    if (slots.empty() || slots.size() > std::size(array.pd))
        return kSlInvalidInput;
    std::uint64_t smallest = std::numeric_limits<std::uint64_t>::max();
    for (_MR_ARRAY_PD& place : array.pd)
        place.ref.deviceId = kNoDevice;
    for (std::size_t i = 0; i < slots.size(); ++i) {
        _MR_PD_INFO pd{};
        if (const std::uint32_t status = SLGetPDInfo(contNo, slots[i], &pd); status != kSlSuccess)
            return status;
        array.pd[i] = {pd.ref, kPdOnline, pd.enclIndex, pd.slotNo};
        smallest = std::min<std::uint64_t>(smallest, pd.coercedSize);
    }
    array.size = smallest;
    array.numDrives = static_cast<std::uint8_t>(slots.size());
    array.arrayRef = arrayRef;
    return kSlSuccess;
}

/// The arrays of a new group, one for each span.
std::uint32_t fillNewArrays(unsigned char contNo, const PlannedArray& group, std::span<_MR_ARRAY> arrays) {
    const auto slots = slotsOf(group);
    const std::size_t drives = slots.size() / arrays.size();
    for (std::size_t k = 0; k < arrays.size(); ++k)
        if (const std::uint32_t status =
                fillNewArray(contNo, group.arrayRef[k], slots.subspan(k * drives, drives), arrays[k]);
            status != kSlSuccess)
            return status;
    return kSlSuccess;
}

/// Gives arrays of the configuration the current sequence numbers of their drives, which are those of the group, in its
/// order.
std::uint32_t renewSequenceNumbers(unsigned char contNo, const PlannedArray& group, std::span<_MR_ARRAY> arrays) {
    auto slots = slotsOf(group);
    for (_MR_ARRAY& array : arrays)
        for (_MR_ARRAY_PD& place : drivesOf(array)) {
            if (place.ref.deviceId == kNoDevice)
                continue;
            if (slots.empty())
                return kSlDeviceNotFound;
            _MR_PD_INFO pd{};
            if (const std::uint32_t status = SLGetPDInfo(contNo, slots.front(), &pd); status != kSlSuccess)
                return status;
            if (pd.ref.deviceId != place.ref.deviceId)
                return kSlDeviceNotFound;
            place.ref.seqNo = pd.ref.seqNo;
            slots = slots.subspan(1);
        }
    return kSlSuccess;
}

/// The LDs of one group; all spans of an LD are equal.
void fillLds(const PlannedArray& group, std::uint8_t drivesPerSpan, std::span<_MR_LD_CONFIG> lds) {
    const unsigned spans = spanCountOf(group);
    for (std::size_t i = 0; i < lds.size(); ++i) {
        const PlannedLd& planned = group.ld[i];
        _MR_LD_CONFIG& ld = lds[i];
        ld.properties.ref.targetId = planned.ldNo;
        std::copy(std::begin(planned.name), std::end(planned.name), ld.properties.name);
        ld.properties.defaultCachePolicy = group.defaultCachePolicy;
        ld.properties.accessPolicy = group.accessPolicy;
        ld.properties.diskCachePolicy = group.diskCachePolicy;
        ld.properties.currentCachePolicy = group.defaultCachePolicy;
        ld.primaryRaidLevel = kWireLevels[group.level].primary;
        ld.raidLevelQualifier = kWireLevels[group.level].qualifier;
        ld.secondaryRaidLevel = kWireLevels[group.level].secondary;
        ld.stripeSize = group.stripeSize;
        ld.numDrives = drivesPerSpan;
        ld.spanDepth = static_cast<std::uint8_t>(spans);
        ld.state = kLdOptimal;
        ld.initState = planned.initType;
        ld.cacheCade = group.cacheCade;
        for (unsigned k = 0; k < spans; ++k) {
            ld.span[k].startBlock = planned.startBlock;
            ld.span[k].numBlocks = planned.blocksPerPd;
            ld.span[k].arrayRef = group.arrayRef[k];
        }
    }
}

std::uint32_t send(Caller caller, unsigned char contNo, const Block& block) {
    Utillogging_dmp(kStoreLibSource, caller.line, kTracePlain, block.head.get(), block.size, "func=%s: contNo=%u",
                    caller.func, contNo);
    _SL_DCMD_INPUT_T input{};
    input.dataSize = block.size;
    input.opcode = kAddConfiguration;
    input.direction = kDcmdToController;
    input.data = block.head.get();
    const std::uint32_t status = SendDCMDPassThru(contNo, &input);
    SLLoggingPassThru(kStoreLibSource, caller.line, caller.func, status, &input);
    return status;
}

/// Builds the block, the arrays of each group by the given function, and sends it.
template <class FillArrays>
std::uint32_t addToConfiguration(Caller caller, unsigned char contNo, const _SL_CREATE_LD_INFO_T& plan,
                                 FillArrays fillArrays) {
    const Block block = makeBlock(plan);
    if (!block.head)
        return kSlMemoryAllocFailed;
    auto arrays = block.arrays();
    auto lds = block.lds();
    for (const PlannedArray& group : groupsOf(plan)) {
        const unsigned spans = spanCountOf(group);
        if (group.level >= kRaidLevels || spans == 0)
            return failedBeforeSend(caller, kSlInvalidInput);
        if (const std::uint32_t status = fillArrays(group, arrays.first(spans)); status != kSlSuccess)
            return failedBeforeSend(caller, status);
        fillLds(group, arrays.front().numDrives, lds.first(ldsOf(group).size()));
        arrays = arrays.subspan(spans);
        lds = lds.subspan(ldsOf(group).size());
    }
    return send(caller, contNo, block);
}

std::uint32_t createGroups(Caller caller, unsigned char contNo, const _SL_CREATE_LD_INFO_T& plan) {
    return addToConfiguration(caller, contNo, plan, [&](const PlannedArray& group, std::span<_MR_ARRAY> arrays) {
        return fillNewArrays(contNo, group, arrays);
    });
}

} // namespace

std::uint32_t SLCreateLD(unsigned char contNo, const _SL_CREATE_LD_INFO_T* plan) {
    return createGroups(__func__, contNo, *plan);
}

std::uint32_t SLCreateCacheCadeLD(unsigned char contNo, const _SL_CREATE_LD_INFO_T* plan) {
    return createGroups(__func__, contNo, *plan);
}

std::uint32_t SLAddLDToRG(unsigned char contNo, const _SL_CREATE_LD_INFO_T* plan, std::span<const _MR_ARRAY> existing) {
    return addToConfiguration(__func__, contNo, *plan, [&](const PlannedArray& group, std::span<_MR_ARRAY> arrays) {
        if (existing.size() != arrays.size())
            return kSlInvalidInput;
        std::copy(existing.begin(), existing.end(), arrays.begin());
        return renewSequenceNumbers(contNo, group, arrays);
    });
}
