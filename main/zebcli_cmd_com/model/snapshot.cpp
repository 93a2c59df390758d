#include "main/zebcli_cmd_com/model/snapshot.h"

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/model/raid_group_numbers.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/common/StoreLib/enclosure.h"
#include "storelib/common/StoreLib/ld_snapshot.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "storelib/dll_mod.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr Speaker kRefresh{kComSource, "UpdateDriveInfo"};

// The tolerated step of one LD feature: how its size and its record are asked for, and what is logged when that fails.
struct LdFeature {
    std::uint32_t (*getSize)(unsigned char, unsigned char, std::uint32_t*);
    const char* sizeError;
    std::uint32_t (*get)(unsigned char, unsigned char, void*, std::uint32_t);
    const char* getError;
};

constexpr LdFeature kSnapshotInfo{SLGetSnapshotInfoSize, "SLGetSnapshotInfoSize error", SLGetSnapshotInfo,
                                  "SLGetSnapshotInfo error"};
constexpr LdFeature kSnapshotRepo{SLGetSnapshotRepoSpaceSize, "SLGetSnapshotRepoSpaceSize error",
                                  SLGetSnapshotRepoSpace, "SLGetSnapshotRepoSpace error"};

void releaseBlock(void*& block) {
    std::free(block);
    block = nullptr;
}

bool refreshSlotCount(_AFCONT& cont, unsigned char contNo) {
    if (cont.enclList.count == 0) {
        cont.slotCount = cont.ctrlInfo.maxPds;
    } else {
        std::uint16_t slots = 0;
        if (SLGetSlotNum(contNo, &slots) != kSlSuccess) {
            traceFailure(kRefresh, "SLGetSlotNum error", onController(contNo));
            return false;
        }
        cont.slotCount = slots;
    }
    if (cont.slotCount == 0)
        traceUntagged(kRefresh, "SlotNum is zero", onController(contNo));
    return true;
}

/// Leaves the record of a size that cannot be true.
void traceDisbelievedSize(std::uint32_t size, const Subject& subject) {
    char text[40];
    wsprintf(text, "size %u is not believed", size);
    traceFailure(kRefresh, text, subject);
}

/// Reads the configuration into a new block of the size that the controller names.
bool refreshConfig(_AFCONT& cont, unsigned char contNo) {
    unsigned int size = 0;
    if (cont.config == nullptr || SLGetConfigSize(contNo, &size) != kSlSuccess)
        return false;
    std::free(cont.config);
    cont.config = nullptr;
    cont.configSize = 0;
    if (size > kLargestConfigSize) {
        traceDisbelievedSize(size, onController(contNo));
        return false;
    }
    cont.config = static_cast<_MR_CONFIG_DATA*>(std::calloc(1, std::max(size, kSmallestConfigSize)));
    if (cont.config == nullptr || SLReadConfig(contNo, cont.config, size) != kSlSuccess)
        return false;
    cont.configSize = size;
    return true;
}

bool refreshDrives(_AFCONT& cont, unsigned char contNo) {
    const auto addresses = pdAddresses(cont);
    return std::all_of(addresses.begin(), addresses.end(), [&](const _MR_PD_ADDRESS& address) {
        return address.scsiDevType != kScsiDisk ||
               SLGetPDInfo(contNo, address.slotNo, &cont.pdInfo[address.slotNo]) == kSlSuccess;
    });
}

bool refreshLds(_AFCONT& cont, unsigned char contNo) {
    const auto entries = ldEntries(cont);
    return std::all_of(entries.begin(), entries.end(), [&](const _MR_LD_LIST_ENTRY& entry) {
        return entry.targetId >= kMaxLds ||
               SLGetLDInfo(contNo, entry.targetId, &cont.ldInfo[entry.targetId]) == kSlSuccess;
    });
}

bool refreshArrays(_AFCONT& cont, unsigned char contNo) {
    for (const _MR_ARRAY& array : arraysOf(cont)) {
        const std::uint16_t arrayRef = array.arrayRef;
        if (arrayRef >= kMaxArrays)
            continue;
        if (SLGetArrayInfo(contNo, arrayRef, &cont.arrayInfo[arrayRef]) != kSlSuccess) {
            traceFailure(kRefresh, "SLGetArrayInfo error", onArray(contNo, arrayRef));
            return false;
        }
    }
    return true;
}

/// Replaces the block of one LD, cut to what a true size can be. Only a block that cannot be allocated is a failure.
bool refreshLdFeature(const LdFeature& feature, unsigned char contNo, unsigned char ldNo, void*& block) {
    std::uint32_t size = 0;
    if (feature.getSize(contNo, ldNo, &size) != kSlSuccess)
        traceFailure(kRefresh, feature.sizeError, onLd(contNo, ldNo));
    if (size > kLargestSnapshotSize) {
        traceDisbelievedSize(size, onLd(contNo, ldNo));
        size = kLargestSnapshotSize;
    }
    releaseBlock(block);
    block = std::calloc(1, std::max<std::size_t>(size, 1));
    if (block == nullptr)
        return false;
    if (feature.get(contNo, ldNo, block, size) != kSlSuccess)
        traceFailure(kRefresh, feature.getError, onLd(contNo, ldNo));
    return true;
}

bool refreshSnapshots(_AFCONT& cont, unsigned char contNo) {
    const auto refreshMarked = [&](const LdFeature& feature, void*(&blocks)[kMaxLds], auto isMarked) {
        const auto entries = ldEntries(cont);
        return std::all_of(entries.begin(), entries.end(), [&](const _MR_LD_LIST_ENTRY& entry) {
            return entry.targetId >= kMaxLds || !isMarked(cont.ldInfo[entry.targetId]) ||
                   refreshLdFeature(feature, contNo, entry.targetId, blocks[entry.targetId]);
        });
    };
    return refreshMarked(kSnapshotInfo, cont.snapshotInfo,
                         [](const _MR_LD_INFO& ld) { return ld.config.snapshotSource != 0; }) &&
           refreshMarked(kSnapshotRepo, cont.snapshotRepo,
                         [](const _MR_LD_INFO& ld) { return (ld.snapshotUse & kLdIsRepository) != 0; });
}

bool refreshController(_AFCONT& cont, unsigned char contNo) {
    if (SLGetCtrlInfo(contNo, &cont.ctrlInfo) != kSlSuccess) {
        traceFailure(kRefresh, "SLGetCtrlInfo error", onController(contNo));
        return false;
    }
    if (!refreshSlotCount(cont, contNo) || cont.pdList == nullptr || SLGetPDList(contNo, cont.pdList) != kSlSuccess ||
        cont.ldList == nullptr || SLGetLDList(contNo, cont.ldList) != kSlSuccess || !refreshConfig(cont, contNo) ||
        !refreshDrives(cont, contNo) || !refreshLds(cont, contNo) || !refreshArrays(cont, contNo) ||
        !refreshSnapshots(cont, contNo))
        return false;
    MakeTransformRGNo(arraysOf(cont), ldConfigsOf(cont), cont.rgNoList);
    return true;
}

} // namespace

int AllocDriveInfo(_AFCONT* conts, int count) {
    for (_AFCONT& cont : std::span(conts, static_cast<std::size_t>(count))) {
        cont.count = static_cast<std::uint32_t>(count);
        cont.pdList = static_cast<_MR_PD_LIST*>(std::calloc(1, sizeof(_MR_PD_LIST)));
        if (cont.pdList == nullptr)
            return 0;
        cont.ldList = static_cast<_MR_LD_LIST*>(std::calloc(1, sizeof(_MR_LD_LIST)));
        if (cont.ldList == nullptr)
            return 0;
        cont.config = static_cast<_MR_CONFIG_DATA*>(std::calloc(1, kSmallestConfigSize));
        if (cont.config == nullptr)
            return 0;
    }
    return 1;
}

int UpdateDriveInfo(_AFCONT* conts, int count) {
    _SL_CTRL_LIST_T list{};
    if (SLGetCtrlList(&list) != kSlSuccess) {
        traceFailure(kRefresh, "SLGetCtrlList error");
        return 0;
    }
    if (SLGetEnclList(0, &conts[0].enclList) != kSlSuccess) {
        traceFailure(kRefresh, "SLGetEnclList error", onController(0));
        return 0;
    }
    for (int contNo = 0; contNo < count; ++contNo)
        if (!refreshController(conts[contNo], static_cast<unsigned char>(contNo)))
            return 0;
    return 1;
}

void FreeDriveInfo(_AFCONT* conts, int count) {
    if (conts == nullptr)
        return;
    for (_AFCONT& cont : std::span(conts, static_cast<std::size_t>(count))) {
        std::free(cont.pdList);
        std::free(cont.config);
        std::free(cont.ldList);
        cont.pdList = nullptr;
        cont.config = nullptr;
        cont.ldList = nullptr;
        std::for_each(std::begin(cont.snapshotInfo), std::end(cont.snapshotInfo), releaseBlock);
        std::for_each(std::begin(cont.snapshotRepo), std::end(cont.snapshotRepo), releaseBlock);
    }
}

std::span<const _MR_PD_ADDRESS> pdAddresses(const _AFCONT& cont) {
    if (cont.pdList == nullptr)
        return {};
    return entriesOf(*cont.pdList);
}

std::span<const _MR_LD_LIST_ENTRY> ldEntries(const _AFCONT& cont) {
    if (cont.ldList == nullptr)
        return {};
    return entriesOf(*cont.ldList);
}

std::span<const _MR_ARRAY> arraysOf(const _AFCONT& cont) {
    const auto arrays = wire::arraysOf(cont.config, cont.configSize);
    return arrays.first(std::min<std::size_t>(arrays.size(), kMaxArrays));
}

std::span<const _MR_LD_CONFIG> ldConfigsOf(const _AFCONT& cont) {
    const auto lds = wire::ldsOf(cont.config, cont.configSize);
    return lds.first(std::min<std::size_t>(lds.size(), kMaxLds));
}

std::span<const _MR_SPARE> sparesOf(const _AFCONT& cont) {
    return wire::sparesOf(cont.config, cont.configSize);
}
