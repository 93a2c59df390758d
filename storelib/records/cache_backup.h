// Cache backup unit records.
#pragma once

#include "storelib/records/wire_record.h"

#pragma pack(push, 1)

struct _MR_BBU_STATUS {
    std::uint8_t type;
    std::uint8_t reserved1;
    std::uint16_t voltage; ///< mV
    std::int16_t current; ///< mA
    std::uint16_t temperature; ///< degrees Celsius
    std::uint32_t fwStatus;
    std::uint8_t reserved12[26];
    std::uint8_t remainingCapacityLow;
    std::uint8_t remainingCapacityHigh;
    std::uint16_t fullChargeCapacity;
    std::uint8_t reserved42[22];
};
ZEB_WIRE_RECORD(_MR_BBU_STATUS, 64);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, voltage, 2);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, current, 4);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, temperature, 6);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, fwStatus, 8);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, remainingCapacityLow, 38);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, remainingCapacityHigh, 39);
ZEB_WIRE_FIELD(_MR_BBU_STATUS, fullChargeCapacity, 40);

struct _MR_BBU_CAPACITY_INFO {
    std::uint16_t relativeCharge; ///< percent
    std::uint16_t absoluteCharge; ///< percent
    std::uint16_t remainingCapacity;
    std::uint16_t fullChargeCapacity;
    std::uint8_t reserved8[6];
    std::uint16_t cycleCount;
    std::uint8_t reserved16[32];
};
ZEB_WIRE_RECORD(_MR_BBU_CAPACITY_INFO, 48);
ZEB_WIRE_FIELD(_MR_BBU_CAPACITY_INFO, absoluteCharge, 2);
ZEB_WIRE_FIELD(_MR_BBU_CAPACITY_INFO, remainingCapacity, 4);
ZEB_WIRE_FIELD(_MR_BBU_CAPACITY_INFO, fullChargeCapacity, 6);
ZEB_WIRE_FIELD(_MR_BBU_CAPACITY_INFO, cycleCount, 14);

struct _MR_BBU_DESIGN_INFO {
    std::uint32_t manufactureDate;
    std::uint16_t designCapacity;
    std::uint16_t designVoltage;
    std::uint8_t reserved8[2];
    std::uint16_t serialNo;
    std::uint8_t reserved12[2];
    char maker[12];
    char deviceName[8];
    char chemistry[8];
    std::uint8_t reserved42[22];
};
ZEB_WIRE_RECORD(_MR_BBU_DESIGN_INFO, 64);
ZEB_WIRE_FIELD(_MR_BBU_DESIGN_INFO, designCapacity, 4);
ZEB_WIRE_FIELD(_MR_BBU_DESIGN_INFO, designVoltage, 6);
ZEB_WIRE_FIELD(_MR_BBU_DESIGN_INFO, serialNo, 10);
ZEB_WIRE_FIELD(_MR_BBU_DESIGN_INFO, maker, 14);
ZEB_WIRE_FIELD(_MR_BBU_DESIGN_INFO, deviceName, 26);
ZEB_WIRE_FIELD(_MR_BBU_DESIGN_INFO, chemistry, 34);

struct _MR_BBU_PROPERTIES {
    std::uint32_t learnPeriod; ///< seconds
    std::uint32_t nextLearnTime; ///< seconds since 2000-01-01
    std::uint8_t learnDelay; ///< hours
    std::uint8_t autoLearnMode; ///< 0 automatic, 1 disabled, 2 warning only
    std::uint8_t reserved10[22];
};
ZEB_WIRE_RECORD(_MR_BBU_PROPERTIES, 32);
ZEB_WIRE_FIELD(_MR_BBU_PROPERTIES, nextLearnTime, 4);
ZEB_WIRE_FIELD(_MR_BBU_PROPERTIES, learnDelay, 8);
ZEB_WIRE_FIELD(_MR_BBU_PROPERTIES, autoLearnMode, 9);

#pragma pack(pop)
