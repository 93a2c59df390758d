// Cache backup unit records.
#pragma once

#include "storelib/records/wire_record.h"

namespace wire {

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
ZEB_WIRE_RECORD(_MR_BBU_STATUS, 64, published, ZEB_FIELD(type, 0), ZEB_FIELD(voltage, 2), ZEB_FIELD(current, 4),
                ZEB_FIELD(temperature, 6), ZEB_FIELD(fwStatus, 8), ZEB_FIELD(remainingCapacityLow, 38),
                ZEB_FIELD(remainingCapacityHigh, 39), ZEB_FIELD(fullChargeCapacity, 40));

struct _MR_BBU_CAPACITY_INFO {
    std::uint16_t relativeCharge; ///< percent
    std::uint16_t absoluteCharge; ///< percent
    std::uint16_t remainingCapacity;
    std::uint16_t fullChargeCapacity;
    std::uint8_t reserved8[6];
    std::uint16_t cycleCount;
    std::uint8_t reserved16[32];
};
ZEB_WIRE_RECORD(_MR_BBU_CAPACITY_INFO, 48, published, ZEB_FIELD(relativeCharge, 0), ZEB_FIELD(absoluteCharge, 2),
                ZEB_FIELD(remainingCapacity, 4), ZEB_FIELD(fullChargeCapacity, 6), ZEB_FIELD(cycleCount, 14));

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
ZEB_WIRE_RECORD(_MR_BBU_DESIGN_INFO, 64, published, ZEB_FIELD(manufactureDate, 0), ZEB_FIELD(designCapacity, 4),
                ZEB_FIELD(designVoltage, 6), ZEB_FIELD(serialNo, 10), ZEB_FIELD(maker, 14), ZEB_FIELD(deviceName, 26),
                ZEB_FIELD(chemistry, 34));

struct _MR_BBU_PROPERTIES {
    std::uint32_t learnPeriod; ///< seconds
    std::uint32_t nextLearnTime; ///< seconds since 2000-01-01
    std::uint8_t learnDelay; ///< hours
    std::uint8_t autoLearnMode; ///< 0 automatic, 1 disabled, 2 warning only
    std::uint8_t reserved10[22];
};
ZEB_WIRE_RECORD(_MR_BBU_PROPERTIES, 32, published, ZEB_FIELD(learnPeriod, 0), ZEB_FIELD(nextLearnTime, 4),
                ZEB_FIELD(learnDelay, 8), ZEB_FIELD(autoLearnMode, 9));

#pragma pack(pop)

} // namespace wire
