// Physical drive records.
#pragma once

#include "storelib/records/request.h"
#include "storelib/records/wire_record.h"

namespace wire {

#pragma pack(push, 1)

struct _MR_PD_ADDRESS {
    std::uint16_t deviceId;
    std::uint16_t enclDeviceId;
    std::uint8_t enclIndex;
    std::uint8_t slotNo;
    std::uint8_t scsiDevType; ///< 0: a disk
    std::uint8_t connectedPorts;
    std::uint64_t sasAddr[2];
};
ZEB_WIRE_RECORD(_MR_PD_ADDRESS, 24, published, ZEB_FIELD(deviceId, 0, given), ZEB_FIELD(enclDeviceId, 2),
                ZEB_FIELD(enclIndex, 4), ZEB_FIELD(slotNo, 5, given), ZEB_FIELD(scsiDevType, 6, given),
                ZEB_FIELD(connectedPorts, 7), ZEB_FIELD(sasAddr, 8));

/// The slots of a controller: their numbers are bytes. No list of drives is longer.
inline constexpr unsigned kMaxSlots = 256;

struct _MR_PD_LIST {
    std::uint32_t size;
    std::uint32_t count;
    _MR_PD_ADDRESS addr[kMaxSlots];
};
ZEB_WIRE_RECORD(_MR_PD_LIST, 6152, given, ZEB_FIELD(size, 0), ZEB_FIELD(count, 4), ZEB_FIELD(addr, 8));

inline constexpr std::uint8_t kScsiDisk = 0;
inline constexpr std::uint8_t kScsiEnclosure = 13;
inline constexpr std::uint16_t kNoDevice = 0xFFFF;
/// What firmware that has one byte for the number says of a drive without an enclosure.
inline constexpr std::uint16_t kNoEnclosureByte = 0xFF;

/// Progress of one background operation: 65535 is all of it.
struct _MR_PROGRESS {
    std::uint16_t progress;
    std::uint16_t elapsed; ///< seconds
};
ZEB_WIRE_RECORD(_MR_PROGRESS, 4, published, ZEB_FIELD(progress, 0), ZEB_FIELD(elapsed, 2));

struct _MR_PD_PROGRESS {
    std::uint32_t active; ///< see kPdProg... below
    _MR_PROGRESS rebuild;
    _MR_PROGRESS patrolRead;
    _MR_PROGRESS clear;
    std::uint8_t reserved16[16];
};
ZEB_WIRE_RECORD(_MR_PD_PROGRESS, 32, published, ZEB_FIELD(active, 0, given), ZEB_FIELD(rebuild, 4),
                ZEB_FIELD(patrolRead, 8), ZEB_FIELD(clear, 12));

inline constexpr std::uint32_t kPdProgRebuild = 1U << 0;
inline constexpr std::uint32_t kPdProgPatrolRead = 1U << 1;
inline constexpr std::uint32_t kPdProgClear = 1U << 2;
inline constexpr std::uint32_t kPdProgCopyback = 1U << 3;

/// Firmware states of a PD.
enum : std::uint16_t {
    kPdUnconfiguredGood = 0x00,
    kPdUnconfiguredBad = 0x01,
    kPdHotSpare = 0x02,
    kPdOffline = 0x10,
    kPdFailed = 0x11,
    kPdRebuild = 0x14,
    kPdOnline = 0x18,
    kPdCopyback = 0x20,
};

/// The standard INQUIRY data of the drive (SPC-3), as far as it is kept.
struct _MR_INQUIRY_DATA {
    std::uint8_t header[8];
    char vendor[8];
    char product[16];
    char revision[4];
    std::uint8_t rest[60];
};
ZEB_WIRE_RECORD(_MR_INQUIRY_DATA, 96, published, ZEB_FIELD(header, 0), ZEB_FIELD(vendor, 8), ZEB_FIELD(product, 16),
                ZEB_FIELD(revision, 32));

inline constexpr unsigned kMaxPaths = 4;

struct _MR_PD_INFO {
    _MR_PD_REF ref;
    _MR_INQUIRY_DATA inquiry;
    std::uint8_t reserved100[65];
    std::uint8_t scsiDevType;
    std::uint8_t reserved166;
    std::uint8_t deviceSpeed;
    std::uint32_t mediaErrorCount;
    std::uint32_t otherErrorCount;
    std::uint32_t predFailCount;
    std::uint8_t reserved180[4];
    std::uint16_t fwState;
    std::uint8_t reserved186;
    std::uint8_t linkSpeed;
    std::uint16_t ddfType; ///< see kDdf... below; bits 12 to 15 the interface
    std::uint8_t reserved190[2];
    std::uint8_t pathCount;
    std::uint8_t reserved193[7];
    std::uint64_t sasAddr[kMaxPaths];
    std::uint64_t rawSize; ///< blocks
    std::uint8_t reserved240[8];
    std::uint64_t coercedSize; ///< blocks
    std::uint16_t enclDeviceId;
    std::uint8_t enclIndex;
    std::uint8_t slotNo;
    _MR_PD_PROGRESS progress;
    std::uint8_t reserved292[66];
    std::uint8_t powerState;
    std::uint8_t reserved359;
    std::uint32_t allowedOps;
    std::uint16_t copybackPartner; ///< device id, kNoDevice = none
    std::uint8_t reserved366[4];
    std::uint8_t mediaType; ///< low 4 bits
    std::uint8_t reserved371[141];
};
ZEB_WIRE_RECORD(_MR_PD_INFO, 512, published, ZEB_FIELD(ref, 0, given), ZEB_FIELD(inquiry, 4),
                ZEB_FIELD(scsiDevType, 165), ZEB_FIELD(deviceSpeed, 167), ZEB_FIELD(mediaErrorCount, 168),
                ZEB_FIELD(otherErrorCount, 172), ZEB_FIELD(predFailCount, 176), ZEB_FIELD(fwState, 184, given),
                ZEB_FIELD(linkSpeed, 187), ZEB_FIELD(ddfType, 188), ZEB_FIELD(pathCount, 192), ZEB_FIELD(sasAddr, 200),
                ZEB_FIELD(rawSize, 232), ZEB_FIELD(coercedSize, 248, given), ZEB_FIELD(enclDeviceId, 256),
                ZEB_FIELD(enclIndex, 258), ZEB_FIELD(slotNo, 259), ZEB_FIELD(progress, 260, given),
                ZEB_FIELD(powerState, 358), ZEB_FIELD(allowedOps, 360), ZEB_FIELD(copybackPartner, 364, given),
                ZEB_FIELD(mediaType, 370, given));

inline constexpr std::uint16_t kDdfInLd = 1U << 1;
inline constexpr std::uint16_t kDdfGlobalSpare = 1U << 2;
inline constexpr std::uint16_t kDdfSpare = 1U << 3;
inline constexpr std::uint16_t kDdfForeign = 1U << 4;
inline constexpr unsigned kDdfInterfaceShift = 12;

struct _MR_PD_ALLOWED_OPS {
    std::uint32_t ops; ///< bit 1: start rebuild
};
ZEB_WIRE_RECORD(_MR_PD_ALLOWED_OPS, 4, given, ZEB_FIELD(ops, 0));
inline constexpr std::uint32_t kPdOpStartRebuild = 1U << 1;

#pragma pack(pop)

} // namespace wire
