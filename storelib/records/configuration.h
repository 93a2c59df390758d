// The controller's configuration (arrays, LDs, spares) and the RAID group record.
#pragma once

#include "storelib/records/logical_drive.h"
#include "storelib/records/wire_record.h"

namespace wire {

#pragma pack(push, 1)

/// A drive's place in an array.
struct _MR_ARRAY_PD {
    _MR_PD_REF ref; ///< device id kNoDevice = empty position
    std::uint16_t fwState;
    std::uint8_t encl;
    std::uint8_t slotNo;
};
ZEB_WIRE_RECORD(_MR_ARRAY_PD, 8, published, ZEB_FIELD(ref, 0), ZEB_FIELD(fwState, 4), ZEB_FIELD(encl, 6),
                ZEB_FIELD(slotNo, 7));

/// The arrays of a controller; their references are 0 to 127.
inline constexpr unsigned kMaxArrays = 128;

inline constexpr unsigned kMaxArrayDrives = 32;

struct _MR_ARRAY {
    std::uint64_t size; ///< blocks of the smallest drive
    std::uint8_t numDrives;
    std::uint8_t reserved9;
    std::uint16_t arrayRef;
    std::uint8_t reserved12[20];
    _MR_ARRAY_PD pd[kMaxArrayDrives];
};
ZEB_WIRE_RECORD(_MR_ARRAY, 288, published, ZEB_FIELD(size, 0), ZEB_FIELD(numDrives, 8), ZEB_FIELD(arrayRef, 10),
                ZEB_FIELD(pd, 32));

inline constexpr unsigned kMaxSpareArrays = 16;

struct _MR_SPARE {
    _MR_PD_REF ref;
    std::uint8_t type; ///< bit 0 dedicated, 1 revertible, 2 enclosure affinity
    std::uint8_t reserved5[2];
    std::uint8_t arrayCount;
    std::uint16_t arrayRef[kMaxSpareArrays];
};
ZEB_WIRE_RECORD(_MR_SPARE, 40, published, ZEB_FIELD(ref, 0), ZEB_FIELD(type, 4), ZEB_FIELD(arrayCount, 7),
                ZEB_FIELD(arrayRef, 8));

inline constexpr std::uint8_t kSpareDedicated = 1U << 0;

/// Head of the configuration; its arrays, then its LDs, then its spares follow.
struct _MR_CONFIG_DATA {
    std::uint32_t size; ///< bytes, all of it
    std::uint16_t arrayCount;
    std::uint16_t arraySize;
    std::uint16_t ldCount;
    std::uint16_t ldSize;
    std::uint16_t spareCount;
    std::uint16_t spareSize;
    std::uint8_t reserved16[16];
};
ZEB_WIRE_RECORD(_MR_CONFIG_DATA, 32, published, ZEB_FIELD(size, 0, given), ZEB_FIELD(arrayCount, 4),
                ZEB_FIELD(arraySize, 6), ZEB_FIELD(ldCount, 8), ZEB_FIELD(ldSize, 10), ZEB_FIELD(spareCount, 12),
                ZEB_FIELD(spareSize, 14));

/// A configuration of one array, one LD and one spare.
inline constexpr std::uint32_t kSmallestConfigSize =
    sizeof(_MR_CONFIG_DATA) + sizeof(_MR_ARRAY) + sizeof(_MR_LD_CONFIG) + sizeof(_MR_SPARE);
static_assert(kSmallestConfigSize == 616);

struct _MR_FREE_SEGMENT {
    std::uint64_t startBlock;
    std::uint64_t size; ///< blocks on each drive
};
ZEB_WIRE_RECORD(_MR_FREE_SEGMENT, 16, chosen, ZEB_FIELD(startBlock, 0), ZEB_FIELD(size, 8));

inline constexpr unsigned kMaxFreeSegments = 127;

/// One array with the LDs, drives and free space on it: a span of a RAID group.
struct _SL_ARRAY_INFO_T {
    std::uint16_t arrayRef;
    std::uint8_t ldCount; ///< 0 ends a scan
    std::uint8_t pdCount;
    std::uint8_t freeCount;
    std::uint8_t reserved5[3];
    std::uint64_t totalSize; ///< blocks, the whole RAID group
    std::uint8_t ldTargetId[kMaxLds];
    _MR_ARRAY_PD pd[kMaxArrayDrives];
    _MR_FREE_SEGMENT freeSegment[kMaxFreeSegments];
};
ZEB_WIRE_RECORD(_SL_ARRAY_INFO_T, 2368, chosen, ZEB_FIELD(arrayRef, 0), ZEB_FIELD(ldCount, 2), ZEB_FIELD(pdCount, 3),
                ZEB_FIELD(freeCount, 4), ZEB_FIELD(totalSize, 8), ZEB_FIELD(ldTargetId, 16), ZEB_FIELD(pd, 80),
                ZEB_FIELD(freeSegment, 336));

/// Data of the dedicated-spare request: the arrays that the spare serves.
struct _SL_DEDICATED_SPARE_T {
    std::uint8_t arrayCount;
    std::uint16_t arrayRef[kMaxSpareArrays];
};
ZEB_WIRE_RECORD(_SL_DEDICATED_SPARE_T, 33, given, ZEB_FIELD(arrayCount, 0), ZEB_FIELD(arrayRef, 1));

#pragma pack(pop)

} // namespace wire
