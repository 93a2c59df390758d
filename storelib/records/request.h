// The request record of the library's one entry point, its controller list, and the two pass-through inputs.
#pragma once

#include "storelib/records/wire_record.h"

namespace wire {

#pragma pack(push, 1)

/// Names a PD in a request and in its information record.
struct _MR_PD_REF {
    std::uint16_t deviceId;
    std::uint16_t seqNo;
};
ZEB_WIRE_RECORD(_MR_PD_REF, 4, given, ZEB_FIELD(deviceId, 0), ZEB_FIELD(seqNo, 2));

/// Names an LD in a request and in its configuration.
struct _MR_LD_REF {
    std::uint8_t targetId;
    std::uint8_t reserved;
    std::uint16_t seqNo;
};
ZEB_WIRE_RECORD(_MR_LD_REF, 4, given, ZEB_FIELD(targetId, 0), ZEB_FIELD(seqNo, 2));

/// One request: a 32-byte header and the data pointer behind it.
struct _SL_LIB_CMD_PARAM_T {
    std::uint8_t cmdType;
    std::uint8_t cmd;
    std::uint8_t reserved0[2];
    std::uint32_t ctrlId; ///< the whole entry of the controller list, library kind included
    union {
        _MR_PD_REF pdRef;
        _MR_LD_REF ldRef;
        std::uint16_t arrayId;
        std::uint16_t enclDeviceId;
        std::uint16_t ctrlSeqNo;
        std::uint32_t all; ///< all ones: every foreign configuration
    } ref;
    union {
        std::uint8_t bytes[16];
        std::uint16_t word;
    } param;
    std::uint32_t dataSize;
    void* data;
};
using SL_LIB_CMD_PARAM_T = _SL_LIB_CMD_PARAM_T;
ZEB_WIRE_RECORD(_SL_LIB_CMD_PARAM_T, 40, chosen, ZEB_FIELD(cmdType, 0), ZEB_FIELD(cmd, 1), ZEB_FIELD(ctrlId, 4),
                ZEB_FIELD(ref, 8), ZEB_FIELD(param, 12), ZEB_FIELD(dataSize, 28), ZEB_FIELD(data, 32, given));

inline constexpr std::uint32_t kAllForeignConfigs = 0xFFFFFFFFU;

inline constexpr unsigned kMaxListedControllers = 16;

/// The controllers that the library found. The low 24 bits of an entry are the controller id, the top byte the library
/// kind.
struct _SL_CTRL_LIST_T {
    std::uint16_t count;
    std::uint8_t flags;
    std::uint8_t reserved;
    std::uint32_t ctrl[kMaxListedControllers];
};
ZEB_WIRE_RECORD(_SL_CTRL_LIST_T, 68, chosen, ZEB_FIELD(count, 0, given), ZEB_FIELD(flags, 2), ZEB_FIELD(ctrl, 4));

struct _SL_LIB_VER_T {
    char revision[4];
    char version[8];
};
ZEB_WIRE_RECORD(_SL_LIB_VER_T, 12, given, ZEB_FIELD(revision, 0), ZEB_FIELD(version, 4));

/// Input of the controller-command pass-through. The data pointer is unaligned.
struct _SL_DCMD_INPUT_T {
    std::uint32_t dataSize;
    std::uint32_t opcode;
    std::uint8_t direction;
    std::uint8_t reserved[7];
    std::uint8_t mailbox[12];
    void* data;
};
ZEB_WIRE_RECORD(_SL_DCMD_INPUT_T, 36, chosen, ZEB_FIELD(dataSize, 0), ZEB_FIELD(opcode, 4), ZEB_FIELD(direction, 8),
                ZEB_FIELD(mailbox, 16, given), ZEB_FIELD(data, 28, given));

/// Directions of a DCMD, seen from the host.
enum : std::uint8_t { kDcmdNone = 0, kDcmdToController = 1, kDcmdFromController = 2, kDcmdBoth = 3 };

/// Header of a SCSI pass-through block; the data area follows it.
struct _SL_SCSI_PASSTHRU_T {
    std::uint16_t deviceId;
    std::uint8_t kind; ///< 1 LOG SENSE, 0 boot-sector read
    std::uint8_t reserved3;
    std::uint8_t direction; ///< 2: data flows from the drive
    std::uint8_t reserved5[3];
    std::uint16_t timeout; ///< seconds
    std::uint8_t reserved10;
    std::uint8_t cdbLength;
    std::uint8_t cdb[10];
    std::uint8_t reserved22[38];
    std::uint32_t dataLength;
};
ZEB_WIRE_RECORD(_SL_SCSI_PASSTHRU_T, 64, given, ZEB_FIELD(deviceId, 0), ZEB_FIELD(kind, 2), ZEB_FIELD(direction, 4),
                ZEB_FIELD(timeout, 8), ZEB_FIELD(cdbLength, 11), ZEB_FIELD(cdb, 12), ZEB_FIELD(dataLength, 60));

#pragma pack(pop)

} // namespace wire
