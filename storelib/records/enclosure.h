// Enclosure records.
#pragma once

#include "storelib/records/wire_record.h"

namespace wire {

#pragma pack(push, 1)

struct _MR_ENCL_ENTRY {
    std::uint16_t deviceId;
    std::uint8_t index;
    std::uint8_t slotCount;
    std::uint8_t reserved4[6];
    std::uint8_t type; ///< see kEncl... below
    std::uint8_t connectorIndex;
    std::uint8_t reserved12[132];
};
ZEB_WIRE_RECORD(_MR_ENCL_ENTRY, 144, chosen, ZEB_FIELD(deviceId, 0), ZEB_FIELD(index, 2),
                ZEB_FIELD(slotCount, 3, given), ZEB_FIELD(type, 10, given), ZEB_FIELD(connectorIndex, 11));

struct _MR_ENCL_LIST {
    std::uint32_t count;
    std::uint32_t reserved;
    _MR_ENCL_ENTRY encl[32];
};
ZEB_WIRE_RECORD(_MR_ENCL_LIST, 4616, chosen, ZEB_FIELD(count, 0), ZEB_FIELD(encl, 8));

enum : std::uint8_t { kEnclUnknown = 0, kEnclSafte = 1, kEnclSes = 2, kEnclBackplane = 3 };

/// The enclosure descriptor of the SES-2 configuration page.
struct _SL_ENCL_CONFIG_T {
    std::uint8_t reserved0[4];
    std::uint64_t logicalId;
    char vendor[8];
    char product[16];
    char revision[4];
    std::uint8_t reserved40[984];
};
ZEB_WIRE_RECORD(_SL_ENCL_CONFIG_T, 1024, chosen, ZEB_FIELD(logicalId, 4), ZEB_FIELD(vendor, 12), ZEB_FIELD(product, 20),
                ZEB_FIELD(revision, 36));

struct _SL_ENCL_ELEMENT {
    std::uint32_t status;
    std::uint8_t value[4];
};
ZEB_WIRE_RECORD(_SL_ENCL_ELEMENT, 8, chosen, ZEB_FIELD(status, 0), ZEB_FIELD(value, 4));

/// Element types in the order in which the library lists them.
enum EnclElementType : unsigned {
    kElemSlot,
    kElemPowerSupply,
    kElemFan,
    kElemTemperature,
    kElemAlarm,
    kElemElectronics,
    kElemVoltage,
    kElemReserved,
    kElemTypes
};

inline constexpr unsigned kMaxEnclElements = 254;

/// Counts per element type, then the elements, grouped by type in the order of the counts.
struct _SL_ENCL_STATUS_EX_T {
    std::uint16_t count[kElemTypes];
    _SL_ENCL_ELEMENT element[kMaxEnclElements];
};
ZEB_WIRE_RECORD(_SL_ENCL_STATUS_EX_T, 2048, chosen, ZEB_FIELD(count, 0), ZEB_FIELD(element, 16));

struct _MR_SAS_CONNECTOR {
    std::uint8_t location;
    std::uint8_t reserved[3];
    char name[16];
};
ZEB_WIRE_RECORD(_MR_SAS_CONNECTOR, 20, chosen, ZEB_FIELD(location, 0), ZEB_FIELD(name, 4));

struct _MR_SAS_CONNECTORS {
    std::uint32_t count;
    std::uint32_t reserved;
    _MR_SAS_CONNECTOR connector[8];
};
ZEB_WIRE_RECORD(_MR_SAS_CONNECTORS, 168, chosen, ZEB_FIELD(count, 0), ZEB_FIELD(connector, 8));

#pragma pack(pop)

} // namespace wire
