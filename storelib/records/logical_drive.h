// Logical drive records.
#pragma once

#include "storelib/records/physical_drive.h"
#include "storelib/records/request.h"
#include "storelib/records/wire_record.h"

namespace wire {

#pragma pack(push, 1)

/// One span: a stretch of one array. Sizes are blocks on each of the array's drives.
struct _MR_SPAN {
    std::uint64_t startBlock;
    std::uint64_t numBlocks;
    std::uint16_t arrayRef;
    std::uint8_t reserved[6];
};
ZEB_WIRE_RECORD(_MR_SPAN, 24, published, ZEB_FIELD(startBlock, 0), ZEB_FIELD(numBlocks, 8),
                ZEB_FIELD(arrayRef, 16, given));

/// The settings of an LD that can be changed; the first 32 bytes of its configuration.
struct _MR_LD_PROPERTIES {
    _MR_LD_REF ref;
    char name[16];
    std::uint8_t defaultCachePolicy;
    std::uint8_t accessPolicy;
    std::uint8_t diskCachePolicy;
    std::uint8_t currentCachePolicy;
    std::uint8_t noBgi;
    std::uint8_t snapshotFlags; ///< bits 0 and 1
    std::uint8_t reserved26[6];
};
ZEB_WIRE_RECORD(_MR_LD_PROPERTIES, 32, published, ZEB_FIELD(ref, 0, given), ZEB_FIELD(name, 4),
                ZEB_FIELD(defaultCachePolicy, 20), ZEB_FIELD(accessPolicy, 21), ZEB_FIELD(diskCachePolicy, 22),
                ZEB_FIELD(currentCachePolicy, 23), ZEB_FIELD(noBgi, 24), ZEB_FIELD(snapshotFlags, 25, given));

inline constexpr unsigned kMaxSpans = 8;

struct _MR_LD_CONFIG {
    _MR_LD_PROPERTIES properties;
    std::uint8_t primaryRaidLevel;
    std::uint8_t raidLevelQualifier;
    std::uint8_t secondaryRaidLevel;
    std::uint8_t stripeSize; ///< stripe size code
    std::uint8_t numDrives; ///< drives per span
    std::uint8_t spanDepth;
    std::uint8_t state;
    std::uint8_t initState;
    std::uint8_t isConsistent;
    std::uint8_t reserved41[4];
    std::uint8_t snapshotSource;
    std::uint8_t reserved46;
    std::uint8_t cacheCade;
    std::uint8_t reserved48[16];
    _MR_SPAN span[kMaxSpans];
};
ZEB_WIRE_RECORD(_MR_LD_CONFIG, 256, published, ZEB_FIELD(properties, 0), ZEB_FIELD(primaryRaidLevel, 32),
                ZEB_FIELD(raidLevelQualifier, 33), ZEB_FIELD(secondaryRaidLevel, 34), ZEB_FIELD(stripeSize, 35),
                ZEB_FIELD(numDrives, 36), ZEB_FIELD(spanDepth, 37, given), ZEB_FIELD(state, 38, given),
                ZEB_FIELD(initState, 39), ZEB_FIELD(isConsistent, 40), ZEB_FIELD(snapshotSource, 45, given),
                ZEB_FIELD(cacheCade, 47), ZEB_FIELD(span, 64));

/// States of an LD.
enum : std::uint8_t { kLdOffline = 0, kLdPartiallyDegraded = 1, kLdDegraded = 2, kLdOptimal = 3 };

struct _MR_LD_PROGRESS {
    std::uint32_t active; ///< see kLdProg... below
    _MR_PROGRESS cc;
    _MR_PROGRESS bgi;
    _MR_PROGRESS init;
    _MR_PROGRESS recon;
    std::uint8_t reserved20[16];
};
ZEB_WIRE_RECORD(_MR_LD_PROGRESS, 36, published, ZEB_FIELD(active, 0, given), ZEB_FIELD(cc, 4), ZEB_FIELD(bgi, 8),
                ZEB_FIELD(init, 12), ZEB_FIELD(recon, 16));

inline constexpr std::uint32_t kLdProgCheck = 1U << 0;
inline constexpr std::uint32_t kLdProgBgi = 1U << 1;
inline constexpr std::uint32_t kLdProgInit = 1U << 2;
inline constexpr std::uint32_t kLdProgRecon = 1U << 3;

struct _MR_LD_INFO {
    _MR_LD_CONFIG config;
    std::uint64_t size; ///< blocks
    _MR_LD_PROGRESS progress;
    std::uint8_t reserved300[3];
    std::uint8_t snapshotUse; ///< bit 0: the LD is a snapshot repository
    std::uint8_t reserved304[80];
};
ZEB_WIRE_RECORD(_MR_LD_INFO, 384, published, ZEB_FIELD(config, 0), ZEB_FIELD(size, 256),
                ZEB_FIELD(progress, 264, given), ZEB_FIELD(snapshotUse, 303, given));

inline constexpr std::uint8_t kLdIsRepository = 1U << 0;

struct _MR_LD_LIST_ENTRY {
    std::uint8_t targetId;
    std::uint8_t reserved1;
    std::uint16_t seqNo;
    std::uint8_t state;
    std::uint8_t reserved5[3];
    std::uint64_t size; ///< blocks
};
ZEB_WIRE_RECORD(_MR_LD_LIST_ENTRY, 16, published, ZEB_FIELD(targetId, 0, given), ZEB_FIELD(seqNo, 2),
                ZEB_FIELD(state, 4), ZEB_FIELD(size, 8));

/// The LDs of a controller; their target ids are 0 to 63.
inline constexpr unsigned kMaxLds = 64;

struct _MR_LD_LIST {
    std::uint32_t count;
    std::uint32_t reserved;
    _MR_LD_LIST_ENTRY ld[kMaxLds];
};
ZEB_WIRE_RECORD(_MR_LD_LIST, 1032, published, ZEB_FIELD(count, 0), ZEB_FIELD(ld, 8));

struct _SL_PD_IN_LD_T {
    std::uint16_t count;
    std::uint16_t reserved;
    std::uint16_t deviceId[kMaxSlots]; ///< kNoDevice = unused
};
ZEB_WIRE_RECORD(_SL_PD_IN_LD_T, 516, chosen, ZEB_FIELD(count, 0), ZEB_FIELD(deviceId, 4));

struct _MR_LD_ALLOWED_OPS {
    std::uint32_t ops;
};
ZEB_WIRE_RECORD(_MR_LD_ALLOWED_OPS, 4, published, ZEB_FIELD(ops, 0));

#pragma pack(pop)

} // namespace wire
