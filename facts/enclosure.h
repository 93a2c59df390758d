// An enclosure and its sensors.
#pragma once

#include "facts/object.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace facts {

inline constexpr std::string_view kSensorTemperature = "temperature";
inline constexpr std::string_view kSensorFan = "fan";
inline constexpr std::string_view kSensorPowerSupply = "power_supply";
inline constexpr std::string_view kSensorVoltage = "voltage";
inline constexpr std::string_view kSensorAlarm = "alarm";
inline constexpr std::string_view kSensorElectronics = "electronics";

struct Sensor {
    std::string_view type;
    unsigned index = 0; ///< from 0, per type
    Word status;
    std::optional<int> celsius; ///< of a temperature sensor that reads
    std::optional<int> rpm; ///< of a fan that reads
    std::optional<double> volts; ///< of a voltage sensor that reads
};

struct Enclosure {
    std::uint16_t deviceId = 0;
    std::optional<Failure> error; ///< the first request of it that failed
    std::uint8_t index = 0;
    Word type;
    std::optional<std::string> vendor;
    std::optional<std::string> product;
    std::optional<std::string> revision;
    std::optional<std::string> logicalId; ///< 16 hexadecimal digits
    std::optional<Word> location;
    std::optional<std::string> connector;
    unsigned slots = 0;
    std::optional<std::vector<Sensor>> sensors;
};

} // namespace facts
