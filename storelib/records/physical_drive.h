// Physical drive records.
#pragma once

#include "storelib/records/request.h"
#include "storelib/records/wire_record.h"

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
ZEB_WIRE_RECORD(_MR_PD_ADDRESS, 24);
ZEB_WIRE_FIELD(_MR_PD_ADDRESS, enclDeviceId, 2);
ZEB_WIRE_FIELD(_MR_PD_ADDRESS, enclIndex, 4);
ZEB_WIRE_FIELD(_MR_PD_ADDRESS, slotNo, 5);
ZEB_WIRE_FIELD(_MR_PD_ADDRESS, scsiDevType, 6);
ZEB_WIRE_FIELD(_MR_PD_ADDRESS, connectedPorts, 7);
ZEB_WIRE_FIELD(_MR_PD_ADDRESS, sasAddr, 8);

struct _MR_PD_LIST {
    std::uint32_t size;
    std::uint32_t count;
    _MR_PD_ADDRESS addr[256];
};
ZEB_WIRE_RECORD(_MR_PD_LIST, 6152);
ZEB_WIRE_FIELD(_MR_PD_LIST, count, 4);
ZEB_WIRE_FIELD(_MR_PD_LIST, addr, 8);

inline constexpr std::uint8_t kScsiDisk = 0;
inline constexpr std::uint8_t kScsiEnclosure = 13;
inline constexpr std::uint16_t kNoDevice = 0xFFFF;

/// Progress of one background operation: 65535 is all of it.
struct _MR_PROGRESS {
    std::uint16_t progress;
    std::uint16_t elapsed; ///< seconds
};
ZEB_WIRE_RECORD(_MR_PROGRESS, 4);
ZEB_WIRE_FIELD(_MR_PROGRESS, elapsed, 2);

struct _MR_PD_PROGRESS {
    std::uint32_t active; ///< see kPdProg... below
    _MR_PROGRESS rebuild;
    _MR_PROGRESS patrolRead;
    _MR_PROGRESS clear;
    std::uint8_t reserved16[16];
};
ZEB_WIRE_RECORD(_MR_PD_PROGRESS, 32);
ZEB_WIRE_FIELD(_MR_PD_PROGRESS, rebuild, 4);
ZEB_WIRE_FIELD(_MR_PD_PROGRESS, patrolRead, 8);
ZEB_WIRE_FIELD(_MR_PD_PROGRESS, clear, 12);

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
ZEB_WIRE_RECORD(_MR_INQUIRY_DATA, 96);

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
    std::uint64_t sasAddr[4];
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
ZEB_WIRE_RECORD(_MR_PD_INFO, 512);
ZEB_WIRE_FIELD(_MR_PD_INFO, inquiry, 4);
ZEB_WIRE_FIELD(_MR_PD_INFO, inquiry.vendor, 12);
ZEB_WIRE_FIELD(_MR_PD_INFO, inquiry.product, 20);
ZEB_WIRE_FIELD(_MR_PD_INFO, inquiry.revision, 36);
ZEB_WIRE_FIELD(_MR_PD_INFO, scsiDevType, 165);
ZEB_WIRE_FIELD(_MR_PD_INFO, deviceSpeed, 167);
ZEB_WIRE_FIELD(_MR_PD_INFO, mediaErrorCount, 168);
ZEB_WIRE_FIELD(_MR_PD_INFO, otherErrorCount, 172);
ZEB_WIRE_FIELD(_MR_PD_INFO, predFailCount, 176);
ZEB_WIRE_FIELD(_MR_PD_INFO, fwState, 184);
ZEB_WIRE_FIELD(_MR_PD_INFO, linkSpeed, 187);
ZEB_WIRE_FIELD(_MR_PD_INFO, ddfType, 188);
ZEB_WIRE_FIELD(_MR_PD_INFO, pathCount, 192);
ZEB_WIRE_FIELD(_MR_PD_INFO, sasAddr, 200);
ZEB_WIRE_FIELD(_MR_PD_INFO, rawSize, 232);
ZEB_WIRE_FIELD(_MR_PD_INFO, coercedSize, 248);
ZEB_WIRE_FIELD(_MR_PD_INFO, enclDeviceId, 256);
ZEB_WIRE_FIELD(_MR_PD_INFO, enclIndex, 258);
ZEB_WIRE_FIELD(_MR_PD_INFO, slotNo, 259);
ZEB_WIRE_FIELD(_MR_PD_INFO, progress, 260);
ZEB_WIRE_FIELD(_MR_PD_INFO, powerState, 358);
ZEB_WIRE_FIELD(_MR_PD_INFO, allowedOps, 360);
ZEB_WIRE_FIELD(_MR_PD_INFO, copybackPartner, 364);
ZEB_WIRE_FIELD(_MR_PD_INFO, mediaType, 370);

inline constexpr std::uint16_t kDdfInLd = 1U << 1;
inline constexpr std::uint16_t kDdfGlobalSpare = 1U << 2;
inline constexpr std::uint16_t kDdfSpare = 1U << 3;
inline constexpr std::uint16_t kDdfForeign = 1U << 4;
inline constexpr unsigned kDdfInterfaceShift = 12;

struct _MR_PD_ALLOWED_OPS {
    std::uint32_t ops; ///< bit 1: start rebuild
};
ZEB_WIRE_RECORD(_MR_PD_ALLOWED_OPS, 4);
inline constexpr std::uint32_t kPdOpStartRebuild = 1U << 1;

#pragma pack(pop)
